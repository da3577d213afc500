// The time of a list that several instances share: that of its server, so that all of them agree on what is due. Without a server it
// is this machine's own. Tick counts, and the seconds of the day, always are.
#pragma once

#include <chrono>
#include <optional>

#include "platform/clock.h"
#include "platform/connection.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

class ListClock : public Clock {
public:
    struct Ports {
        const Clock& clock;  ///< this machine's own
        StatusLog& status;
        Log& log;
    };

    explicit ListClock(const Ports& ports) : ports_(ports) {}

    /// Called with the open store of a shared list. Asks the server at most once a minute; between two answers the tick count goes
    /// on from the last one, so that nobody who sets this machine's clock makes entries due. A clock that differs by more than
    /// five seconds is named once an hour. Throws store errors.
    void Follow(Connection& conn);

    /// Returns how far the server is ahead of this machine.
    std::chrono::seconds Offset() const { return Now() - ports_.clock.Now(); }

    DateTime Now() const override;
    DateTime UtcNow() const override { return ports_.clock.UtcNow(); }
    double Timer() const override { return ports_.clock.Timer(); }
    std::chrono::milliseconds GetTickCount() const override { return ports_.clock.GetTickCount(); }

private:
    void Compare();

    Ports ports_;
    std::optional<DateTime> server_;  ///< its time when it was asked, and the tick count then
    std::chrono::milliseconds then_{0};
    std::chrono::milliseconds nextAsk_{0};  ///< tick counts
    std::chrono::milliseconds nextTell_{0};
};

}  // namespace korvane
