// Runs one libcurl transfer from the event pump: libcurl says which sockets and which moment it waits for, and the pump notifies
// it when they come.
#pragma once

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

    /// Begins the transfer and returns at once; the pump carries it on, and Look does what its time-outs demand. Look returns the
    /// final CURLcode, or nothing while the transfer runs.
    void Begin();
    std::optional<int> Look();

    /// Drops the connection at once. May be called from any event that Perform delivers.
    void Stop();

private:
    class Transfer;

    std::unique_ptr<Transfer> transfer_;
};

}  // namespace korvane
