// A TCP server on 127.0.0.1 that plays the same script to every client, each in a thread of its own: the real other side for
// the adapters. Its destructor ends all scripts, so no test waits for one.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/descriptor.h"

namespace korvane {

/// A socket that is bound to a free port of 127.0.0.1, and the port.
inline std::pair<Descriptor, int> BindFreePort() {
    Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{.sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (::bind(socket.Number(), any, size) != 0 || ::getsockname(socket.Number(), any, &size) != 0)
        throw std::system_error(errno, std::generic_category(), "loopback server");
    return {std::move(socket), ntohs(address.sin_port)};
}

/// A port of 127.0.0.1 on which nobody listens.
inline int RefusingPort() {
    return BindFreePort().second;
}

class LoopbackServer {
public:
    /// One client, seen from the server. All calls block and give up when the client is gone or the server is being destroyed.
    class Peer {
    public:
        Peer(LoopbackServer& server, int socket) : server_(server), socket_(socket) {}

        /// False when the client did not take all of it.
        bool Send(std::string_view bytes) {
            while (!bytes.empty()) {
                const ssize_t sent = TEMP_FAILURE_RETRY(::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL));
                if (sent < 0) return false;
                bytes.remove_prefix(static_cast<std::size_t>(sent));
            }
            return true;
        }

        /// What arrives up to and with `end`, or all of it when the client closes before.
        std::string ReadUntil(std::string_view end) {
            while (unread_.find(end) == std::string::npos) {
                if (!ReadMore()) return std::exchange(unread_, {});
            }
            std::string rest = unread_.substr(unread_.find(end) + end.size());
            unread_.resize(unread_.size() - rest.size());
            return std::exchange(unread_, std::move(rest));
        }

        /// Waits until the client ends its side, dropping what it sends. Returns whether that was an orderly end.
        bool ReadToEnd() {
            while (ReadMore())
                unread_.clear();
            return orderly_;
        }

        /// Whether the client was still there for the whole time.
        bool Linger(std::chrono::milliseconds time) {
            pollfd hangUp{socket_, POLLRDHUP, 0};
            return ::poll(&hangUp, 1, static_cast<int>(time.count())) == 0;
        }

        /// Makes the coming end of the script a reset instead of an orderly close.
        void Reset() {
            const linger reset{1, 0};
            ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        }

        /// Adds to the server's Notes.
        void Note(std::string text) {
            const std::lock_guard lock(server_.mutex_);
            server_.notes_.push_back(std::move(text));
        }

    private:
        bool ReadMore() {
            std::array<char, 4096> piece{};
            const ssize_t size = TEMP_FAILURE_RETRY(::recv(socket_, piece.data(), piece.size(), 0));
            orderly_ = size == 0;
            if (size > 0) unread_.append(piece.data(), static_cast<std::size_t>(size));
            return size > 0;
        }

        LoopbackServer& server_;
        const int socket_;
        std::string unread_;
        bool orderly_ = false;
    };
    using Script = std::function<void(Peer&)>;

    /// Listens on a free port at once. The connection is closed when its script returns.
    explicit LoopbackServer(Script script) : script_(std::move(script)) {
        ::listen(bound_.first.Number(), SOMAXCONN);
        acceptor_ = std::jthread([this] { AcceptAll(); });
    }
    ~LoopbackServer() {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        for (const Descriptor& client : clients_)
            ::shutdown(client.Number(), SHUT_RDWR);
        ::shutdown(bound_.first.Number(), SHUT_RDWR);
    }

    int Port() const { return bound_.second; }
    /// "http://127.0.0.1:<port>".
    std::string Http() const { return "http://127.0.0.1:" + std::to_string(Port()); }

    /// How many clients were accepted so far.
    int Connections() const {
        const std::lock_guard lock(mutex_);
        return static_cast<int>(clients_.size());
    }

    /// What the scripts noted down, in order.
    std::vector<std::string> Notes() const {
        const std::lock_guard lock(mutex_);
        return notes_;
    }

private:
    void AcceptAll() {
        while (Descriptor accepted{
            static_cast<int>(TEMP_FAILURE_RETRY(::accept4(bound_.first.Number(), nullptr, nullptr, SOCK_CLOEXEC)))}) {
            const std::lock_guard lock(mutex_);
            if (stopping_) return;
            played_.emplace_back([this, &client = clients_.emplace_back(std::move(accepted))] {
                Peer peer(*this, client.Number());
                script_(peer);
                const std::lock_guard closing(mutex_);
                client = Descriptor();
            });
        }
    }

    const Script script_;
    const std::pair<Descriptor, int> bound_ = BindFreePort();
    mutable std::mutex mutex_;  ///< of what the scripts share with the test
    bool stopping_ = false;
    std::list<Descriptor> clients_;  ///< without a number when its script has ended
    std::vector<std::string> notes_;
    std::vector<std::jthread> played_;
    std::jthread acceptor_;  ///< goes before what it starts
};

/// A script that notes the head of one HTTP request and sends `answer`.
inline LoopbackServer::Script AnswerHttp(const std::string& answer) {
    return [answer](LoopbackServer::Peer& peer) {
        peer.Note(peer.ReadUntil("\r\n\r\n"));
        peer.Send(answer);
    };
}

/// A complete HTTP answer with its Content-Length. `headers` are whole lines, each with its line end.
inline std::string HttpAnswer(const std::string& body, const std::string& contentType = "text/html",
                              const std::string& status = "200 OK", const std::string& headers = "") {
    return "HTTP/1.1 " + status + "\r\nContent-Type: " + contentType + "\r\n" + headers +
           "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

}  // namespace korvane
