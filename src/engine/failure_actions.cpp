#include "engine/failure_actions.h"

#include <exception>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "engine/server_table.h"

namespace korvane {
namespace {

using std::chrono::seconds;

/// Entries that are due later do not count against "all servers are failing".
constexpr seconds kDueSoon{360};

constexpr int kUnused = 0;

// The texts of the mails and of the list in the `Failures` row, including mistakes and double spaces: people filter their mail by
// them.
constexpr const char* kLine = "\r\n";
constexpr const char* kParagraph = "\r\n\r\n";

constexpr const char* kNoAction = "None.";
constexpr const char* kCommandFollows = "The following command will be executed:";
constexpr const char* kNoCommand = "No commands will be executed (none are configured).";
constexpr const char* kNoCommandItem = "<ul><li>No commands are configured to be executed.";

struct RebootWords {
    const char* inMail;
    const char* item;
};
constexpr RebootWords kRebootAny = {
    "Korvane will shutdown and restart the computer Korvane is running on.  Set to reboot if ANY server fails.",
    "<li>Korvane shut down and restarted the computer it was running on.  Set to reboot if ANY server fails."};
constexpr RebootWords kRebootAll = {
    "Korvane will shutdown and restart the computer Korvane is running on. ALL SERVERS ARE FAILING.",
    "<li>Korvane shut down and restarted the computer it was running on.  ALL SERVERS ARE FAILING."};

constexpr const char* kMailFailed = "Server DOWN Email Notification <font color=red>FAILED</font>  because '";
constexpr const char* kMailSent = "Server DOWN Email Notification successfully sent to: '";
constexpr const char* kUpNoticeWanted =
    "<li>Server configured so a Server UP Notification <b>will</b> be sent with tracert information when the server comes back "
    "up. ";
constexpr const char* kUpNoticeNotWanted = "<li>Server configured so a Server UP Notification <b>WILL NOT</b> be sent.";

constexpr const char* kReachedAgain = " can be reached again! Previously, an email was sent notifying failure.";

constexpr const char* kStartupSubject = "Korvane Just Started. This server is up.";
constexpr const char* kStartupGreeting =
    "Korvane Just Started.  You have the global setting turned on to reboot the computer upon Server failure.  "
    "(Checkbox on the Settings Menu). ";
constexpr const char* kStartupRebootAny = "A reboot will occur if ANY of the servers fail x times in a row.";
constexpr const char* kStartupRebootAll = "A reboot will occur only when ALL of the servers are in a failing state. ";
constexpr const char* kStartupReason =
    "This message is sent to you to notify you that Korvane just started (and most likely it's because the server just came back "
    "up). The only way to turn off this startup email notification is if you turn off the setting to automatically restart the "
    "server upon Server failure (Checkbox on the Settings Menu).";

std::string UrlOf(const std::string& strType, const std::string& strAddress_IP) {
    const CheckKind kind = CheckKindOf(strType);
    return kind == CheckKind::Http || kind == CheckKind::Https ? strType + "://" + strAddress_IP : strAddress_IP;
}

bool IsBlank(const std::string& text) {
    return Trim(text).empty();
}

std::string TextOf(Recordset& rs, const char* column) {
    return rs.Fields(column).Value().Text();
}

// The up notice continues with what can be read.
std::string TextOrBlank(Recordset& rs, const char* column) {
    std::string text;
    IgnoreErrors([&] { text = TextOf(rs, column); });
    return text;
}

bool IsSet(Recordset& rs, const char* column, bool otherwise) {
    bool set = otherwise;
    IgnoreErrors([&] { set = rs.Fields(column).Value().Bool(); });
    return set;
}

/// A column that is read now and used in a later step. If it could not be read, the error is raised in that step.
class ReadAhead {
public:
    ReadAhead(Recordset& rs, const char* column) {
        try {
            value_ = rs.Fields(column).Value();
        } catch (const std::exception&) {
            error_ = std::current_exception();
        }
    }
    const Value& Get() const {
        if (error_) std::rethrow_exception(error_);
        return value_;
    }

private:
    Value value_;
    std::exception_ptr error_;
};

}  // namespace

/// The row as it is before the mail: while the mail is sent, an editor may change or remove the row.
struct ServerActions::FailedEntry {
    explicit FailedEntry(Recordset& rs)
        : strAddress_IP(TextOf(rs, "strAddress_IP")),
          strURL(UrlOf(TextOf(rs, "strType"), strAddress_IP)),
          strDesc(TextOf(rs, "strDesc")),
          strEmailBody(TextOf(rs, "strEmailBody")),
          strEmailText(TextOf(rs, "strEmailText")),
          strEmailList1(TextOf(rs, "strEmailList1")),
          strEmailList2(TextOf(rs, "strEmailList2")),
          strEmailFrom(TextOf(rs, "strEmailFrom")),
          strCMD(TextOf(rs, "strCMD")),
          nTries(TriesOf(rs).Text()),
          bNotSendBody(rs.Fields("bNotSendBody").Value().Bool()),
          bSendUpNotify(rs, "bSendUpNotify"),
          ID(rs, "ID") {}

    std::string strAddress_IP;
    std::string strURL;
    std::string strDesc;
    std::string strEmailBody;
    std::string strEmailText;
    std::string strEmailList1;
    std::string strEmailList2;
    std::string strEmailFrom;
    std::string strCMD;
    std::string nTries;
    bool bNotSendBody;
    ReadAhead bSendUpNotify;
    ReadAhead ID;
};

std::string ServerActions::DoFailureStateStuff(Connection& conn, Recordset& rs, const std::string& strReason) {
    std::string strAction = kNoAction;
    try {
        const FailedEntry entry(rs);
        std::string body = entry.strEmailBody + kLine + "Time: " + ports_.clock.Now().Text() + kParagraph + "The Server " +
                           entry.strURL + " could not be reached " + kLine + entry.nTries + " times in a row.  " + kLine +
                           "Reason: " + strReason;
        const bool hasCommand = !IsBlank(entry.strCMD);
        body += kParagraph + (hasCommand ? std::string(kCommandFollows) + kLine + entry.strCMD : kNoCommand);
        strAction += hasCommand ? "<ul><li>" + entry.strCMD + " was executed. " : kNoCommandItem;
        AddRebootWords(conn, body, strAction);
        body += kParagraph + entry.strEmailText;
        MailFailure(entry, entry.bNotSendBody ? "" : body, strAction);
        strAction += entry.bSendUpNotify.Get().Bool() ? kUpNoticeWanted : kUpNoticeNotWanted;
        strAction += "</ul>";
        ports_.trace.RunTraceRoute(entry.strAddress_IP, entry.ID.Get().Int64());
        RunCommandOf(entry.strCMD);
    } catch (const std::exception& error) {
        ports_.status.setStatusMSG("DoFailureStateStuff: Error: " + std::string(error.what()));
        LogError("frmMonitor:DoFailureStateStuff: Errors block: " + std::string(error.what()));
    }
    return strAction;
}

// Adds only text: the machine restarts only if the entry's command does it.
void ServerActions::AddRebootWords(Connection& conn, std::string& body, std::string& strAction) {
    if (!ports_.settings.IsTrue("Reboot")) return;
    const bool any = ports_.settings.IsTrue("RebootAny");
    if (!any && !AreAllServersFailing(conn)) return;
    const RebootWords& words = any ? kRebootAny : kRebootAll;
    body += kParagraph + std::string(words.inMail);
    strAction += words.item;
}

void ServerActions::MailFailure(const FailedEntry& entry, const std::string& body, std::string& strAction) {
    const std::string kRoutine = "frmMonitor:DoFailureStateStuff: ";
    const std::string subject = entry.strDesc.empty() ? entry.strEmailText : entry.strEmailText + " (" + entry.strDesc + ")";
    const SendOutcome outcome = ports_.mail.SendWithBackup(
        {entry.strEmailList1, entry.strEmailList2, entry.strEmailFrom, subject, body}, [&](const std::string& strError) {
            LogError(kRoutine + "primary Email to " + entry.strEmailList1 + " failed. " + strError + " using " +
                     ports_.settings.getKvSettingsColVal("Server"));
        });
    const std::string told =
        outcome.sent ? kMailSent + entry.strEmailList1 + " " + entry.strEmailList2 + "'." : kMailFailed + outcome.strError + "'.";
    strAction += kLine + ("<li>" + told);
    outcome.sent ? ports_.log.Info(kRoutine + told) : LogError(kRoutine + told);
}

void ServerActions::RunCommandOf(const std::string& strCommand) {
    if (!IsBlank(strCommand)) ports_.commands.RunCommand(strCommand, kUnused, WindowStyle::Normal);
}

bool ServerActions::AreAllServersFailing(Connection& conn) {
    DateTime when = ports_.clock.Now() + kDueSoon;
    if (when == when.Date())
        when = when + seconds(1);  // midnight cannot be written in a query, and this text is not worth losing the mail
    const auto rs = ports_.store.NewRecordset();
    rs->Open(query::MonitoredAndDueBy(when), conn, CursorType::Static, LockType::Optimistic);
    bool bAll = !rs->Eof();
    for (; bAll && !rs->Eof(); rs->MoveNext())
        bAll = TextOf(*rs, "strCurStatus") != status::kUp;
    return bAll;
}

void ServerActions::DoUpAgainStuff(Recordset& rs) {
    const std::string strDesc = TextOrBlank(rs, "strDesc");
    const std::string strCMDUP = TextOrBlank(rs, "strCMDUP");
    const std::string strTitle = UrlOf(TextOrBlank(rs, "strType"), TextOrBlank(rs, "strAddress_IP")) + " (" + strDesc + ")";
    const std::string now = ports_.clock.Now().Text();
    std::string body = "Time: " + now + kParagraph + "The Server " + strTitle + kReachedAgain;
    if (!IsBlank(strCMDUP)) body += kParagraph + ("Running Server Up command '" + strCMDUP + "'");
    if (IsSet(rs, "bNotSendBody", false)) {
        body = "UP " + now;
    } else {
        IgnoreErrors([&] { body += ports_.trace.GetTraceRouteText(rs.Fields("ID").Value().Int64()); });
    }
    const std::string subject = "SERVER BACK UP (" + TextOrBlank(rs, "strEmailText") + ") " + strDesc;
    if (IsSet(rs, "bSendUpNotify", true)) {  // an unneeded mail is better than a missing one
        const SendOutcome outcome = ports_.mail.SendWithBackup(
            {TextOrBlank(rs, "strEmailList1"), TextOrBlank(rs, "strEmailList2"), TextOrBlank(rs, "strEmailFrom"), subject, body});
        if (!outcome.sent)
            LogError("frmMonitor:DoUpAgainStuff: Server UP Email Notification FAILED because '" + outcome.strError + "'.");
    }
    RunCommandOf(strCMDUP);
}

void ServerActions::SendStartupNotice() {
    const std::string kRoutine = "frmMonitor:SendStartupNotice: ";
    try {
        if (ports_.entries.Entries().empty())
            return LogError(kRoutine + "There is no entry in memory whose people could be told.");
        const ServerEntry& first = ports_.entries.Entries().front();
        const std::string body = "Time: " + ports_.clock.Now().Text() + kParagraph + kStartupGreeting + kParagraph +
                                 (ports_.settings.IsTrue("RebootAny") ? kStartupRebootAny : kStartupRebootAll) + kParagraph +
                                 kStartupReason;
        const SendOutcome outcome = ports_.mail.SendThrough(
            MailServer::Primary, {first["strEmailList1"], first["strEmailList2"], first["strEmailFrom"], kStartupSubject, body});
        if (!outcome.sent) LogError(kRoutine + "the notice could not be sent because '" + outcome.strError + "'.");
    } catch (const std::exception& error) {
        LogError(kRoutine + error.what());
    }
}

}  // namespace korvane
