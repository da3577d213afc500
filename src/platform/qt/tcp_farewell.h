// The orderly end of a TCP connection (RFC 9293, section 3.6), while whoever had the connection goes on.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

class QTcpSocket;
class QTimer;

namespace korvane {

/// What was written goes out first, then the end is announced. What the other side still says is dropped until it ends its side
/// too: to close over unread bytes would be a reset, which may cost the other side what it has not read yet. One that takes
/// longer than the limit, or says more than 1 MB, is cut off.
class TcpFarewell {
public:
    /// `socket` outlives this. Its other signals are the caller's to disconnect.
    TcpFarewell(QTcpSocket& socket, std::chrono::milliseconds limit);
    ~TcpFarewell();
    TcpFarewell(const TcpFarewell&) = delete;
    TcpFarewell& operator=(const TcpFarewell&) = delete;

    /// Of a socket that is connected. Does not block.
    void Begin();
    bool Going() const { return going_; }
    /// Resets a connection that has not ended yet, so that the system does not keep its bytes either.
    void CutOff();

private:
    void EndSending();
    void DropArrived();

    QTcpSocket& socket_;
    std::unique_ptr<QTimer> limit_;  ///< receives the signals, too
    std::int64_t dropped_ = 0;
    bool going_ = false;
};

}  // namespace korvane
