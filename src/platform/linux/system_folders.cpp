#include "platform/linux/system_folders.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>

#include "platform/linux/descriptor.h"

namespace korvane {

std::optional<std::string> ReadKernelFile(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) return std::nullopt;
    std::string text;
    std::array<char, 16384> piece;
    for (;;) {
        const ssize_t size = ::read(file.Number(), piece.data(), piece.size());
        if (size == 0) return text;
        if (size > 0) {
            text.append(piece.data(), static_cast<std::size_t>(size));
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
}

}  // namespace korvane
