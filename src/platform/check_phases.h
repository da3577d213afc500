// Where the time of one check went, and what it saw of the server's certificate. What did not run is absent, never zero.
#pragma once

#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "base/datetime.h"

namespace korvane {

struct CheckPhases {
    using Duration = std::chrono::microseconds;

    /// The wait for one text of a conversation, from the connection or from what was sent before it.
    struct Step {
        std::string awaited;
        Duration took{0};
    };

    // After a redirect, those of the last request; of a conversation or a ping in whole milliseconds.
    std::optional<Duration> name = {};       ///< the lookup; an address needs none
    std::optional<Duration> connect = {};    ///< until the connection was there
    std::optional<Duration> tls = {};        ///< the handshake
    std::optional<Duration> firstByte = {};  ///< from then on until the answer began
    std::vector<Step> steps = {};            ///< of a conversation
    std::optional<Duration> whole = {};      ///< of everything, with the redirects

    /// Local time. The earliest end in the chains that were verified, with intermediates and authorities; also when a certificate
    /// was refused because it has ended, and for nothing else.
    std::optional<DateTime> certificateEnd = {};

    /// Returns the time that is in no phase: the requests before a redirect, the rest of the answer, or what never came to its end.
    std::optional<Duration> LeftOver() const {
        if (!whole) return std::nullopt;
        Duration left = *whole;
        for (const auto& phase : {name, connect, tls, firstByte})
            left -= phase.value_or(Duration{0});
        for (const Step& step : steps)
            left -= step.took;
        return std::max(left, Duration{0});
    }
};

}  // namespace korvane
