// What happens while the database server of a shared list is away: it is said once, tried again after growing pauses, and mailed once
// to the addresses that all entries share. None of that needs the database.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "notify/dispatcher.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/service_manager.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

class ServerAway {
public:
    struct Ports {
        const Clock& clock;
        StatusLog& status;
        Log& log;
        ServiceManager& manager;
        Files& files;
        std::function<SendOutcome(const Notification& mail)> send;  ///< through the primary mail server or the backup
        std::string dir;                                            ///< with the addresses
    };

    explicit ServerAway(const Ports& ports) : ports_(ports) {}

    /// Called when the store could not be opened. Returns after how many seconds to try again: 1, 2, 4 and so on to 60. After five
    /// minutes it sends the mail, which waits as mails do; again each five minutes until a server takes it. Throws nothing.
    std::chrono::seconds Away(const std::string& error);

    /// Called when the store was opened.
    void Back();

    bool IsAway() const { return since_.has_value(); }

private:
    void Mail(const std::string& error);
    void Tell(const std::string& text);

    Ports ports_;
    std::optional<std::chrono::milliseconds> since_;  ///< tick counts
    std::chrono::milliseconds nextMail_{0};
    std::chrono::seconds pause_{0};
    bool mailed_ = false;
};

}  // namespace korvane
