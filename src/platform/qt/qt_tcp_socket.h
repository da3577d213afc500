// A TCP socket on Qt Network, with the states and error numbers that the conversations of this program know.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tcp_socket.h"

namespace korvane {

/// Belongs to the thread that made it. At most 64 KB are read ahead of GetData; a faster sender is held up. No proxy is used,
/// whatever the desktop says. A name that has several addresses is tried at each of them in turn, each for at most 30 seconds. An
/// address goes straight to Connecting. It may be closed and connected again inside its own events, but not destroyed there. A
/// connection that Close left to end does so beside the program for 5 seconds at most, and seven of them at a time; then it is
/// reset.
class QtTcpSocket : public TcpSocket {
public:
    explicit QtTcpSocket(std::chrono::milliseconds farewellLimit = std::chrono::seconds(5));
    ~QtTcpSocket() override;

    SocketState State() const override;
    void SetProtocol(SocketProtocol protocol) override;
    void SetRemoteHost(std::string host) override;
    std::string RemoteHost() const override;
    void SetRemotePort(std::int32_t port) override;
    std::int32_t RemotePort() const override;
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
    Connection& Current() const;
    void LeaveToEnd();

    std::chrono::milliseconds farewellLimit_;
    std::vector<std::unique_ptr<Connection>> connections_;  ///< the one in use, then those that are ending, the latest first
    std::string remoteHost_;
    std::int32_t remotePort_ = 0;
    std::int32_t localPort_ = 0;
};

}  // namespace korvane
