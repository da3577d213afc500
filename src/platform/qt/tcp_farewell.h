// The orderly end of a TCP connection (RFC 9293, section 3.6), while its former user goes on.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

class QTcpSocket;
class QTimer;

namespace korvane {

/// First sends what was written, then announces the end. Data from the other side is discarded until it ends its side too:
/// closing over unread bytes would be a reset, which may cost the other side data that it has not read yet. A connection that
/// takes longer than the limit, or receives more than 1 MB, is cut off.
class TcpFarewell {
public:
    /// `socket` must outlive this. The caller must disconnect its other signals.
    TcpFarewell(QTcpSocket& socket, std::chrono::milliseconds limit);
    ~TcpFarewell();
    TcpFarewell(const TcpFarewell&) = delete;
    TcpFarewell& operator=(const TcpFarewell&) = delete;

    /// Requires a connected socket. Does not block.
    void Begin();
    bool Going() const { return going_; }
    /// Resets a connection that has not ended yet, so that the system does not keep its bytes either.
    void CutOff();

private:
    void EndSending();
    void DropArrived();

    QTcpSocket& socket_;
    std::unique_ptr<QTimer> limit_;  ///< also receives the signals
    std::int64_t dropped_ = 0;
    bool going_ = false;
};

}  // namespace korvane
