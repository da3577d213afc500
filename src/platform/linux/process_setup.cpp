#include "platform/linux/process_setup.h"

#include <fcntl.h>
#include <limits.h>
#include <malloc.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <ostream>

namespace korvane {
namespace {

constexpr int kLargeBlock = 256 * 1024;

}  // namespace

void OpenStandardDescriptors() {
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const bool isOpen = ::fcntl(standard, F_GETFD) >= 0;
        [[maybe_unused]] const bool opened = isOpen || ::open("/dev/null", O_RDWR) == standard;
    }
}

void ReturnLargeBlocks() {
#ifdef M_MMAP_THRESHOLD  // glibc only; other C libraries return large blocks anyway
    mallopt(M_MMAP_THRESHOLD, kLargeBlock);
    mallopt(M_TRIM_THRESHOLD, kLargeBlock);
#endif
}

void IgnoreBrokenPipes() {
    signal(SIGPIPE, SIG_IGN);
}

void KeepOthersFromWriting() {
    const mode_t before = ::umask(0);
    ::umask(before | S_IWGRP | S_IWOTH);
}

UnwaitingStream::UnwaitingStream(std::ostream& stream, int descriptor)
    : stream_(stream), before_(stream.rdbuf(this)), descriptor_(descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return;
    isSocket_ = S_ISSOCK(status.st_mode);
    // Terminals and pipes are opened again: O_NONBLOCK would apply to every process that shares the inherited descriptor.
    if (S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode)) {
        const std::string name = "/proc/self/fd/" + std::to_string(descriptor);
        own_ = Descriptor(::open(name.c_str(), O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    }
}

UnwaitingStream::~UnwaitingStream() {
    stream_.flush();
    stream_.rdbuf(before_);
}

UnwaitingStream::int_type UnwaitingStream::overflow(int_type c) {
    if (!traits_type::eq_int_type(c, traits_type::eof())) text_ += traits_type::to_char_type(c);
    return traits_type::not_eof(c);
}

std::streamsize UnwaitingStream::xsputn(const char* bytes, std::streamsize size) {
    text_.append(bytes, static_cast<std::size_t>(size));
    return size;
}

int UnwaitingStream::sync() {
    for (std::size_t end = text_.find('\n'); end != std::string::npos; end = text_.find('\n')) {
        SendLine(text_.substr(0, end + 1));
        text_.erase(0, end + 1);
    }
    return 0;
}

void UnwaitingStream::SendLine(const std::string& line) {
    const bool tell = dropped_ > 0;
    if (tell && Send("Lines dropped here because nobody read them: " + std::to_string(dropped_) + "\n")) dropped_ = 0;
    if (dropped_ > 0 || !Send(line)) ++dropped_;
}

bool UnwaitingStream::Send(std::string text) {
    if (isCut_) text.insert(0, "\n");
    for (std::string_view rest = text; !rest.empty();) {
        const long taken = Write(rest);
        if (taken <= 0) return false;
        rest.remove_prefix(static_cast<std::size_t>(taken));
        isCut_ = !rest.empty();
    }
    return true;
}

// Writes as much as the descriptor accepts without waiting. Returns the number of bytes, 0 or less for none.
long UnwaitingStream::Write(std::string_view bytes) const {
    pollfd ready{descriptor_, POLLOUT, 0};
    if (::poll(&ready, 1, 0) != 1) return 0;
    const std::string_view piece = bytes.substr(0, PIPE_BUF);
    if (isSocket_) return ::send(descriptor_, piece.data(), piece.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    return ::write(own_ ? own_.Number() : descriptor_, piece.data(), piece.size());
}

}  // namespace korvane
