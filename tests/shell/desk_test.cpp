// What the operator does at the desk that its windows do not show: entries column by column, global addresses under
// faults, the version check, reports and the website.
#include <gtest/gtest.h>

#include "shell/entry/entry_save.h"
#include "shell/list/outage_notes.h"
#include "shell/list/server_list.h"
#include "shell/options/global_email_walk.h"
#include "shell/options/resource_emails.h"
#include "shell/shell_world.h"
#include "shell/web/web_forms.h"

namespace korvane::desk_test {

using namespace std::chrono_literals;

/// Types "column=text|column=text" into the inputs.
EntryFields Typed(const std::string& inputs, EntryFields fields = {}) {
    for (const std::string& input : Split(inputs, '|'))
        for (const EntryInput& each : EntryInputs())
            if (input.starts_with(std::string(each.key) + "=")) fields.*each.text = input.substr(each.key.size() + 1);
    return fields;
}

struct EntryWorld : StartedWorld {
    EntryFields fields =
        (rows.Add({.strType = "FTP", .strDownTime1 = "3:00am", .strCurStatus = "DOWN"}), OpenEntry(desk, false, "1").fields);
    bool Save(const std::string& inputs) {
        return SaveEntry(desk, "1", fields = Typed(inputs, fields), [&](const std::string& name) { heard.push_back(name); });
    }
};

TEST(Entry, OpensWithItsDefaultsAndIsStoredInputByInput) {
    EntryWorld w;
    std::string columns = "strCurStatus";
    for (const EntryInput& each : EntryInputs())
        columns += each.key.empty() ? "" : "|" + std::string(each.key);
    w.Write("GlobalEmail.dat", "TO_LIST1=a@x;b@y\r\nTO_LIST2=c@z\r\nFROM=k@x\r\nSUBJECT=XXX is down\r\n");
    const OpenedEntry fresh = OpenEntry(w.desk, true, "");
    EXPECT_EQ(
        w.Cells(columns),
        R"(UP; ; ; 0; 0; 60; www.example.com; Example; Group1; a@x;b@y; c@z; k@x; 3; XXX is down; ; True; False; True; ; ; ; ; ; 15; HTTP; 80; ; )");
    w.rows.Remove("Servers", std::stoll(fresh.strID));
    w.fields.bIsMonitoring = false, w.fields.bNotSendBody = true;
    w.Save(
        R"(strDownTime1=|strDownTime2=15:30|nDownDuration1=45|nDownDuration2=-1|nIntervalSeconds=90|strAddress_IP=f.example|strDesc= f |strGroup= a b.c,d;e |strEmailList1= a@x|strEmailList2=b@x|strEmailFrom=c@x|nTries=many|strEmailText=XXX, XXX|strEmailBody=b|strCMDUP=up|strCMD=do|strUserName= me |strPassword=pw|strExpectedText= 220 |nTimeout=7|strType= |strPort=x|strRequestText=r)");
    EXPECT_EQ(
        w.Cells(columns),
        R"(DOWN; 3:00am; 15:30; 45; 0; 90; f.example; f; a_bcde;  a@x; b@x; c@x; 3; f.example, f.example; b; False; True; True; up; do;  me ; pw; 220; 7; FTP; 80; r; )");
    EXPECT_TRUE(w.heard.empty() && w.Logged("# frmURLData:cmdOk: entry")) << "of the tries, which are no number";
    w.fields.bIsMonitoring = true;
    const auto port = [&](const auto& typed) { return w.Save("strPort=" + typed), w.Cells("strPort|strCurStatus"); };
    EXPECT_EQ(Each("0||8080|-1", port), "80; UP; ; 80; UP; ; 8080; UP; ; 80; UP; ; ");
}

TEST(Entry, WarningsDoNotStopTheSaveAndARowThatIsGoneIsNamed) {
    EntryWorld w;
    EXPECT_TRUE(w.Save("strType=PING|strAddress_IP=http://ping.example|strEmailText=XXX"));
    EXPECT_EQ(w.Cells("strAddress_IP|strEmailText"), "ping.example; ping.example; ");
    EXPECT_FALSE(w.Logged("# frmURLData:cmdOk:"));
    w.meanwhile = [&] { w.rows.Remove("Servers", 1), w.meanwhile = [] {}; };
    w.Save("strType=FTP|strAddress_IP=ftp://x");
    EXPECT_TRUE(w.Logged("# frmURLData:cmdOk: entry")) << "the row went while the message was open";
    EXPECT_FALSE(w.Save("") || OpenEntry(w.desk, false, "77").found);
    EXPECT_EQ(
        w.Heard(),
        R"(! Sorry, please convert your host name to an ..P address here.; ! do not use http://, https://, or ftp:// etc..pop3, smtp etc.; ping.example; ! do not use http://, https://, or ftp:// etc..pop3, smtp etc.; x; ! DB Error: Couldn't save  SELECT * from servers where id =1; ! Error with Database. Current record ID='77'..rs where id =77; )");
}

TEST(GlobalEmail, IsSavedInItsOrderAndGivenToAllOrNone) {
    StartedWorld w;
    w.rows.AddMany({{.strDesc = "a"}, {.strDesc = "b"}, {.strDesc = "c"}});
    ResourceEmailFiles monitors{w.files, w.home, [&] { w.heard.push_back("reloaded" + w.Text("GlobalEmail.dat")); }};
    const GlobalEmailFields typed{"a;b", "c", "f", "s", "cpu", "disk", "memory", "services", "", "", "", ""};
    GlobalEmailFields read;
    GlobalEmailWalk walk(w.desk, monitors);
    walk.SaveGlobalValues(typed), walk.Open(read);
    EXPECT_EQ(w.Text("GlobalEmail.dat"), "TO_LIST1=a;b\r\nTO_LIST2=c\r\nFROM=f\r\nSUBJECT=s\r\n");
    EXPECT_EQ(read.strEmailCPU + read.strEmailDisk + read.strEmailMemory + read.strEmailServices, "cpudiskmemoryservices");
    w.store.faults.Add({.operation = StoreOperation::Update, .nth = 3});
    w.answers = {true, true};
    const auto give = [&](const std::string&) {
        walk.AskUpdateAll([&] { w.heard.push_back(walk.UpdateAll(typed, [](const auto&) {})); });
        return std::to_string(w.rows.Count("Servers", "strEmailList1 = 'a;b' and strEmailText = 's'"));
    };
    EXPECT_EQ(Each("with a fault|Yes", give), "0; 3; ");
    EXPECT_TRUE(w.Heard().starts_with("reloaded; ! Data updated; ")) << "the file last";
}

TEST(ServerList, ShowsInRedWhoWouldNotifyNobodyWithAnySafeguardOn) {
    StartedWorld w;
    w.rows.Add({});
    const auto shown = [&w] {
        const auto row = LoadServerList(w.store, w.rows.DriverString(), w.world.clock.Now(), false, &w.desk.alertPath).at(0);
        w.desk.reports.PublishReports(true);
        const bool onPage = Holds(w.Text("Reports/R0/Group1/summary.htm"), "<font color=red><b>");
        return row.cells[column::Status] + (row.warns ? "!" : "") + (onPage ? "!" : "");
    };
    EXPECT_EQ(shown(), "UP");
    w.Set("HidePasswords", "True");
    EXPECT_EQ(shown(), "UP, notifies nobody!!");
    w.rows.Change("Servers", 1, {{"strEmailList2", "a@b.c"}});
    EXPECT_EQ(shown(), "UP");
    w.net.Host("mail.example").Port(25).Refuse();
    w.answers = {true};
    w.desk.mail.TestEmail("a@b.c", "", false, "", "", "", "", "", "a@b.c", [](bool) {});
    EXPECT_EQ(shown(), "UP, test mail failed!!");
    EXPECT_FALSE(Holds(w.Text("Reports/R0/Group1/summary.htm"), "Alert path"));
    w.Set("MailOutbox", "True");
    w.desk.alertPath.TestMail(false);
    EXPECT_TRUE(w.desk.outbox.State().IsAlarming() && shown() == "UP, test mail failed!!");
    EXPECT_TRUE(Holds(w.Text("Reports/R0/Group1/summary.htm"), "</table>\r\n<br>Alert path not yet proven."));
    w.Set("Server", " ");
    EXPECT_EQ(shown(), "UP, notifies nobody!!");
}

TEST(OutageNotes, OneAnEntryAndOutageAndOneForMany) {
    StartedWorld w;
    std::string shown;
    OutageNotes notes(w.world.timers, [&](const OutageNotes::Note& note) { shown += note.title + ": " + note.text + "; "; });
    w.noteOutage = [&](const auto& entry, bool isDown, const auto& reason) { notes.Add(entry, isDown, reason); };
    const auto after = [&](std::chrono::seconds time) { return w.RunFor(time), std::exchange(shown, ""); };
    w.rows.Add({.strDesc = "", .strAddress_IP = "10.0.0.1", .strType = "PING", .nTries = 2});
    w.net.Host("10.0.0.1").EchoSilent();
    EXPECT_TRUE(after(600s).starts_with("10.0.0.1 is DOWN: Ping Failure"));
    EXPECT_EQ(after(600s), "") << "one an outage";
    w.net.Host("10.0.0.1").Echo(3ms);
    EXPECT_EQ(after(600s), "10.0.0.1 is UP again: The outage is over.; ");
    for (const char* name : {"a", "<b>", "c", "d", "e"})
        notes.Add(name, true, "why");
    notes.Add("f", false, "");
    EXPECT_EQ(after(9s), "");
    EXPECT_EQ(after(2s), "5 servers are DOWN: a, ‹b›, c, ...: a, ‹b›, c, d, e; ");
    notes.Add("g", true, "late");
    EXPECT_EQ(after(4s), "f is UP again: The outage is over.; ");
    EXPECT_EQ(after(10s), "g is DOWN: late; ");
    EXPECT_EQ(after(60s), "");
}

TEST(Web, PagesReportsVersionsAndFormsAreOpenedOrRefused) {
    StartedWorld w;
    VersionCheck check(w.desk.http, w, w.desk.pages, "10.0.0");
    for (const char* file : {"version= 10. |More", "version=9.9.9|", "<!DOCTYPE html><html>", ""}) {  // compared as text
        w.net.Page("http://www.example.com/zshared/version.txt").Anew().Answer(file, 5ms);
        w.answers = {true};
        w.world.After(1ms, [&] { check.CheckForVersion(); });  // does nothing while the first waits
        check.CheckForVersion();
    }
    w.desk.settingsFile.Write("Settings", "uniqueid", "17");
    w.desk.pages.Show(WebPage::mnuHelpFeatures);
    w.processes.browserStarts = false, w.desk.pages.OpenHelpURL();
    w.processes.hasBrowser = false, w.desk.pages.OpenHelpURL(), w.desk.reports.DisplayReport("0", "");
    w.heard.insert(w.heard.end(), w.processes.opened.begin(), w.processes.opened.end());
    w.heard.push_back(FeedbackForm({"me@x.de", "a?\r\nb\n%, /~:$&\xC3\xA9", "1.0.0", ""}, w.world.events).address.substr(58));
    EXPECT_EQ(
        w.Heard(),
        R"(! You have the latest version (10.0.0).  It h..n did not:|More; ? Yes: The newer version (9.9.9) of Korvane i..om/download.asp; ! The Korvane Server could not be reached.  P..ry again later.; ! You have the latest version (10.0.0).  It h..ry agian later.; ! URL Failed: Web Page not Opened; ! Browser Not Found: Could not find associated Browser; ! Korvane can't open any URL until you config..efault browser.; ! We're sorry, but Korvane can't open up your..efault browser.; https://www.example.com/download/korvanecore.deb; https://www.example.com/features.asp?id=17; email=me@x.de&body=a?DAbDA%25%2C%20%2F%7E%3A%24%26éDAV1.0.0; )");
    w.rows.Add({}), w.processes.hasBrowser = w.processes.browserStarts = true, w.desk.reports.DisplayReport("0", "");
    w.Write("Reports/R0/groups.htm", "as it was"), w.desk.reports.DisplayReport("0", "");
    EXPECT_EQ(w.Text("Reports/R0/groups.htm") + w.processes.opened.back(), "as it was" + w.PathOf("Reports/R0/groups.htm"));
}

}  // namespace korvane::desk_test
