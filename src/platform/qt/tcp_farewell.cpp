#include "platform/qt/tcp_farewell.h"

#include <sys/socket.h>

#include <QTcpSocket>
#include <QTimer>

namespace korvane {
namespace {

constexpr std::int64_t kMostDropped = 1'000'000;

}  // namespace

TcpFarewell::TcpFarewell(QTcpSocket& socket, std::chrono::milliseconds limit)
    : socket_(socket), limit_(std::make_unique<QTimer>()) {
    limit_->setSingleShot(true);
    limit_->setInterval(limit);
    limit_->callOnTimeout([this] { CutOff(); });
}

TcpFarewell::~TcpFarewell() = default;

void TcpFarewell::Begin() {
    going_ = true;
    dropped_ = 0;
    limit_->start();
    QObject::connect(&socket_, &QTcpSocket::bytesWritten, limit_.get(), [this] { EndSending(); });
    QObject::connect(&socket_, &QTcpSocket::readyRead, limit_.get(), [this] { DropArrived(); });
    QObject::connect(&socket_, &QTcpSocket::disconnected, limit_.get(), [this] { CutOff(); });
    socket_.flush();
    if (!going_) return;  // the connection was broken
    EndSending();
    DropArrived();
}

void TcpFarewell::EndSending() {
    if (socket_.bytesToWrite() == 0) ::shutdown(static_cast<int>(socket_.socketDescriptor()), SHUT_WR);
}

void TcpFarewell::DropArrived() {
    dropped_ += socket_.readAll().size();
    if (dropped_ > kMostDropped) CutOff();
}

void TcpFarewell::CutOff() {
    if (!going_) return;
    going_ = false;
    limit_->stop();
    socket_.disconnect(limit_.get());
    const linger reset{1, 0};
    ::setsockopt(static_cast<int>(socket_.socketDescriptor()), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    socket_.abort();
}

}  // namespace korvane
