#include "support/loopback_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

namespace korvane {
namespace {

// A bound socket on 127.0.0.1 and its port.
std::pair<int, int> BindFreePort() {
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (descriptor < 0 || ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::system_error(errno, std::generic_category(), "loopback server");
    }
    return {descriptor, ntohs(address.sin_port)};
}

}  // namespace

// The scripts run in threads of their own; what they share with the test is behind the mutex.
class LoopbackServer::Listener {
public:
    explicit Listener(Script script) : script_(std::move(script)) {
        std::tie(descriptor_, port_) = BindFreePort();
        ::listen(descriptor_, SOMAXCONN);
        acceptor_ = std::thread([this] { AcceptAll(); });
    }

    ~Listener() {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
            for (const int client : open_)
                ::shutdown(client, SHUT_RDWR);
        }
        ::shutdown(descriptor_, SHUT_RDWR);
        acceptor_.join();
        for (std::thread& played : played_)
            played.join();
        ::close(descriptor_);
    }

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    int Port() const { return port_; }

    int Connections() const {
        const std::lock_guard lock(mutex_);
        return connections_;
    }

    void Note(std::string text) {
        const std::lock_guard lock(mutex_);
        notes_.push_back(std::move(text));
    }

    std::vector<std::string> Notes() const {
        const std::lock_guard lock(mutex_);
        return notes_;
    }

private:
    class Client;

    void AcceptAll() {
        for (;;) {
            const int client = ::accept4(descriptor_, nullptr, nullptr, SOCK_CLOEXEC);
            if (client < 0 && errno == EINTR) continue;
            const std::lock_guard lock(mutex_);
            if (client < 0 || stopping_) {
                if (client >= 0) ::close(client);
                return;
            }
            ++connections_;
            open_.push_back(client);
            played_.emplace_back([this, client] { Play(client); });
        }
    }

    void Play(int client);

    const Script script_;
    int descriptor_ = -1;
    int port_ = 0;
    mutable std::mutex mutex_;
    bool stopping_ = false;
    int connections_ = 0;
    std::vector<int> open_;
    std::vector<std::string> notes_;
    std::vector<std::thread> played_;
    std::thread acceptor_;
};

class LoopbackServer::Listener::Client : public LoopbackServer::Peer {
public:
    Client(Listener& listener, int descriptor) : listener_(listener), descriptor_(descriptor) {}

    bool Send(std::string_view bytes) override {
        while (!bytes.empty()) {
            const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent < 0 && errno != EINTR) return false;
            if (sent > 0) bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }

    std::string ReadUntil(std::string_view end) override {
        while (unread_.find(end) == std::string::npos) {
            if (!ReadMore()) return std::exchange(unread_, {});
        }
        const std::size_t size = unread_.find(end) + end.size();
        std::string text = unread_.substr(0, size);
        unread_.erase(0, size);
        return text;
    }

    bool ReadToEnd() override {
        while (ReadMore())
            unread_.clear();
        return orderly_;
    }

    bool Linger(std::chrono::milliseconds time) override {
        pollfd hangUp{descriptor_, POLLRDHUP, 0};
        return ::poll(&hangUp, 1, static_cast<int>(time.count())) == 0;
    }

    void Reset() override {
        const linger reset{1, 0};
        ::setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    }

    void Note(std::string text) override { listener_.Note(std::move(text)); }

private:
    bool ReadMore() {
        std::array<char, 4096> piece{};
        ssize_t size = 0;
        do {
            size = ::recv(descriptor_, piece.data(), piece.size(), 0);
        } while (size < 0 && errno == EINTR);
        orderly_ = size == 0;
        if (size <= 0) return false;
        unread_.append(piece.data(), static_cast<std::size_t>(size));
        return true;
    }

    Listener& listener_;
    const int descriptor_;
    std::string unread_;
    bool orderly_ = false;
};

void LoopbackServer::Listener::Play(int client) {
    Client peer(*this, client);
    script_(peer);
    const std::lock_guard lock(mutex_);
    open_.erase(std::find(open_.begin(), open_.end(), client));
    ::close(client);
}

LoopbackServer::LoopbackServer(Script script) : listener_(std::make_unique<Listener>(std::move(script))) {}

LoopbackServer::~LoopbackServer() = default;

int LoopbackServer::Port() const {
    return listener_->Port();
}

std::string LoopbackServer::Http() const {
    return "http://127.0.0.1:" + std::to_string(Port());
}

int LoopbackServer::Connections() const {
    return listener_->Connections();
}

std::vector<std::string> LoopbackServer::Notes() const {
    return listener_->Notes();
}

LoopbackServer::Script AnswerHttp(std::string answer) {
    return [answer = std::move(answer)](LoopbackServer::Peer& peer) {
        peer.Note(peer.ReadUntil("\r\n\r\n"));
        peer.Send(answer);
    };
}

std::string HttpAnswer(std::string_view body, std::string_view contentType, std::string_view status, std::string_view headers) {
    std::string answer = "HTTP/1.1 ";
    answer.append(status).append("\r\nContent-Type: ").append(contentType).append("\r\n").append(headers);
    answer.append("Content-Length: ").append(std::to_string(body.size())).append("\r\n\r\n").append(body);
    return answer;
}

int RefusingPort() {
    const auto [descriptor, port] = BindFreePort();
    ::close(descriptor);
    return port;
}

}  // namespace korvane
