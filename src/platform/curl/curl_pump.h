// Runs one libcurl transfer from the event pump: libcurl says which sockets and which moment it waits for, and the pump notifies
// it when they come.
#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include "platform/clock.h"
#include "platform/events.h"

namespace korvane {

class CurlPump {
public:
    /// `easy` is a CURL handle that is ready to perform; it must outlive this. Throws Error when the system has no descriptors
    /// left.
    CurlPump(Events& events, const Clock& clock, void* easy);
    ~CurlPump();
    CurlPump(const CurlPump&) = delete;
    CurlPump& operator=(const CurlPump&) = delete;

    /// Blocks while events are delivered. Returns the final CURLcode, or nothing when Stop ended the transfer.
    std::optional<int> Perform();

    /// Drops the connection at once. May be called from any event that Perform delivers.
    void Stop();

private:
    struct MultiCleanup {
        void operator()(void* multi) const;
    };

    static int OnSocket(void* easy, int socket, int wanted, void* self, void* unused);
    static int OnTimer(void* multi, long milliseconds, void* self);
    void OnReadable();
    void Advance(int socket, int happened);
    std::chrono::milliseconds UntilTimer() const;
    bool Going() const { return !stopped_ && !result_; }

    Events& events_;
    const Clock& clock_;
    void* const easy_;
    std::unique_ptr<void, MultiCleanup> multi_;
    int epoll_ = -1;  ///< contains libcurl's sockets, so that the pump has one descriptor to watch
    std::unique_ptr<Events::Watch> watch_;
    std::optional<std::chrono::milliseconds> timer_;  ///< in terms of the clock's tick count
    std::optional<int> result_;
    bool stopped_ = false;
};

}  // namespace korvane
