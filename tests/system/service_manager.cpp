#include "system/service_manager.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <stdexcept>

namespace korvane::test {

using std::chrono::steady_clock;

ServiceManagerEnd::ServiceManagerEnd() : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    Address().copy(name.sun_path, sizeof name.sun_path - 1);
    if (::bind(socket_.Number(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) {
        throw std::runtime_error("cannot bind " + Address());
    }
}

const std::vector<ServiceManagerEnd::Word>& ServiceManagerEnd::Told() {
    char text[500];
    for (ssize_t size = 0; (size = ::recv(socket_.Number(), text, sizeof text, 0)) >= 0;)
        told_.push_back({std::string(text, static_cast<std::size_t>(size)), steady_clock::now()});
    return told_;
}

bool ServiceManagerEnd::Hears(std::string_view text, std::chrono::seconds limit, std::size_t times) {
    const auto deadline = steady_clock::now() + limit;
    while (Count(text) < times) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
        pollfd word{socket_.Number(), POLLIN, 0};
        if (left.count() <= 0 || ::poll(&word, 1, static_cast<int>(left.count())) == 0) return false;
    }
    return true;
}

std::size_t ServiceManagerEnd::Count(std::string_view text) {
    const auto& told = Told();
    return static_cast<std::size_t>(std::count_if(told.begin(), told.end(), [&](const Word& word) { return word.text == text; }));
}

}  // namespace korvane::test
