// Port: one TCP socket driven by events. Connect and SendData return at once; what becomes of them is seen in State and in the events,
// which the event pump delivers.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace korvane {

enum class SocketState {
    Closed = 0,
    ResolvingHost = 4,
    HostResolved = 5,
    Connecting = 6,
    Connected = 7,
    Closing = 8,  ///< the other side closed; Close has not been called yet
    Error = 9,
};

enum class SocketProtocol { Tcp = 0 };

/// The number of the error that comes from having no network at all.
constexpr int kSocketAddressNotAvailable = 10049;

class TcpSocket {
public:
    struct Handlers {
        std::function<void()> dataArrival;  ///< GetData has something to give
        std::function<void()> close;        ///< the other side closed the connection
        /// A connection attempt or a connection failed. `number` is Winsock's: 10060 timed out, 10061 refused, 11001 host not found.
        std::function<void(int number, const std::string& description)> error;
    };

    virtual ~TcpSocket() = default;

    virtual SocketState State() const = 0;

    virtual void SetProtocol(SocketProtocol protocol) = 0;

    /// Host name or address, and port, of the next Connect. A port outside 1 to 65535 throws Error.
    virtual void SetRemoteHost(std::string host) = 0;
    virtual std::string RemoteHost() const = 0;
    virtual void SetRemotePort(std::int32_t port) = 0;
    virtual std::int32_t RemotePort() const = 0;

    /// 0 lets the system choose.
    virtual void SetLocalPort(std::int32_t port) = 0;

    /// Starts resolving and connecting; names are looked up beside the program, never in its way. Throws Error with
    /// kSocketAddressNotAvailable when there is no network, and when the socket is not closed.
    virtual void Connect() = 0;

    /// Queues the bytes; throws Error when the socket is not connected.
    virtual void SendData(std::string_view bytes) = 0;

    /// All that has arrived since the last call.
    virtual std::string GetData() = 0;

    /// Drops the connection or the attempt at once. The state is Closed afterwards; no event follows.
    virtual void Close() = 0;

    void SetHandlers(Handlers handlers) { handlers_ = std::move(handlers); }

protected:
    const Handlers& Events() const { return handlers_; }

private:
    Handlers handlers_;
};

}  // namespace korvane
