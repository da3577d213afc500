#include "platform/qt/qt_tcp_socket.h"

#include <sys/socket.h>

#include <QHostAddress>
#include <QHostInfo>
#include <QList>
#include <QMetaObject>
#include <QNetworkInterface>
#include <QNetworkProxy>
#include <QObject>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>
#include <optional>
#include <utility>

#include "base/error.h"
#include "platform/qt/name_lookup.h"

namespace korvane {
namespace {

constexpr qint64 kReadAhead = 65536;

/// Limit for what the other side may still send after the end was announced.
constexpr qint64 kMostDropped = 1'000'000;

/// Limit for the connections of one socket, including those that are ending.
constexpr std::size_t kMostConnections = 8;

constexpr int kAlreadyOpen = 10056;
constexpr int kNotConnected = 10057;
constexpr int kHostNotFound = 11001;
constexpr int kHostUnreachable = 10065;
constexpr int kNetworkDown = 10050;

struct ErrorNumber {
    QAbstractSocket::SocketError qt;
    int winsock;
};
constexpr ErrorNumber kErrorNumbers[] = {
    {QAbstractSocket::ConnectionRefusedError, 10061},
    {QAbstractSocket::SocketTimeoutError, 10060},
    {QAbstractSocket::NetworkError, kHostUnreachable},
    {QAbstractSocket::SocketAddressNotAvailableError, kSocketAddressNotAvailable},
    {QAbstractSocket::AddressInUseError, 10048},
    {QAbstractSocket::SocketAccessError, 10013},
    {QAbstractSocket::SocketResourceError, 10055},
    {QAbstractSocket::UnsupportedSocketOperationError, 10047},
};

int WinsockNumber(QAbstractSocket::SocketError error) {
    for (const ErrorNumber& each : kErrorNumbers) {
        if (each.qt == error) return each.winsock;
    }
    return kNetworkDown;
}

// Returns an IPv4 address as such, even where the system shows it in its IPv6 form.
std::string PlainAddress(const QHostAddress& address) {
    bool isV4 = false;
    const quint32 v4 = address.toIPv4Address(&isV4);
    return (isV4 ? QHostAddress(v4) : address).toString().toStdString();
}

void RequirePort(std::int32_t port, std::int32_t lowest) {
    if (port < lowest || port > 65535) throw Error("Invalid port number: " + std::to_string(port));
}

struct Failure {
    int number;
    std::string description;
};

// The orderly end of a TCP connection (RFC 9293, section 3.6), while its former user goes on. First sends what was written, then
// announces the end. Data from the other side is discarded until it ends its side too: closing over unread bytes would be a reset,
// which may cost the other side data that it has not read yet. A connection that takes longer than the limit, or receives too
// much, is cut off.
class Farewell {
public:
    // The caller must disconnect its own slots from the socket, which must outlive this.
    Farewell(QTcpSocket& socket, std::chrono::milliseconds limit) : socket_(socket) {
        limit_.setSingleShot(true);
        limit_.setInterval(limit);
        limit_.callOnTimeout([this] { CutOff(); });
    }

    bool Going() const { return going_; }

    void Begin() {
        going_ = true;
        dropped_ = 0;
        limit_.start();
        QObject::connect(&socket_, &QTcpSocket::bytesWritten, &limit_, [this] { EndSending(); });
        QObject::connect(&socket_, &QTcpSocket::readyRead, &limit_, [this] { DropArrived(); });
        QObject::connect(&socket_, &QTcpSocket::disconnected, &limit_, [this] { CutOff(); });
        socket_.flush();
        if (!going_) return;  // the connection was broken
        EndSending();
        DropArrived();
    }

    // Resets a connection that has not ended yet, so that the system does not keep its bytes either.
    void CutOff() {
        if (!std::exchange(going_, false)) return;
        limit_.stop();
        socket_.disconnect(&limit_);
        const linger reset{1, 0};
        ::setsockopt(static_cast<int>(socket_.socketDescriptor()), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        socket_.abort();
    }

private:
    void EndSending() {
        if (socket_.bytesToWrite() == 0) ::shutdown(static_cast<int>(socket_.socketDescriptor()), SHUT_WR);
    }

    void DropArrived() {
        dropped_ += socket_.readAll().size();
        if (dropped_ > kMostDropped) CutOff();
    }

    QTcpSocket& socket_;
    QTimer limit_;  ///< also receives the signals
    qint64 dropped_ = 0;
    bool going_ = false;
};

}  // namespace

// One socket through any number of connections. Every Close begins a new round; events queued in an earlier round are dropped.
class QtTcpSocket::Connection : public QObject {
public:
    explicit Connection(const QtTcpSocket& owner) : owner_(owner), farewell_(socket_, owner.farewellLimit_) {
        socket_.setProxy(QNetworkProxy::NoProxy);
        socket_.setReadBufferSize(kReadAhead);
    }

    SocketState State() const { return state_; }

    void Connect(const std::string& host) {
        Listen();
        QHostAddress address;
        if (!address.setAddress(QString::fromStdString(host))) {
            lookup_.emplace(host, [this](const QList<QHostAddress>& addresses) { OnFound(addresses); });
            state_ = SocketState::ResolvingHost;
            return;
        }
        state_ = SocketState::Connecting;
        addresses_ = {address};
        const std::optional<Failure> failure = TryAddresses();
        if (!failure) return;
        if (failure->number == kSocketAddressNotAvailable) {
            Close();
            throw Error(failure->description, failure->number);
        }
        InNextTurn([this, failure = *failure] { Fail(failure); });
    }

    void Send(std::string_view bytes) { socket_.write(bytes.data(), static_cast<qint64>(bytes.size())); }

    /// Removes the bytes only if `taken`.
    std::string Arrived(std::size_t maxLength, bool taken) {
        std::string bytes(std::min(maxLength, static_cast<std::size_t>(socket_.bytesAvailable())), '\0');
        const auto size = static_cast<qint64>(bytes.size());
        if (size > 0) taken ? socket_.read(bytes.data(), size) : socket_.peek(bytes.data(), size);
        return bytes;
    }

    QHostAddress LocalAddress() const { return socket_.localAddress(); }

    void Close() {
        ++round_;
        lookup_.reset();
        socket_.disconnect(this);
        if (std::exchange(state_, SocketState::Closed) == SocketState::Connected) {
            farewell_.Begin();
        } else {
            socket_.abort();
        }
    }

    /// Returns whether, after Close, the other side has not ended the connection yet.
    bool Ending() const { return farewell_.Going(); }
    void CutOff() { farewell_.CutOff(); }

private:
    void Listen() {
        connect(&socket_, &QTcpSocket::connected, this, &Connection::OnConnected);
        connect(&socket_, &QTcpSocket::bytesWritten, this, &Connection::OnBytesWritten);
        connect(&socket_, &QTcpSocket::readyRead, this, &Connection::OnReadyRead);
        connect(&socket_, &QTcpSocket::disconnected, this, &Connection::OnDisconnected);
        connect(&socket_, &QTcpSocket::errorOccurred, this, &Connection::OnError);
    }

    template <class Action>
    void InNextTurn(Action action) {
        const auto queued = [this, round = round_, action = std::move(action)] {
            if (round == round_) action();
        };
        QMetaObject::invokeMethod(this, queued, Qt::QueuedConnection);
    }

    void OnFound(const QList<QHostAddress>& addresses) {
        if (addresses.isEmpty()) return Fail({kHostNotFound, "Host not found"});
        addresses_ = addresses;
        state_ = SocketState::HostResolved;
        InNextTurn([this] {
            if (state_ == SocketState::HostResolved) state_ = SocketState::Connecting;
        });
        if (const auto failure = TryAddresses()) Fail(*failure);
    }

    // Tries the remaining addresses until one does not fail at once. Returns the failure of the last one.
    std::optional<Failure> TryAddresses() {
        std::optional<Failure> failure;
        while (!addresses_.isEmpty() && (failure = TryAddress(addresses_.takeFirst()))) {
        }
        return failure;
    }

    std::optional<Failure> TryAddress(const QHostAddress& address) {
        failedAtOnce_ = false;
        starting_ = true;
        if (owner_.localPort_ != 0) socket_.bind(static_cast<quint16>(owner_.localPort_));
        if (!failedAtOnce_) socket_.connectToHost(address, static_cast<quint16>(owner_.remotePort_));
        starting_ = false;
        if (!failedAtOnce_) return std::nullopt;
        // Before any packet has left, the kernel reports this error only when it has no way to send one.
        if (socket_.error() == QAbstractSocket::NetworkError) return Failure{kSocketAddressNotAvailable, LastError()};
        return Failure{WinsockNumber(socket_.error()), LastError()};
    }

    bool Attempting() const { return state_ == SocketState::HostResolved || state_ == SocketState::Connecting; }

    void OnError(QAbstractSocket::SocketError error) {
        if (starting_) {
            failedAtOnce_ = true;
        } else if (Attempting()) {
            const Failure failure{WinsockNumber(error), LastError()};
            if (addresses_.isEmpty()) return Fail(failure);
            if (const auto next = TryAddresses()) Fail(*next);
        } else if (state_ == SocketState::Connected && error != QAbstractSocket::RemoteHostClosedError) {
            Fail({WinsockNumber(error), LastError()});
        }
    }

    void OnConnected() {
        state_ = SocketState::Connected;
        // Every text is a whole message to the other side; none must wait for the next one to fill a packet.
        socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        if (owner_.Events().connect) owner_.Events().connect();
    }

    void OnBytesWritten(qint64 sent) {
        const auto round = round_;
        const auto remaining = static_cast<std::size_t>(socket_.bytesToWrite());
        if (owner_.Events().sendProgress) owner_.Events().sendProgress(static_cast<std::size_t>(sent), remaining);
        if (remaining == 0 && round == round_ && owner_.Events().sendComplete) owner_.Events().sendComplete();
    }

    void OnDisconnected() {
        if (state_ != SocketState::Connected) return;
        state_ = SocketState::Closing;
        if (owner_.Events().close) owner_.Events().close();
    }

    void OnReadyRead() {
        if (owner_.Events().dataArrival) owner_.Events().dataArrival();
    }

    void Fail(const Failure& failure) {
        state_ = SocketState::Error;
        if (owner_.Events().error) owner_.Events().error(failure.number, failure.description);
    }

    std::string LastError() const { return socket_.errorString().toStdString(); }

    const QtTcpSocket& owner_;
    QTcpSocket socket_;
    Farewell farewell_;
    std::optional<NameLookup> lookup_;
    QList<QHostAddress> addresses_;  ///< addresses of the name, not yet tried
    SocketState state_ = SocketState::Closed;
    unsigned round_ = 0;
    bool starting_ = false;
    bool failedAtOnce_ = false;
};

QtTcpSocket::QtTcpSocket(std::chrono::milliseconds farewellLimit) : farewellLimit_(farewellLimit) {
    connections_.push_back(std::make_unique<Connection>(*this));
}

QtTcpSocket::~QtTcpSocket() {
    Current().Close();
}

SocketState QtTcpSocket::State() const {
    return Current().State();
}

void QtTcpSocket::SetRemotePort(std::int32_t port) {
    RequirePort(port, 1);
    remotePort_ = port;
}

void QtTcpSocket::SetLocalPort(std::int32_t port) {
    RequirePort(port, 0);
    localPort_ = port;
}

void QtTcpSocket::Connect() {
    if (State() != SocketState::Closed) throw Error("The socket is not closed", kAlreadyOpen);
    Current().Connect(remoteHost_);
}

void QtTcpSocket::SendData(std::string_view bytes) {
    if (State() != SocketState::Connected) throw Error("The socket is not connected", kNotConnected);
    Current().Send(bytes);
}

std::string QtTcpSocket::PeekData(std::size_t maxLength) const {
    return Current().Arrived(maxLength, false);
}

std::string QtTcpSocket::GetData(std::size_t maxLength) {
    return Current().Arrived(maxLength, true);
}

std::string QtTcpSocket::LocalIP() const {
    if (State() == SocketState::Connected) return PlainAddress(Current().LocalAddress());
    for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
        if (!address.isLoopback() && !address.isLinkLocal()) return PlainAddress(address);
    }
    return "127.0.0.1";
}

std::string QtTcpSocket::LocalHostName() const {
    return QHostInfo::localHostName().toStdString();
}

void QtTcpSocket::Close() {
    Current().Close();
    if (Current().Ending()) LeaveToEnd();
}

// A connection is never destroyed here, since one of its events may be on the stack: the next connection replaces one that has
// ended.
void QtTcpSocket::LeaveToEnd() {
    auto next = std::find_if(connections_.begin(), connections_.end(), [](const auto& each) { return !each->Ending(); });
    if (next == connections_.end() && connections_.size() < kMostConnections) {
        next = connections_.insert(next, std::make_unique<Connection>(*this));
    } else if (next == connections_.end()) {
        --next;  // the one that has been ending for the longest time
        (*next)->CutOff();
    }
    std::rotate(connections_.begin(), next, next + 1);
}

}  // namespace korvane
