// On a list that several instances share: shows the others that this one works, and watches over them. One that has gone silent is
// logged, and with InstanceMail = "True" mailed once, by one of the others, to the addresses that all entries share.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "notify/dispatcher.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/files.h"
#include "platform/timer.h"
#include "store/instances.h"
#include "store/log.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

class InstanceWatch {
public:
    struct Ports {
        Store& store;
        Files& files;
        Timers& timers;
        const Clock& clock;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        std::function<void(const Notification& mail)> mail;  ///< sends it later, and once
        std::function<std::int64_t()> checking;              ///< ID of the entry; 0: none
    };

    /// `own`: name, host, pid, home and version of this one.
    InstanceWatch(const Ports& ports, Instance own);

    /// Shows itself at once, and then each ten seconds. A server that is away is asked again after a minute.
    void Start();
    /// Takes itself off the list. Throws nothing.
    void End();

private:
    void Tick();
    void ShowItself(Connection& conn, DateTime now);
    void LookAtOthers(Connection& conn, DateTime now);
    void Silent(Connection& conn, const Instance& other);
    void Tell(const std::string& text);

    Ports ports_;
    Instances table_;
    Instance own_;
    std::unique_ptr<Timer> timer_;
    std::set<std::int64_t> silent_;  ///< rows of those that were logged
};

}  // namespace korvane
