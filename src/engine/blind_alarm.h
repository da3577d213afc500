// A part of the safeguard GuardBadEntries: when the database could not be read for five minutes, so that nothing was checked, the
// people of an entry get one mail.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "notify/dispatcher.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/status_log.h"

namespace korvane {

class BlindAlarm {
public:
    struct Ports {
        const Clock& clock;
        StatusLog& status;
        Log& log;
        std::function<SendOutcome(const Notification& mail)> send;  ///< through the outbox, the primary mail server or the backup
        Safeguards& safeguards;
    };

    explicit BlindAlarm(Ports ports) : ports_(std::move(ports)) {}

    /// Called when the database was read, with the rows that are due soon, if any. Remembers the people of the current one, now
    /// and then.
    void Sees(Recordset* rs);

    /// Called when a tick ended with the error before any entry could be checked. Sends the mail when it is time, and again each
    /// five minutes until a server takes it; waits as mails do. Throws nothing.
    void IsBlind(const std::string& error);

private:
    void Send(const std::string& error);
    void Tell(const std::string& text);

    Ports ports_;
    Notification people_;                             ///< without subject and text
    std::chrono::milliseconds nextRemember_{0};       ///< tick counts
    std::optional<std::chrono::milliseconds> since_;  ///< nothing was checked
    std::chrono::milliseconds nextMail_{0};
    bool told_ = false;
};

}  // namespace korvane
