// A TCP server on 127.0.0.1 that plays the same script to every client, each in a thread of its own: the real other side for
// the adapters. Its destructor ends all scripts, so no test waits for one.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

class LoopbackServer {
public:
    /// One client, seen from the server. All calls block and give up when the client is gone or the server is being destroyed.
    class Peer {
    public:
        virtual ~Peer() = default;

        /// False when the client did not take all of it.
        virtual bool Send(std::string_view bytes) = 0;

        /// What arrives up to and with `end`, or all of it when the client closes before.
        virtual std::string ReadUntil(std::string_view end) = 0;

        /// Waits until the client ends its side, dropping what it sends. Whether that was an orderly end.
        virtual bool ReadToEnd() = 0;

        /// Whether the client was still there for the whole time.
        virtual bool Linger(std::chrono::milliseconds time) = 0;

        /// Makes the coming end of the script a reset instead of an orderly close.
        virtual void Reset() = 0;

        /// Adds to the server's Notes.
        virtual void Note(std::string text) = 0;
    };
    using Script = std::function<void(Peer&)>;

    /// Listens on a free port at once. The connection is closed when its script returns.
    explicit LoopbackServer(Script script);
    ~LoopbackServer();

    int Port() const;
    /// "http://127.0.0.1:<port>".
    std::string Http() const;

    /// How many clients were accepted so far.
    int Connections() const;

    /// What the scripts noted down, in order.
    std::vector<std::string> Notes() const;

private:
    class Listener;
    std::unique_ptr<Listener> listener_;
};

/// A script that notes the head of one HTTP request and sends `answer`.
LoopbackServer::Script AnswerHttp(std::string answer);

/// A complete HTTP answer with its Content-Length. `headers` are whole lines, each with its line end.
std::string HttpAnswer(std::string_view body, std::string_view contentType = "text/html", std::string_view status = "200 OK",
                       std::string_view headers = "");

/// A port of 127.0.0.1 on which nobody listens.
int RefusingPort();

}  // namespace korvane
