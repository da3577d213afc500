// The consequences of an outage and of its end, once each: the mail to the entry's recipients, the traceroute to the server, the
// entry's own command.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "engine/changed_entry.h"
#include "engine/collaborators.h"
#include "engine/run_command.h"
#include "engine/trace_route.h"
#include "engine/witnesses.h"
#include "notify/dispatcher.h"
#include "notify/mail_outbox.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "store/log.h"
#include "store/server_entries.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

class ServerActions : public FailureActions {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        const ServerEntries& entries;
        Dispatcher& mail;
        MailOutbox& outbox;
        TraceRoute& trace;
        CommandRunner& commands;
        const Witnesses* witnesses = nullptr;  ///< null: no other instance works on the list
    };

    explicit ServerActions(const Ports& ports) : ports_(ports) {}

    /// With the outbox on, mails are handed to it, and the accounting writes them together with the row.
    ///
    /// Order: mail, trace, command. A mail that could not be sent stops neither of the others. An error in the row or the store
    /// ends the actions with a status line and a log line; what was done before stays done and is in the result.
    std::string DoFailureStateStuff(Connection& conn, Recordset& rs, const std::string& strReason) override;

    /// Sends the mail with the trace of the failure, then runs the up command. What cannot be read is left empty, and the rest
    /// continues.
    void DoUpAgainStuff(Recordset& rs) override;

    void Settle(bool stored) override;

    /// Sends to the recipients of the first entry in memory, through the primary server alone. If that fails, it is only
    /// logged.
    void SendStartupNotice();

    /// Returns whether at least one entry is due within six minutes and none of these is "UP". Store errors are passed to the
    /// caller.
    bool AreAllServersFailing(Connection& conn);

private:
    struct FailedEntry;
    struct RebootWords {
        std::string inMail;
        std::string item;  ///< of strAction
    };

    std::string FailureMail(const FailedEntry& entry, const std::string& strReason, const std::string& reboot) const;
    std::string UpMail(Recordset& rs, const std::string& strDesc, const std::string& strCMDUP);
    std::string StartupMail() const;
    RebootWords WordsOfReboot(Connection& conn);
    std::string MailFailure(const FailedEntry& entry, const std::string& body);
    std::string HandOver(const FailedEntry& entry, const Notification& mail);
    SendOutcome HandOverRecovery(const Notification& mail, Recordset& rs);
    void OnceStored(std::function<void()> action);
    void RunCommandOf(const std::string& strCommand, const ChangedEntry& entry);
    void LogError(const std::string& message) { ports_.log.WriteLog(kLogFatal, kLogError, message); }

    Ports ports_;
    std::vector<std::function<void()>> owed_;             ///< until the outcome is stored
    std::map<std::int64_t, std::int64_t> tracedOutages_;  ///< by entry: the failures before the outage that was traced here
};

}  // namespace korvane
