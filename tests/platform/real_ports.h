// The clock and the event pump of the real machine, for tests of adapters, and an error in words.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "base/error.h"
#include "platform/linux/linux_clock.h"
#include "platform/qt/qt_events.h"
#include "support/qt_application.h"

namespace korvane {

/// Of the work; empty when it goes well.
template <class Work>
std::string ErrorOf(Work work) {
    try {
        work();
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

struct RealPorts : testing::Test {
    /// Whether it came true within `limit`, with a look now and then for what raises no event in this process.
    template <class Condition>
    bool Wait(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(30)) {
        for (const auto end = clock.GetTickCount() + limit; !condition() && clock.GetTickCount() < end;)
            events.WaitForEvent(std::chrono::milliseconds(10));
        return condition();
    }

    const bool application = (NeedQtApplication(), true);
    const SystemClock clock;
    QtEvents events;
};

}  // namespace korvane
