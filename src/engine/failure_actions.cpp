#include "engine/failure_actions.h"

#include <exception>
#include <future>
#include <initializer_list>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "store/database_files.h"

namespace korvane {
namespace {

using std::chrono::seconds;

/// Entries that are due later do not count against "all servers are failing".
constexpr seconds kDueSoon{360};

constexpr int kUnused = 0;

/// The one failure that has no reason of its own.
constexpr std::string_view kNoExpectedText = "The expected text is not in the answer.";

std::string Lines(std::initializer_list<std::string> lines) {
    std::string text;
    for (const std::string& line : lines)
        text += (&line == lines.begin() ? "" : "\r\n") + line;
    return text;
}

std::string UrlOf(const std::string& strType, const std::string& strAddress_IP) {
    const CheckKind kind = CheckKindOf(strType);
    return kind == CheckKind::Http || kind == CheckKind::Https ? strType + "://" + strAddress_IP : strAddress_IP;
}

bool IsBlank(const std::string& text) {
    return Trim(text).empty();
}

std::int64_t NumberOrZero(Recordset& rs, const char* column) {
    std::int64_t number = 0;
    IgnoreErrors([&] { number = rs.Fields(column).Value().Int64(); });
    return number;
}

// The same number for each check of an outage: it tells one from another.
std::int64_t FailuresBefore(Recordset& rs) {
    return NumberOrZero(rs, "nFail") - NumberOrZero(rs, "nTriesCur");
}

// Reads a column now that is used in a later step. If it could not be read, the error is raised in that step.
std::future<Value> ReadAhead(Recordset& rs, const char* column) {
    std::packaged_task<Value()> read([&] { return rs.Fields(column).Value(); });
    read();
    return read.get_future();
}

}  // namespace

/// The row as it is before the mail: while the mail is sent, an editor may change or remove the row.
struct ServerActions::FailedEntry {
    Recordset& rs;
    std::string strAddress_IP = ColumnText(rs, "strAddress_IP");
    std::string strType = ColumnText(rs, "strType");
    std::string strURL = UrlOf(strType, strAddress_IP);
    std::string strDesc = ColumnText(rs, "strDesc");
    std::string strEmailBody = ColumnText(rs, "strEmailBody");
    std::string strEmailText = ColumnText(rs, "strEmailText");
    std::string strEmailList1 = ColumnText(rs, "strEmailList1");
    std::string strEmailList2 = ColumnText(rs, "strEmailList2");
    std::string strEmailFrom = ColumnText(rs, "strEmailFrom");
    std::string strCMD = ColumnText(rs, "strCMD");
    std::string nTries = TriesOf(rs).Text();
    bool bNotSendBody = rs.Fields("bNotSendBody").Value().Bool();
    std::future<Value> bSendUpNotify = ReadAhead(rs, "bSendUpNotify");
    std::future<Value> ID = ReadAhead(rs, "ID");
};

// The texts of the mails and of the list in the `Failures` row include mistakes and double spaces: people filter their mail by
// them.

std::string ServerActions::DoFailureStateStuff(Connection& conn, Recordset& rs, const std::string& strReason) {
    std::string strAction = "None.";
    const DateTime now = ports_.clock.Now();
    try {
        FailedEntry entry{rs};
        strAction += IsBlank(entry.strCMD) ? "<ul><li>No commands are configured to be executed."
                                           : "<ul><li>" + entry.strCMD + " was executed. ";
        const RebootWords reboot = WordsOfReboot(conn);
        strAction += reboot.item;
        strAction += "\r\n<li>" + MailFailure(entry, entry.bNotSendBody ? "" : FailureMail(entry, strReason, reboot.inMail));
        strAction += entry.bSendUpNotify.get().Bool()
                         ? "<li>Server configured so a Server UP Notification <b>will</b> be sent with tracert information when "
                           "the server comes back up. "
                         : "<li>Server configured so a Server UP Notification <b>WILL NOT</b> be sent.";
        strAction += "</ul>";
        const std::int64_t id = entry.ID.get().Int64();
        if (ports_.witnesses != nullptr) tracedOutages_[id] = FailuresBefore(rs);
        OnceStored([this, id, address = entry.strAddress_IP] { ports_.trace.RunTraceRoute(address, id); });
        const ChangedEntry changed{std::to_string(id),
                                   entry.strDesc,
                                   entry.strAddress_IP,
                                   entry.strType,
                                   status::kDown,
                                   Or(strReason, std::string(kNoExpectedText)),
                                   now};
        OnceStored([this, changed, strCMD = entry.strCMD] { RunCommandOf(strCMD, changed); });
    } catch (const std::exception& error) {
        ports_.status.setStatusMSG("DoFailureStateStuff: Error: " + std::string(error.what()));
        LogError("frmMonitor:DoFailureStateStuff: Errors block: " + std::string(error.what()));
    }
    return strAction;
}

std::string ServerActions::FailureMail(const FailedEntry& entry, const std::string& strReason, const std::string& reboot) const {
    return Lines({
        entry.strEmailBody,
        "Time: " + ports_.clock.Now().Text(),
        "",
        "The Server " + entry.strURL + " could not be reached ",
        entry.nTries + " times in a row.  ",
        "Reason: " + strReason,
        "",
        IsBlank(entry.strCMD) ? "No commands will be executed (none are configured)."
                              : "The following command will be executed:\r\n" + entry.strCMD,
        "",
        (reboot.empty() ? "" : reboot + "\r\n\r\n") + entry.strEmailText +
            (ports_.witnesses == nullptr ? "" : ports_.witnesses->Words()),
    });
}

// Only words: the machine restarts only if the entry's command does it.
ServerActions::RebootWords ServerActions::WordsOfReboot(Connection& conn) {
    if (!ports_.settings.IsTrue("Reboot")) return {};
    if (ports_.settings.IsTrue("RebootAny")) {
        return {"Korvane will shutdown and restart the computer Korvane is running on.  Set to reboot if ANY server fails.",
                "<li>Korvane shut down and restarted the computer it was running on.  Set to reboot if ANY server fails."};
    }
    if (!AreAllServersFailing(conn)) return {};
    return {"Korvane will shutdown and restart the computer Korvane is running on. ALL SERVERS ARE FAILING.",
            "<li>Korvane shut down and restarted the computer it was running on.  ALL SERVERS ARE FAILING."};
}

// Returns what was done, for the operator.
std::string ServerActions::MailFailure(const FailedEntry& entry, const std::string& body) {
    const std::string kRoutine = "frmMonitor:DoFailureStateStuff: ";
    const std::string subject = entry.strDesc.empty() ? entry.strEmailText : entry.strEmailText + " (" + entry.strDesc + ")";
    const Notification mail{entry.strEmailList1, entry.strEmailList2, entry.strEmailFrom, subject, body};
    if (ports_.outbox.IsOn()) return HandOver(entry, mail);
    const SendOutcome outcome = ports_.mail.SendWithBackup(mail, [&](const std::string& strError) {
        LogError(kRoutine + "primary Email to " + entry.strEmailList1 + " failed. " + strError + " using " +
                 ports_.settings.getKvSettingsColVal("Server"));
    });
    const std::string done =
        outcome.sent
            ? "Server DOWN Email Notification successfully sent to: '" + entry.strEmailList1 + " " + entry.strEmailList2 + "'."
            : "Server DOWN Email Notification <font color=red>FAILED</font>  because '" + outcome.strError + "'.";
    outcome.sent ? ports_.log.Info(kRoutine + done) : LogError(kRoutine + done);
    return done;
}

std::string ServerActions::HandOver(const FailedEntry& entry, const Notification& mail) {
    const bool waits = ports_.outbox.Put(mail, MailEvent::Failure, NumberOrZero(entry.rs, "ID"), NumberOrZero(entry.rs, "nFail"));
    const std::string done =
        waits ? "Server DOWN Email Notification is in the outbox for: '" + mail.strTo1 + " " + mail.strTo2 + "'."
              : "Server DOWN Email Notification <font color=red>FAILED</font>  because 'There is no recipient.'.";
    const std::string line = "frmMonitor:DoFailureStateStuff: " + done;
    waits ? ports_.log.Info(line) : LogError(line);
    return done;
}

void ServerActions::RunCommandOf(const std::string& strCommand, const ChangedEntry& entry) {
    if (!IsBlank(strCommand)) ports_.commands.RunCommand(strCommand, kUnused, WindowStyle::Normal, VariablesOf(entry));
}

bool ServerActions::AreAllServersFailing(Connection& conn) {
    DateTime when = ports_.clock.Now() + kDueSoon;
    if (when == when.Date())
        when = when + seconds(1);  // midnight cannot be written in a query, and this text is not worth losing the mail
    const auto rs = OpenRows(ports_.store, conn, query::MonitoredAndDueBy(when), CursorType::Static);
    bool bAll = !rs->Eof();
    for (; bAll && !rs->Eof(); rs->MoveNext())
        bAll = ColumnText(*rs, "strCurStatus") != status::kUp;
    return bAll;
}

void ServerActions::DoUpAgainStuff(Recordset& rs) {
    const std::string strDesc = TextOrEmpty(rs, "strDesc");
    const std::string strCMDUP = TextOrEmpty(rs, "strCMDUP");
    ChangedEntry entry{.name = strDesc, .state = status::kUp, .since = ports_.clock.Now()};
    if (!IsBlank(strCMDUP)) {  // before the mail: while it is sent, an editor may change or remove the row
        entry.id = TextOrEmpty(rs, "ID");
        entry.address = TextOrEmpty(rs, "strAddress_IP");
        entry.type = TextOrEmpty(rs, "strType");
    }
    const std::string body = UpMail(rs, strDesc, strCMDUP);
    const std::string subject = "SERVER BACK UP (" + TextOrEmpty(rs, "strEmailText") + ") " + strDesc;
    if (IsSet(rs, "bSendUpNotify", true)) {  // an unneeded mail is better than a missing one
        const Notification mail{TextOrEmpty(rs, "strEmailList1"), TextOrEmpty(rs, "strEmailList2"),
                                TextOrEmpty(rs, "strEmailFrom"), subject, body};
        const bool handedOver = ports_.outbox.IsOn();
        const SendOutcome outcome = handedOver ? HandOverRecovery(mail, rs) : ports_.mail.SendWithBackup(mail);
        if (!outcome.sent)
            LogError("frmMonitor:DoUpAgainStuff: Server UP Email Notification FAILED because '" + outcome.strError + "'.");
    }
    OnceStored([this, strCMDUP, entry] { RunCommandOf(strCMDUP, entry); });
}

void ServerActions::OnceStored(std::function<void()> action) {
    if (ports_.witnesses == nullptr) return action();
    owed_.push_back(std::move(action));
}

void ServerActions::Settle(bool stored) {
    for (const auto& action : std::exchange(owed_, {}))
        if (stored) IgnoreErrors(action);
}

SendOutcome ServerActions::HandOverRecovery(const Notification& mail, Recordset& rs) {
    const bool waits = ports_.outbox.Put(mail, MailEvent::Recovery, NumberOrZero(rs, "ID"), NumberOrZero(rs, "nFail"));
    return {waits, waits ? "" : "There is no recipient."};
}

std::string ServerActions::UpMail(Recordset& rs, const std::string& strDesc, const std::string& strCMDUP) {
    const std::string url = UrlOf(TextOrEmpty(rs, "strType"), TextOrEmpty(rs, "strAddress_IP"));
    const std::string now = ports_.clock.Now().Text();
    if (IsSet(rs, "bNotSendBody", false)) return "UP " + now;
    std::string trace;
    IgnoreErrors([&] {
        const std::int64_t id = rs.Fields("ID").Value().Int64();
        const auto traced = tracedOutages_.find(id);
        const bool isOther = traced == tracedOutages_.end() || traced->second != FailuresBefore(rs);
        if (ports_.witnesses == nullptr || !isOther) trace = ports_.trace.GetTraceRouteText(id);
    });
    return Lines({
        "Time: " + now,
        "",
        "The Server " + url + " (" + strDesc + ") can be reached again! Previously, an email was sent notifying failure." +
            (IsBlank(strCMDUP) ? "" : "\r\n\r\nRunning Server Up command '" + strCMDUP + "'") + trace,
    });
}

void ServerActions::SendStartupNotice() {
    const std::string kRoutine = "frmMonitor:SendStartupNotice: ";
    try {
        if (ports_.entries.Entries().empty())
            return LogError(kRoutine + "There is no entry in memory whose people could be told.");
        const ServerEntry& first = ports_.entries.Entries().front();
        const Notification notice{first["strEmailList1"], first["strEmailList2"], first["strEmailFrom"],
                                  "Korvane Just Started. This server is up.", StartupMail()};
        if (ports_.outbox.Post(notice)) return;
        const SendOutcome outcome = ports_.mail.SendThrough(MailServer::Primary, notice);
        if (!outcome.sent) LogError(kRoutine + "the notice could not be sent because '" + outcome.strError + "'.");
    } catch (const std::exception& error) {
        LogError(kRoutine + error.what());
    }
}

std::string ServerActions::StartupMail() const {
    return Lines({
        "Time: " + ports_.clock.Now().Text(),
        "",
        "Korvane Just Started.  You have the global setting turned on to reboot the computer upon Server failure.  (Checkbox on "
        "the Settings Menu). ",
        "",
        ports_.settings.IsTrue("RebootAny") ? "A reboot will occur if ANY of the servers fail x times in a row."
                                            : "A reboot will occur only when ALL of the servers are in a failing state. ",
        "",
        "This message is sent to you to notify you that Korvane just started (and most likely it's because the server just came "
        "back up). The only way to turn off this startup email notification is if you turn off the setting to automatically "
        "restart the server upon Server failure (Checkbox on the Settings Menu).",
    });
}

}  // namespace korvane
