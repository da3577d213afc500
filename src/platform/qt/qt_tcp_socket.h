// A TCP socket on Qt Network, with the states and error numbers that this program's protocols use.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tcp_socket.h"

namespace korvane {

/// Belongs to the thread that created it. At most 64 KB are read ahead of GetData; a faster sender has to wait. No proxy is used,
/// whatever the desktop says. If a name has several addresses, each of them is tried in turn, for at most 30 seconds. An address
/// goes straight to Connecting. The socket may be closed and connected again inside its own events, but not destroyed there.
/// After Close, a connection ends in the background for at most 5 seconds, and at most seven of them at a time; then it is reset.
class QtTcpSocket : public TcpSocket {
public:
    explicit QtTcpSocket(std::chrono::milliseconds farewellLimit = std::chrono::seconds(5));
    ~QtTcpSocket() override;

    SocketState State() const override;
    void SetProtocol(SocketProtocol /*protocol*/) override {}
    void SetRemoteHost(std::string host) override { remoteHost_ = std::move(host); }
    std::string RemoteHost() const override { return remoteHost_; }
    void SetRemotePort(std::int32_t port) override;
    std::int32_t RemotePort() const override { return remotePort_; }
    void SetLocalPort(std::int32_t port) override;
    using TcpSocket::Connect;
    void Connect() override;
    void SendData(std::string_view bytes) override;
    std::string PeekData(std::size_t maxLength = kAll) const override;
    std::string GetData(std::size_t maxLength = kAll) override;
    void Close() override;
    std::string LocalIP() const override;
    std::string LocalHostName() const override;

private:
    class Connection;
    Connection& Current() const { return *connections_.front(); }
    void LeaveToEnd();

    std::chrono::milliseconds farewellLimit_;
    std::vector<std::unique_ptr<Connection>> connections_;  ///< the one in use, then those that are ending, the latest first
    std::string remoteHost_;
    std::int32_t remotePort_ = 0;
    std::int32_t localPort_ = 0;
};

}  // namespace korvane
