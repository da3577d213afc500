// Fetches one URL for a check, with a pool of six transfer slots and a retry of hiccups, and puts failures in words. No failure
// leaves it as an exception. The operator sees meanwhile how long it will take.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/check_result.h"
#include "engine/cycle_state.h"
#include "engine/server_table.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/inet.h"
#include "platform/operator.h"
#include "platform/timer.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"

namespace korvane {

/// The estimate that the operator sees while a page is being fetched: the bar fills in a little more than the entry's average
/// time. A test by the operator may run inside a request of the cycle, or the reverse: the bar belongs to the request that began
/// last, and returns to the other when that one ends.
class RequestProgress {
public:
    struct Ports {
        Events& events;
        Operator& person;
        const CycleState& state;
        Timer& TimerProgress;
    };

    explicit RequestProgress(const Ports& ports) : ports_(ports) {}

    /// A request runs as long as this lives. Requests must end in the reverse order of their beginning.
    class Request {
    public:
        explicit Request(RequestProgress& progress) : progress_(progress) { progress_.Begin(); }
        ~Request() { progress_.End(); }
        Request(const Request&) = delete;
        Request& operator=(const Request&) = delete;

    private:
        RequestProgress& progress_;
    };

    /// Called when the operator looks again: the estimate of a running request continues.
    void Resume();

    /// Handles one tick, each quarter of a second while a request runs.
    void TimerProgress_Timer();

private:
    void Begin();
    void End();

    Ports ports_;
    std::vector<std::int32_t> nProgressTicks_;  ///< of each running request
};

/// Returns whether the settings name a proxy; the request then uses it.
bool UseProxy(const SettingsCollection& settings, Inet::Request& request);

class HttpRequester {
public:
    static constexpr int kSlots = 6;

    struct Ports {
        const SettingsCollection& settings;
        Safeguards& safeguards;
        Events& events;
        const Clock& clock;
        RequestProgress& progress;
    };

    struct Request {
        std::string strURL;  ///< including its scheme
        std::string strUser = {};
        std::string strPassword = {};
        std::chrono::seconds nTimeout = kNewTimeout;
        std::int32_t nPort = 80;  ///< 80 and 443 leave the choice to the scheme; not applied behind a proxy
        /// Returns the entry's own list of statuses that count as good; called only when it is needed, and its errors are passed
        /// on. Empty when no entry is checked: then no safeguard applies.
        std::function<std::string()> goodStatuses = {};
        bool measured = false;  ///< the result gets the phases of its last attempt
    };

    explicit HttpRequester(const Ports& ports) : ports_(ports) {}

    /// Creates the six slots. Before this call getURLData2 fails with a reason.
    void LoadInets(const std::function<std::unique_ptr<Inet>()>& newInet);

    /// Cancels every running transfer.
    void CloseInets();

    /// Returns a slot that is not busy and cancels busy ones before it. Returns 0 when all were busy.
    int getOpenInetIndex();

    /// Fetches the page; an empty answer within half a second is requested again, up to 11 times in all. Waits through the event
    /// pump. `nResponseMs` is the time of the last attempt. With HTTPStatusFails on, the page is requested once, and its status
    /// decides, too.
    TimedCheckResult getURLData2(const Request& request);

private:
    Inet::Request TransferOf(const Request& request) const;
    TimedCheckResult Fetch(Inet& slot, Inet::Request transfer, int attempts, bool measured);
    void JudgeStatus(const Request& request, int status, CheckResult& result);

    Ports ports_;
    std::array<std::unique_ptr<Inet>, kSlots> inets_;
};

}  // namespace korvane
