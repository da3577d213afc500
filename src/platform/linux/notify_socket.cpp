#include "platform/linux/notify_socket.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstddef>

#include "platform/linux/descriptor.h"

namespace korvane {

bool NotifySocket::Send(const std::string& lines) const {
    sockaddr_un to{};
    to.sun_family = AF_UNIX;
    if (address_.size() < 2 || address_.size() >= sizeof to.sun_path) return false;
    std::copy(address_.begin(), address_.end(), to.sun_path);
    if (to.sun_path[0] == '@') to.sun_path[0] = '\0';
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address_.size());

    const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket) return false;
    const ssize_t sent =
        ::sendto(socket.Number(), lines.data(), lines.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&to), size);
    return sent == static_cast<ssize_t>(lines.size());
}

}  // namespace korvane
