// Fetches one URL for a check, with a pool of six transfer slots and a retry of hiccups, and puts failures in words. No failure
// leaves it as an exception.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/check_result.h"
#include "engine/request_progress.h"
#include "engine/server_table.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/inet.h"
#include "store/settings_collection.h"

namespace korvane {

class HttpRequester {
public:
    static constexpr int kSlots = 6;

    struct Ports {
        const SettingsCollection& settings;
        Events& events;
        const Clock& clock;
        RequestProgress& progress;
    };

    struct Request {
        std::string strURL;  ///< including its scheme
        std::string strUser = {};
        std::string strPassword = {};
        std::chrono::seconds nTimeout = kNewTimeout;
        std::int16_t nPort = 80;  ///< 80 and 443 leave the choice to the scheme; not applied behind a proxy
    };

    explicit HttpRequester(const Ports& ports) : ports_(ports) {}

    /// Creates the six slots. Before this call getURLData2 fails with a reason.
    void LoadInets(const std::function<std::unique_ptr<Inet>()>& newInet);

    /// Cancels every running transfer.
    void CloseInets();

    /// Returns a slot that is not busy and cancels busy ones before it. Returns 0 when all were busy.
    int getOpenInetIndex();

    /// Fetches the page; an empty answer within half a second is requested again, up to 11 times in all. Waits through the event
    /// pump. `nResponseMs` is the time of the last attempt.
    TimedCheckResult getURLData2(const Request& request);

private:
    struct Attempts;
    Inet::Request TransferOf(const Request& request) const;
    void LetEarlierRequestSettle(const Inet& slot);
    Attempts FetchWatched(Inet& slot, const Inet::Request& transfer);
    Attempts Fetch(Inet& slot, const Inet::Request& transfer);

    Ports ports_;
    std::array<std::unique_ptr<Inet>, kSlots> inets_;
};

}  // namespace korvane
