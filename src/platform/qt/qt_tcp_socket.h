// A TCP socket on Qt Network, with the states and error numbers that the conversations of this program know.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/tcp_socket.h"

namespace korvane {

/// Belongs to the thread that made it. At most 64 KB are read ahead of GetData; a faster sender is held up. No proxy is used,
/// whatever the desktop says. A name that has several addresses is tried at each of them in turn, each for at most 30 seconds. An
/// address goes straight to Connecting. It may be closed and connected again inside its own events, but not destroyed there.
class QtTcpSocket : public TcpSocket {
public:
    QtTcpSocket();
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
    std::unique_ptr<Connection> connection_;
    std::string remoteHost_;
    std::int32_t remotePort_ = 0;
    std::int32_t localPort_ = 0;
};

}  // namespace korvane
