// The operator's test of the mail settings: a question, a mail through each configured server, and a message box with the result.
#include "base/text.h"
#include "notify/dispatcher.h"

namespace korvane {
namespace {

constexpr const char* kNoBackupYet =
    "You have not yet named a backup SMTP server.  It's not necessary for this test, but you may want to consider it later.  "
    "Choose the 'Settings' menu to set the backup SMTP server value.";

std::string Question(const std::string& strTo1, const std::string& strTo2, const std::string& primary,
                     const std::string& backup) {
    std::string text = "You are about to test whether you can send email to '" + strTo1 + "'";
    if (!strTo2.empty()) text += " and to '" + strTo2 + "'";
    text += "\r\n\r\nThe Primary SMTP server is '" + primary + "'.\r\n\r\n";
    text += backup.empty() ? kNoBackupYet : "A Duplicate email will also be sent using the backup SMTP server '" + backup + "'.";
    return text + "\r\n\r\nClick YES to test, NO to cancel.";
}

std::string BodyOf(bool bNoDefaultBody, const std::string& strBody1, const std::string& strText) {
    if (!bNoDefaultBody) {
        return "[TEST ONLY:]" + strBody1 + "\r\nThis is just a test from Korvane.  Email success!\r\n\r\n" + strText;
    }
    return "[TEST ONLY:] " + strBody1 +
           "\r\nNotification emails will contain no 'Body' part of the message except what you typed into the 'Body (Line 1)' "
           "field.  In other words, in an actual email notification, the body of the email would be completely blank (except for "
           "'" +
           strBody1 +
           "'). This is to save space if your email is forwarded to your pager. You've checked the \"Do not use the default "
           "Korvane Email Body Text. Use only what's on  'Body (Line 1) below:\" option.";
}

std::string SubjectOf(const std::string& strText, const std::string& strEmailDesc) {
    return "[TEST MSG] " + (strEmailDesc.empty() ? strText : strText + " (" + strEmailDesc + ")");
}

}  // namespace

void Dispatcher::TestEmail(std::string strTo1, std::string strTo2, bool bNoDefaultBody, const std::string& strBody1,
                           const std::string& strText, const std::string& strEmailDesc, const std::string& strFromDefault,
                           const std::string& strOverrideTo, const std::string& strFrom, std::function<void(bool sent)> done) {
    if (!strOverrideTo.empty()) {
        strTo1 = strOverrideTo;
        strTo2.clear();
    }
    const std::string backup = Setting("ServerBackup");
    const Notification test{strTo1, strTo2, strFrom.empty() ? strFromDefault : strFrom, SubjectOf(strText, strEmailDesc),
                            BodyOf(bNoDefaultBody, strBody1, strText)};
    ports_.person.Ask(
        kMessageTitle, Question(strTo1, strTo2, Setting("Server"), backup), [=, this] { done(RunTest(test, backup)); },
        [=] { done(false); });
}

bool Dispatcher::RunTest(const Notification& test, const std::string& backup) {
    if (ports_.stopMonitor) ports_.stopMonitor();
    ports_.status.setStatusMSG("Testing Email... Please wait.");
    if (test.strTo1.empty()) return true;  // nothing was tried
    const bool primarySent = TestThrough(MailServer::Primary, Setting("Server"), test);
    const bool backupSent = Trim(backup).empty() || TestThrough(MailServer::Backup, backup, test);
    return primarySent && backupSent;
}

bool Dispatcher::TestThrough(MailServer server, const std::string& name, const Notification& test) {
    const SendOutcome outcome = SendThrough(server, test);
    const std::string to = test.strTo1 + ", " + test.strTo2;
    if (outcome.sent) {
        ports_.person.ShowMessage(kMessageTitle, "Email Test SUCCEEDED! Sent to " + to + " using SMTP server " + name + ".");
    } else {
        ports_.log.WriteLog(kLogFatal, kLogError,
                            "TestEmail: Email Test Failed to " + to + " using " + name + ". " + outcome.strError);
        ports_.person.ShowError(kMessageTitle, "Email Test Failed to " + to + " from " + test.strFrom + " using SMTP server " +
                                                   name + ".\r\n\r\nError: " + outcome.strError);
    }
    return outcome.sent;
}

}  // namespace korvane
