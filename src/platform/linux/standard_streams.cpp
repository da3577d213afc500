#include "platform/linux/standard_streams.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/linux/descriptor.h"

namespace korvane {
namespace {

/// Writes as much to a descriptor as it accepts without waiting.
class UnwaitingWriter {
public:
    explicit UnwaitingWriter(int descriptor) : descriptor_(descriptor) {
        struct stat status {};
        if (::fstat(descriptor, &status) != 0) return;
        isSocket_ = S_ISSOCK(status.st_mode);
        // Terminals and pipes are opened again: O_NONBLOCK would apply to every process that shares the inherited descriptor.
        if (S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode)) {
            const std::string name = "/proc/self/fd/" + std::to_string(descriptor);
            own_ = Descriptor(::open(name.c_str(), O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        }
    }

    /// Returns the number of bytes that were written, 0 or less for none.
    ssize_t Write(std::string_view bytes) const {
        pollfd ready{descriptor_, POLLOUT, 0};
        if (::poll(&ready, 1, 0) != 1) return 0;
        const std::string_view piece = bytes.substr(0, PIPE_BUF);
        if (isSocket_) return ::send(descriptor_, piece.data(), piece.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        return ::write(own_ ? own_.Number() : descriptor_, piece.data(), piece.size());
    }

private:
    int descriptor_;
    bool isSocket_ = false;
    Descriptor own_;  ///< none if it cannot be opened: another user's terminal
};

}  // namespace

class UnwaitingStream::Lines : public std::streambuf {
public:
    explicit Lines(int descriptor) : writer_(descriptor) {}

protected:
    int_type overflow(int_type c) override {
        if (!traits_type::eq_int_type(c, traits_type::eof())) text_ += traits_type::to_char_type(c);
        return traits_type::not_eof(c);
    }

    std::streamsize xsputn(const char* bytes, std::streamsize size) override {
        text_.append(bytes, static_cast<std::size_t>(size));
        return size;
    }

    int sync() override {
        for (std::size_t end = text_.find('\n'); end != std::string::npos; end = text_.find('\n')) {
            SendLine(text_.substr(0, end + 1));
            text_.erase(0, end + 1);
        }
        return 0;
    }

private:
    void SendLine(const std::string& line) {
        const bool tell = dropped_ > 0;
        if (tell && Send("Lines dropped here because nobody read them: " + std::to_string(dropped_) + "\n")) dropped_ = 0;
        if (dropped_ > 0 || !Send(line)) ++dropped_;
    }

    bool Send(std::string text) {
        if (isCut_) text.insert(0, "\n");
        for (std::string_view rest = text; !rest.empty();) {
            const ssize_t taken = writer_.Write(rest);
            if (taken <= 0) return false;
            rest.remove_prefix(static_cast<std::size_t>(taken));
            isCut_ = !rest.empty();
        }
        return true;
    }

    UnwaitingWriter writer_;
    std::string text_;
    bool isCut_ = false;  ///< the last line that was written lacks its end
    int dropped_ = 0;
};

void OpenStandardDescriptors() {
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const bool isOpen = ::fcntl(standard, F_GETFD) >= 0;
        [[maybe_unused]] const bool opened = isOpen || ::open("/dev/null", O_RDWR) == standard;
    }
}

UnwaitingStream::UnwaitingStream(std::ostream& stream, int descriptor)
    : stream_(stream), lines_(std::make_unique<Lines>(descriptor)), before_(stream.rdbuf(lines_.get())) {}

UnwaitingStream::~UnwaitingStream() {
    stream_.flush();
    stream_.rdbuf(before_);
}

}  // namespace korvane
