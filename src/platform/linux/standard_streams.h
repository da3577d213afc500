// Makes standard input, output and error safe for a program that runs for a year, whoever started it and whether or not its
// output is read.
#pragma once

#include <iosfwd>
#include <memory>
#include <streambuf>

namespace korvane {

/// Opens /dev/null for those of the descriptors 0 to 2 that are closed: otherwise the next file or socket would get their
/// numbers, and printed text would go there. Must be called before anything is opened.
void OpenStandardDescriptors();

/// While this exists, lines written to the stream never wait for the reader of the descriptor. A line that cannot be written at
/// once is dropped; the next line that can be written is preceded by the number of dropped lines.
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
