// Prepares a process that runs for a year, whoever started it and whether or not its output is read.
#pragma once

#include <iosfwd>
#include <streambuf>
#include <string>
#include <string_view>

#include "platform/linux/descriptor.h"

namespace korvane {

/// Opens /dev/null for those of the descriptors 0 to 2 that are closed: otherwise the next file or socket would get their
/// numbers, and printed text would go there. Must be called before anything is opened.
void OpenStandardDescriptors();

/// From now on, blocks of 256 KB and more are returned to the system when they are freed. By default, after its first large block
/// the allocator keeps twice that size for ever. Call it at the start of main.
void ReturnLargeBlocks();

/// From now on, writing to a pipe or socket without a reader is an error of the write instead of the end of the program.
void IgnoreBrokenPipes();

/// From now on, others cannot write to anything created by this process or by a program that it starts, whatever umask the
/// process inherited.
void KeepOthersFromWriting();

/// While this exists, lines written to the stream never wait for the reader of the descriptor. A line that cannot be written at
/// once is dropped; the next line that can be written is preceded by the number of dropped lines.
class UnwaitingStream : std::streambuf {
public:
    /// `stream` must outlive this.
    UnwaitingStream(std::ostream& stream, int descriptor);
    ~UnwaitingStream() override;
    UnwaitingStream(const UnwaitingStream&) = delete;
    UnwaitingStream& operator=(const UnwaitingStream&) = delete;

private:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* bytes, std::streamsize size) override;
    int sync() override;
    void SendLine(const std::string& line);
    bool Send(std::string text);
    long Write(std::string_view bytes) const;

    std::ostream& stream_;
    std::streambuf* before_;
    int descriptor_;
    bool isSocket_ = false;
    Descriptor own_;  ///< the same terminal or pipe, opened again; none if that is another user's
    std::string text_;
    bool isCut_ = false;  ///< the last line that was written lacks its end
    int dropped_ = 0;
};

}  // namespace korvane
