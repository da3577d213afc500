// What follows from an outage and from its end, once each: the mail to the people of the entry, the trace of the road to the
// server, the entry's own command.
#pragma once

#include <string>

#include "engine/collaborators.h"
#include "engine/run_command.h"
#include "engine/trace_route.h"
#include "notify/dispatcher.h"
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
        TraceRoute& trace;
        CommandRunner& commands;
    };

    explicit ServerActions(const Ports& ports) : ports_(ports) {}

    /// In this order: mail, trace, command. A mail that nobody takes stops neither of the others. An error in the row or the
    /// store ends it with a status line and a log line; what was done until then stays done and stands in the result.
    std::string DoFailureStateStuff(Connection& conn, Recordset& rs, const std::string& strReason) override;

    /// The mail with the trace of the failure, then the up command. What cannot be read is blank, and the rest goes on.
    void DoUpAgainStuff(Recordset& rs) override;

    /// To the people of the first entry in memory, through the primary server alone; the log tells when nobody hears of it.
    void SendStartupNotice() override;

    /// Whether no entry that is due within six minutes stands at "UP", and there is such an entry. Store errors are the caller's.
    bool AreAllServersFailing(Connection& conn);

private:
    struct FailedEntry;

    void AddRebootWords(Connection& conn, std::string& body, std::string& strAction);
    void MailFailure(const FailedEntry& entry, const std::string& body, std::string& strAction);
    void RunCommandOf(const std::string& strCommand);
    void LogError(const std::string& message) { ports_.log.WriteLog(kLogFatal, kLogError, message); }

    Ports ports_;
};

}  // namespace korvane
