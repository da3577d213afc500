// Standard input, output and error of a program that runs for a year, whoever started it and whether or not somebody reads what
// it prints.
#pragma once

#include <iosfwd>
#include <memory>
#include <streambuf>

namespace korvane {

/// Makes those of the descriptors 0 to 2 that are closed /dev/null: the next file or socket would get their numbers, and what is
/// printed would go there. To be called before anything is opened.
void OpenStandardDescriptors();

/// As long as it lives, lines that go to the stream never wait for whoever reads the descriptor. A line that is not taken at once
/// is dropped; before the next one that is taken stands how many were.
class UnwaitingStream {
public:
    /// `stream` must outlive this.
    UnwaitingStream(std::ostream& stream, int descriptor);
    ~UnwaitingStream();
    UnwaitingStream(const UnwaitingStream&) = delete;
    UnwaitingStream& operator=(const UnwaitingStream&) = delete;

private:
    class Lines;

    std::ostream& stream_;
    std::unique_ptr<Lines> lines_;
    std::streambuf* before_;
};

}  // namespace korvane
