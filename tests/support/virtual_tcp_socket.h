// A TCP socket in the virtual world, talking to the scripted servers of a VirtualNet. An address goes straight to state 6; a name
// is looked up first (4), and shows 5 for 1 ms when it is found.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "platform/tcp_socket.h"
#include "support/virtual_net.h"

namespace korvane {

class VirtualTcpSocket : public TcpSocket {
    using Milliseconds = std::chrono::milliseconds;
    using Kind = ServerStep::Kind;

public:
    explicit VirtualTcpSocket(VirtualNet& net) : net_(net) {}
    ~VirtualTcpSocket() override { VirtualTcpSocket::Close(); }

    SocketState State() const override { return state_; }
    void SetProtocol(SocketProtocol) override {}
    void SetRemoteHost(std::string host) override { host_ = std::move(host); }
    std::string RemoteHost() const override { return host_; }
    void SetRemotePort(std::int32_t port) override {
        if (port < 1 || port > 65535) throw Error("Invalid port number: " + std::to_string(port));
        port_ = port;
    }
    std::int32_t RemotePort() const override { return port_; }
    void SetLocalPort(std::int32_t) override {}
    using TcpSocket::Connect;
    void Connect() override {
        if (state_ != SocketState::Closed) throw Error("The socket is not closed", 10056);
        if (!net_.NetworkThere()) throw Error("No network is available", kSocketAddressNotAvailable);
        remote_ = net_.FindHost(host_);
        if (!host_.empty() && host_.find_first_not_of("0123456789.") == std::string::npos) return Knock();
        state_ = SocketState::ResolvingHost;
        if (remote_ == nullptr) return Next(Milliseconds(1), &VirtualTcpSocket::NotFound);
        if (const auto after = remote_->FoundAfter()) Next(*after, &VirtualTcpSocket::Found);
    }
    void StartEncryption(const std::string&, const std::string&) override {
        if (state_ != SocketState::Connected) throw Error("The socket is not connected", 10057);
        arrived_.clear();
        server_->NoteLine("[TLS]");
        securing_ = net_.World().After(Milliseconds(1), [this] {
            ++happened_;
            if (script_->tlsProblem != "") return Fail(1, script_->tlsProblem.value_or("no TLS here"));
            if (script_->tlsFirst) BeginStep();
            if (Events().encrypted) Events().encrypted();
        });
    }
    void SendData(std::string_view bytes) override {
        if (state_ != SocketState::Connected) throw Error("The socket is not connected", 10057);
        if (refusals_ > 0 && refusals_-- > 0) throw Error("The connection was broken", 10054);
        queued_ += bytes.size();
        TakeLater();
        sent_ += bytes;
        const bool speaking = step_ < script_->steps.size() && !Waits(script_->steps[step_].kind);
        if (!speaking && !remote_->IsDown()) BeginStep();
    }
    std::string PeekData(std::size_t maxLength = kAll) const override { return arrived_.substr(0, maxLength); }
    std::string GetData(std::size_t maxLength = kAll) override {
        std::string taken = PeekData(maxLength);
        arrived_.erase(0, taken.size());
        return taken;
    }
    void Close() override {
        // What was sent goes out before the end, though nobody hears the answer.
        while (const auto line = TakeLine())
            server_->NoteLine(*line);
        for (const EventId& event : {pending_, sending_, securing_})
            net_.World().Cancel(event);
        for (std::string* text : {&answers_, &arrived_, &sent_})
            text->clear();
        queued_ = 0;
        state_ = SocketState::Closed;
    }
    std::string LocalIP() const override { return "10.0.0.100"; }
    std::string LocalHostName() const override { return "monitor"; }

    /// How often something may have come from the other side or the system.
    std::uint64_t Happened() const { return happened_; }

    /// The next `count` calls of SendData throw.
    void RefuseToSend(int count) { refusals_ = count; }

private:
    static bool Waits(Kind kind) { return kind != Kind::Speak && kind != Kind::Close && kind != Kind::Reset; }

    /// Goes on with `stage` after the delay, unless the host is down then, whose name is found all the same.
    void Next(Milliseconds delay, void (VirtualTcpSocket::*stage)()) {
        pending_ = net_.World().After(delay, [this, stage] {
            ++happened_;
            if (state_ == SocketState::ResolvingHost || !remote_->IsDown()) (this->*stage)();
        });
    }
    void NotFound() { Fail(11001, "Host not found"); }
    void Refused() { Fail(10061, "Connection refused"); }
    void Found() {
        state_ = SocketState::HostResolved;
        Next(Milliseconds(1), &VirtualTcpSocket::Knock);
    }
    void Knock() {
        state_ = SocketState::Connecting;
        if (remote_ == nullptr || remote_->IsDown()) return;
        server_ = remote_->FindPort(port_);
        if (server_ == nullptr) return Next(Milliseconds(1), &VirtualTcpSocket::Refused);
        script_ = server_->BeginConnection();
        const auto [how, after] = script_->greeting;
        if (how != ServerGreeting::Silent)
            Next(after, how == ServerGreeting::Accept ? &VirtualTcpSocket::Accepted : &VirtualTcpSocket::Refused);
    }
    void Accepted() {
        state_ = SocketState::Connected;
        step_ = 0;
        const auto script = script_;
        if (Events().connect) Events().connect();
        if (script_ == script && state_ == SocketState::Connected && !script_->tlsFirst) BeginStep();
    }
    void BeginStep() {
        for (; step_ < script_->steps.size(); ++step_) {
            const ServerStep& step = script_->steps[step_];
            if (!Waits(step.kind)) return Next(step.after, &VirtualTcpSocket::EndStep);
            if (!TakeLines(step)) return;
        }
        while (const auto line = TakeLine())
            server_->NoteLine(*line);
    }
    // One step that the server does on its own. The handler comes last: it may close the socket and connect it again.
    void EndStep() {
        const auto script = script_;
        const ServerStep& step = script->steps[step_++];
        if (step.kind == Kind::Reset) return Fail(10054, "Connection reset by peer");
        if (step.kind == Kind::Close) {
            state_ = SocketState::Closing;
            if (Events().close) Events().close();
            return;
        }
        arrived_ += step.text;
        BeginStep();
        if (Events().dataArrival) Events().dataArrival();
    }
    void SpeakAnswers() {
        arrived_ += std::exchange(answers_, {});
        if (Events().dataArrival) Events().dataArrival();
    }
    // Whether the step is over. After a line that is not in the script it never is.
    bool TakeLines(const ServerStep& step) {
        const bool speaking = !answers_.empty();
        while (const auto line = TakeLine()) {
            server_->NoteLine(*line);
            if (step.kind == Kind::Answer) answers_ += step.answer(*line);
            if (step.kind == Kind::Answer || (step.kind == Kind::ExpectUpTo && *line != step.text)) continue;
            if (step.kind == Kind::ExpectAny || *line == step.text) return true;
            server_->NoteMistake(step.text, *line);
            script_ = std::make_shared<VirtualServer::Script>();
            return false;
        }
        if (!speaking && !answers_.empty()) Next(step.after, &VirtualTcpSocket::SpeakAnswers);
        return false;
    }
    // The next whole line of what the client sent, without its line end.
    std::optional<std::string> TakeLine() {
        const auto end = sent_.find("\r\n", taken_);
        if (end == std::string::npos) {
            sent_.erase(0, std::exchange(taken_, 0));
            return std::nullopt;
        }
        const auto begin = std::exchange(taken_, end + 2);
        return sent_.substr(begin, end - begin);
    }
    void Fail(int number, const std::string& description) {
        state_ = SocketState::Error;
        if (Events().error) Events().error(number, description);
    }
    void TakeLater() {
        net_.World().Cancel(sending_);
        if (script_->takeAfter) sending_ = net_.World().After(*script_->takeAfter, [this] { TakenBySystem(); });
    }
    void TakenBySystem() {
        ++happened_;
        if (state_ != SocketState::Connected || queued_ == 0) return;
        const std::size_t sent = std::min(queued_, script_->takeAtOnce);
        queued_ -= sent;
        if (queued_ > 0) TakeLater();
        if (Events().sendProgress) Events().sendProgress(sent, queued_);
        if (queued_ == 0 && state_ == SocketState::Connected && Events().sendComplete) Events().sendComplete();
    }

    VirtualNet& net_;
    SocketState state_ = SocketState::Closed;
    std::string host_;
    std::int32_t port_ = 0;
    std::string arrived_;     ///< from the server, not yet read
    std::string sent_;        ///< to the server
    std::size_t taken_ = 0;   ///< bytes of it that its script has
    std::size_t queued_ = 0;  ///< of what was sent, not yet reported as sent
    std::string answers_;     ///< of the server, on their way
    int refusals_ = 0;
    std::uint64_t happened_ = 0;

    // The other side.
    VirtualHost* remote_ = nullptr;
    VirtualServer* server_ = nullptr;
    std::shared_ptr<const VirtualServer::Script> script_;
    std::size_t step_ = 0;
    EventId pending_, sending_, securing_;
};

}  // namespace korvane
