// Port: one TCP socket driven by events. Connect and SendData return at once; State and the events, which the event pump
// delivers, show the result.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

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

/// The error number for having no network at all.
constexpr int kSocketAddressNotAvailable = 10049;

class TcpSocket {
public:
    struct Handlers {
        std::function<void()> dataArrival;  ///< GetData has something to give
        std::function<void()> close;        ///< the other side closed the connection
        /// A connection attempt or a connection failed. `number` is Winsock's: 10060 timed out, 10061 refused, 11001 host not
        /// found.
        std::function<void(int number, const std::string& description)> error;
        std::function<void()> connect = {};  ///< the connection is established; comes before its first dataArrival
        /// The system took `sent` bytes of what SendData queued; `remaining` are left. Never called from within SendData.
        std::function<void(std::size_t sent, std::size_t remaining)> sendProgress = {};
        std::function<void()> sendComplete = {};  ///< nothing remains; follows the last sendProgress
        std::function<void()> encrypted = {};     ///< what StartEncryption began has succeeded
    };

    static constexpr std::size_t kAll = static_cast<std::size_t>(-1);

    virtual ~TcpSocket() = default;

    virtual SocketState State() const = 0;

    virtual void SetProtocol(SocketProtocol protocol) = 0;

    /// Set host name or address, and port, of the next Connect. A port outside 1 to 65535 throws Error.
    virtual void SetRemoteHost(std::string host) = 0;
    virtual std::string RemoteHost() const = 0;
    virtual void SetRemotePort(std::int32_t port) = 0;
    virtual std::int32_t RemotePort() const = 0;

    /// 0 lets the system choose.
    virtual void SetLocalPort(std::int32_t port) = 0;

    /// Starts to resolve and connect; name lookups do not block. Throws Error with kSocketAddressNotAvailable when there is no
    /// network, and Error when the socket is not closed.
    virtual void Connect() = 0;
    /// Like Connect, after SetRemoteHost and SetRemotePort.
    void Connect(std::string host, std::int32_t port) {
        SetRemoteHost(std::move(host));
        SetRemotePort(port);
        Connect();
    }

    /// Begins TLS (1.2 or later) on the connection, as the client of `host`, a name or an address: the server's certificate must
    /// be of that host and of an authority of the system or of the file `authorities` (PEM; empty: none). Bytes that arrived
    /// before are discarded. `encrypted` follows, or `error` with the reason; send nothing before. Throws Error when the socket is
    /// not connected or the file has no certificates.
    virtual void StartEncryption(const std::string& host, const std::string& authorities) = 0;

    /// Queues the bytes; throws Error when the socket is not connected.
    virtual void SendData(std::string_view bytes) = 0;

    /// Returns the first `maxLength` unread bytes that have arrived, without removing them. The amount is limited (to about 64
    /// KiB): the rest stays with the other side until some of it is read.
    virtual std::string PeekData(std::size_t maxLength = kAll) const = 0;

    /// Returns the same bytes and removes them.
    virtual std::string GetData(std::size_t maxLength = kAll) = 0;

    /// Ends the connection in order or drops the attempt, without blocking: sent data still goes out, within some seconds, and
    /// arriving data is discarded. The state is Closed at once, and Connect may follow at once; no event follows.
    virtual void Close() = 0;

    /// Returns the address of this end of the connection; without a connection the address by which others reach this machine, as
    /// far as it knows, else the loopback address.
    virtual std::string LocalIP() const = 0;
    /// Returns this machine's own name.
    virtual std::string LocalHostName() const = 0;

    void SetHandlers(Handlers handlers) { handlers_ = std::move(handlers); }

protected:
    const Handlers& Events() const { return handlers_; }

private:
    Handlers handlers_;
};

}  // namespace korvane
