// A TCP socket in the virtual world, talking to the scripted servers of a VirtualNet. An address goes straight to state 6; a name
// is looked up first (4), and shows 5 for 1 ms when it is found.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/tcp_socket.h"
#include "support/virtual_net.h"

namespace korvane {

class VirtualTcpSocket : public TcpSocket {
public:
    explicit VirtualTcpSocket(VirtualNet& net) : net_(net) {}
    ~VirtualTcpSocket() override;
    VirtualTcpSocket(const VirtualTcpSocket&) = delete;
    VirtualTcpSocket& operator=(const VirtualTcpSocket&) = delete;

    SocketState State() const override { return state_; }
    void SetProtocol(SocketProtocol) override {}
    void SetRemoteHost(std::string host) override { host_ = std::move(host); }
    std::string RemoteHost() const override { return host_; }
    void SetRemotePort(std::int32_t port) override;
    std::int32_t RemotePort() const override { return port_; }
    void SetLocalPort(std::int32_t) override {}
    using TcpSocket::Connect;
    void Connect() override;
    void SendData(std::string_view bytes) override;
    std::string PeekData(std::size_t maxLength = kAll) const override { return arrived_.substr(0, maxLength); }
    std::string GetData(std::size_t maxLength = kAll) override;
    void Close() override;
    std::string LocalIP() const override { return "10.0.0.100"; }
    std::string LocalHostName() const override { return "monitor"; }

    /// The next `count` calls of SendData throw.
    void RefuseToSend(int count) { refusals_ = count; }

private:
    using Stage = void (VirtualTcpSocket::*)();

    /// Goes on with `stage` after the delay.
    void Next(std::chrono::milliseconds delay, Stage stage);
    void LookUp();
    void NotFound();
    void Found();
    void Knock();
    void Refused();
    void Accepted();
    void TakenBySystem();
    void BeginStep();
    void EndStep();
    void AnswerLines(const ServerStep& step);
    void SpeakAnswers();
    bool TakeLines(const ServerStep& step);
    std::optional<std::string> TakeLine();
    void Fail(int number, const std::string& description);

    VirtualNet& net_;
    SocketState state_ = SocketState::Closed;
    std::string host_;
    std::int32_t port_ = 0;
    std::string arrived_;     ///< from the server, not yet read
    std::string sent_;        ///< to the server, not yet taken by its script
    std::size_t queued_ = 0;  ///< of what was sent, not yet reported as sent
    std::string answers_;     ///< of the server, on their way
    int refusals_ = 0;

    // The other side.
    VirtualHost* remote_ = nullptr;
    VirtualServer* server_ = nullptr;
    std::shared_ptr<const VirtualServer::Script> script_;
    std::size_t step_ = 0;
    EventId pending_;
    EventId sending_;
};

}  // namespace korvane
