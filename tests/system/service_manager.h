// The service manager's end of its protocol (sd_notify(3)), for a program that is started as it starts one: a socket that is
// told things, and what it was told.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/descriptor.h"
#include "system/process.h"

namespace korvane::test {

class ServiceManagerEnd {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    struct Word {
        std::string text;
        TimePoint came;
    };

    ServiceManagerEnd();

    /// The value of NOTIFY_SOCKET.
    std::string Address() const { return folder_.Path("notify"); }

    /// Everything so far.
    const std::vector<Word>& Told();

    /// Waits until it has been told this word `times` times in all. False when the limit runs out before.
    bool Hears(std::string_view text, std::chrono::seconds limit, std::size_t times = 1);

    std::size_t Count(std::string_view text);

private:
    PrivateFolder folder_;
    Descriptor socket_;
    std::vector<Word> told_;
};

}  // namespace korvane::test
