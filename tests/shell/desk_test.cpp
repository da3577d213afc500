// What the operator does at the desk, without its windows: entries and their rules, settings, global addresses, the commands of the
// main window and its list, reports, the version check and the website.
#include <gtest/gtest.h>

#include "shell/entry/entry_save.h"
#include "shell/entry/entry_test.h"
#include "shell/entry/fail_text_rules.h"
#include "shell/list/monitor_commands.h"
#include "shell/list/server_list.h"
#include "shell/options/global_email_walk.h"
#include "shell/options/options_commands.h"
#include "shell/options/resource_emails.h"
#include "shell/shell_world.h"
#include "shell/web/web_forms.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using O = OptionsFields;

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
        columns += "|" + std::string(each.key);
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

// What is typed, and after "<" what a web page answers; then the refusal of the down times, or the verdict and the advice.
TEST(Entry, DownTimesAreRefusedRowByRowAndTestsJudgedByExpectedTextAndRules) {
    Play(R"(
$ strDownTime1=3:00am|nDownDuration1=32767|nDownDuration2=abc =>
$ strDownTime1=  |strDownTime2=soon|nDownDuration2= => 'soon' the time you entered
$ strDownTime1=3:00am|nDownDuration1=32768|strDownTime2=soon => '32768' the downtime minutes
$ strType=HTTP|strPort=80|strExpectedText= ok <all ok => ! Passed: SUCCESS! 's' port(80). timeout(15) ..sponse: |all ok;
$ strType=HTTP|strPort=443|strExpectedText=OK<all ok => ! Failed: Failure! HTTP 's' port(443). timeou..n the response.; Your command might be failing because you hav
$ strType=HTTP|strPort=80|strExpectedText= ok <ok ERROR => ! Failed: Server Error: Although success text..or this server.;
$ strType=HTTP|strPort=80|strExpectedText= <ERROR => ! Failed: Server Error: 'ERROR' was found in ..) for this URL.;
$ strType=SMTP|strPort=25|strExpectedText=220< => ! Passed: SUCCESS! 's' port(25). timeout(15) ..ponse: |220 hi|;
)",
         [](const std::string& order) {
             StartedWorld w;
             const EntryFields fields = Typed("strAddress_IP=s|nTimeout=15|" + order.substr(0, order.find('<')));
             const auto refusal = CheckDownTimes(fields);
             if (refusal) return "'" + fields.*refusal->field + "' " + refusal->message.substr(17, 20);
             if (fields.strType.empty()) return std::string();
             w.rows.AddRow("ResponseFailText", {{"id", 1}, {"idParent", 5}, {"strFailText", "ERROR"}});
             w.net.Host("s").Port(25).Speak("220 hi\r\n");
             w.net.Page("http://s").Answer(order.substr(order.find('<') + 1));
             const CheckResult result = RunEntryTest(w.desk, fields).value();
             const auto verdict = JudgeEntryTest(fields, result, [&] { return FindUrlFailure(w.desk, result.response, "5"); });
             w.heard = {(verdict.failed ? "! Failed: " : "! Passed: ") + verdict.text};
             return w.Heard() + PortAdvice(fields).substr(0, 45);
         });
}

// How many rules are stored, as 11, 12 and so on, and the texts typed, each after the number of its row; then what is stored, and the
// count. The time stamp of the start is 711211500, and the number of the row comes after it; 7112115004 is taken.
TEST(FailTextRules, StoredRowsAreUsedAgainInTheirOrder) {
    const auto save = [](const std::string& order) {
        StartedWorld w;
        const Texts cells = Split(order, ',');
        for (int rule = 11; rule < 11 + std::stoi(cells[0]); ++rule)
            w.rows.AddRow("ResponseFailText", {{"id", rule}, {"idParent", 1}, {"strFailText", "old"}});
        w.rows.AddRow("ResponseFailText", {{"id", std::int64_t{7112115004}}, {"idParent", 77}});
        FailTextRules rules(w.desk, w.rows.ProviderString(), "1");
        EXPECT_TRUE(!rules.Open().found && rules.Save({{{"of an entry that is gone", ""}}}).empty());
        w.rows.Add({.nFailScanText = 7});
        FailTextRows typed;
        for (std::size_t i = 1; i < cells.size(); ++i)
            typed[static_cast<std::size_t>(cells[i][0] - '0')] = {cells[i].substr(1), " run"};
        if (Holds(order, "fault")) w.store.faults.Add({.operation = StoreOperation::Update, .nth = 2});
        std::string kept = rules.Save(typed);
        for (const Row& row : w.rows.Query("SELECT * FROM ResponseFailText where idParent = 1"))
            kept += row.at("id").Text() + " " + row.at("strFailText").Text() + row.at("strFailCommand").Text() + ", ";
        return kept + w.Cells("nFailScanText");
    };
    EXPECT_EQ(
        Each("0,3a,4b,5c|3|3,0A,2C|1,0 ,2x,9y|3,0A,1fault,2C", save),
        R"(7112115003 arun, 7112115005 brun, 7112115006 crun, 3; ; 0; ; 11 Arun, 13 Crun, 2; ; 11 run, 7112115002 xrun, 7112115009 yrun, 3; ; disk I/O error11 Arun, 12 old, 13 old, 7; ; )");
}

TEST(Options, EachIsStoredTrimmedOrAsTypedAndShownAgain) {
    StartedWorld w;
    const std::string keys =
        R"(Begin|GlobalRetryDuration|SMTPUser1|SMTPPass1|SMTPPopHost1|SMTPUser2|SMTPPass2|SMTPPopHost2|SuccessLT|Server|ServerBackup|Zone|YellowAlertWav|RedAlertWav|ServiceName|ProxyName|ProxyPort|ReportPath|Service|Reboot|RebootAny|bRedAlert)";
    for (const std::string& key : Split(keys, '|'))
        w.Set(key, key.starts_with("Reboot") ? "True" : " " + key + "\nReboot=no ");
    O fields = OptionsFromSettings(w.desk.collection);
    fields.Begin = " 10 ", fields.GlobalRetryDuration = "90 ", fields.SuccessLT = " 50", fields.ReportPath = w.PathOf("a/b/ ");
    EXPECT_FALSE(SaveOptions(w.desk, fields));
    EXPECT_EQ(
        ReplaceAll(Each(keys, [&w](const auto& key) { return w.Stored(key); }), w.home, "~"),
        R"(10; 90; SMTPUser1 Reboot=no; SMTPPass1 Reboot=no; SMTPPopHost1 Reboot=no; SMTPUser2 Reboot=no; SMTPPass2 Reboot=no; SMTPPopHost2 Reboot=no; 50; Server Reboot=no; ServerBackup Reboot=no; Zone Reboot=no; YellowAlertWav Reboot=no; RedAlertWav Reboot=no; ServiceName Reboot=no; ProxyName Reboot=no; ProxyPort Reboot=no; ~/a/b; False; True; True; False; )");
    EXPECT_EQ(OptionsFromSettings(w.desk.collection).Server, " Server\nReboot=no ") << "as typed";
    EXPECT_TRUE(w.files.Exists(w.PathOf("a/b")) && w.desk.legacyLog.Count() == 2) << "90 seconds in minutes";
}

// They round like all numbers: a half goes to the even neighbour. A refusal keeps what comes before it, for the next save alone.
TEST(Options, NumbersHaveTheirRangesAndARefusalStopsTheSave) {
    StartedWorld w;
    const auto save = [&w](std::string O::*field) -> Deed {
        return [&w, field](const std::string& typed) {
            O fields = OptionsFromSettings(w.desk.collection);
            const std::string kept = w.Stored("Zone") + fields.*field + fields.Server;
            fields.*field = typed, fields.Zone += "1", fields.Server += "1";
            const auto refusal = SaveOptions(w.desk, fields);
            const O now = OptionsFromSettings(w.desk.collection);
            if (!refusal) return now.*field == typed && w.Stored("Server") == fields.Server ? "yes" : "lost";
            if (refusal->field != field || !refusal->message.ends_with("You typed in " + typed)) return "wrong";
            return w.Stored("Zone") + now.*field + now.Server == kept && now.Zone == fields.Zone ? "no" : "wrong";
        };
    };
    EXPECT_EQ(Each("0|10|10.5|11|10.6||-1|two| ", save(&O::Begin)), "yes; yes; yes; no; no; no; no; no; no; ");
    EXPECT_EQ(Each("5|32400|32400.5|4.5|32401|1e999", save(&O::GlobalRetryDuration)), "yes; yes; yes; no; no; no; ");
    EXPECT_EQ(Each("0|50|50.5|51||nan", save(&O::SuccessLT)), "yes; yes; yes; no; no; no; ");
}

TEST(Options, TheMailTestTriesBothServers) {
    StartedWorld w;
    VirtualMailServer backup(w.net.Host("backup.example").Port(25));
    w.mail.refuse = [](const std::string& line) { return line.starts_with("mail from:"); };
    w.answers = {false, true};
    O fields = OptionsFromSettings(w.desk.collection);
    fields.ServerBackup = "backup.example";
    const AskText ask = [](const auto&, const auto&, const auto& then) { then("me@x.com"); };
    const auto say = [&w](const std::string& text) { w.heard.push_back(text); };
    for (int i = 0; i < 2; ++i)
        TestMailSettings(w.desk, fields, ask, say, [] {});
    EXPECT_TRUE(w.heard.back() == "EMAIL TEST FAILED." && Holds(backup.mails.at(0).text, "[TEST MSG] Subject (Server A)"));
}

TEST(GlobalEmail, IsWalkedSavedInItsOrderAndGivenToAllOrNone) {
    StartedWorld w;
    w.rows.AddMany({{.strDesc = "a"}, {.strDesc = "b"}, {.strDesc = "c"}});
    ResourceEmailFiles monitors{w.files, w.home, [&] { w.heard.push_back("reloaded" + w.Text("GlobalEmail.dat")); }};
    const GlobalEmailFields typed{"a;b", "c", "f", "s", "cpu", "disk", "memory", "services", "", "", "", ""};
    GlobalEmailFields read;
    GlobalEmailWalk walk(w.desk, monitors);
    walk.SaveGlobalValues(typed), walk.Open(read);
    EXPECT_EQ(w.Text("GlobalEmail.dat"), "TO_LIST1=a;b\r\nTO_LIST2=c\r\nFROM=f\r\nSUBJECT=s\r\n");
    EXPECT_EQ(read.strEmailCPU + read.strEmailDisk + read.strEmailMemory + read.strEmailServices, "cpudiskmemoryservices");
    const auto show = [&](const std::string& move) {
        move == "<" ? walk.MovePrevious() : move == ">" ? walk.MoveNext() : move == ">>" ? walk.MoveLast() : walk.MoveFirst();
        return walk.ReadServer(read) + walk.Title() + walk.Position().substr(7);
    };
    EXPECT_EQ(Each("<|>|>|>|<|<<|>>", show), "a 1 of 3; b 2 of 3; c 3 of 3; c 3 of 3; b 2 of 3; a 1 of 3; c 3 of 3; ");
    read.strEmailText = "subject", walk.UpdateServer(read);
    EXPECT_EQ(w.rows.Count("Servers", "strDesc = 'c' and strEmailText = 'subject'"), 1);
    w.store.faults.Add({.operation = StoreOperation::Update, .nth = 3});
    w.answers = {false, true, true};
    const auto give = [&](const std::string&) {
        walk.AskUpdateAll([&] { w.heard.push_back(walk.UpdateAll(typed, [](const auto&) {})); });
        return std::to_string(w.rows.Count("Servers", "strEmailList1 = 'a;b' and strEmailText = 's'"));
    };
    EXPECT_EQ(Each("No|Yes with a fault|Yes", give), "0; 0; 3; ");
    EXPECT_TRUE(w.Heard().starts_with("reloaded; ! Data updated; ? No: ")) << "the file last";
}

TEST(MonitorCommands, ACopyBeginsItsCountsAnewAndTheFiveHundredthEntryIsRefused) {
    StartedWorld w;
    MonitorCommands commands(w.run);
    const std::string columns =
        "nTriesCur|nSuccess|nFail|nAveResponse|nAveSession|nPercentUp|strLastResponse|strCurStatus|strCMD";
    w.rows.Add({});
    for (const std::string& column : Split(columns, '|'))
        w.rows.Change("Servers", 1, {{column, "7"}});
    EXPECT_NE(commands.CopyURL("1"), "");
    EXPECT_EQ(w.Cells(columns), "0; 0; 0; 0; 0; 100; ; UP; 7; ");
    const auto add = [&](const std::string& count) {
        w.desk.settings.SetTotalURLs(std::stoi(count));
        return commands.BeginAdd() ? "room" + commands.CopyURL("999") : "full" + commands.CopyURL("1");
    };
    EXPECT_EQ(Each("498|499|500", add), "room; full; full; ");
    EXPECT_EQ(std::to_string(w.heard.size()) + "; " + w.Counts(), "5; 2; 0; 0; 0; ");
}

// Each order with No and with Yes; then how much is left, and how many entries count no failure.
TEST(MonitorCommands, DeletesAndResetsAskFirst) {
    StartedWorld w;
    MonitorCommands commands(w.run);
    w.rows.AddMany({{.nFail = 3}, {.nFail = 3}});
    const auto act = [&](const std::string& order) {
        for (const char* table : {"Failures", "Response", "ResponseFailText"})
            if (w.rows.Count(table) == 0) w.rows.AddRow(table, {{"id", 1}, {"idParent", 1}});
        w.answers = {order.ends_with("!")};
        if (order.starts_with("graph")) commands.mnuFileResetGraph();
        if (order.starts_with("clear")) commands.mnuEditClearStatus();
        if (order.starts_with("all")) ResetForAll(w.desk, OptionsReset::All);
        if (order.starts_with("delete")) commands.DeleteURL("", ""), commands.DeleteURL("1", "shop");
        return w.Counts() + std::to_string(w.rows.Count("Servers", "nFail = 0"));
    };
    EXPECT_EQ(
        Each("graph|graph!|clear|clear!|all|all!|delete|delete!", act),
        R"(2; 1; 1; 1; 0; 2; 1; 0; 1; 0; 2; 1; 1; 1; 0; 2; 0; 1; 1; 2; 2; 1; 1; 1; 2; 2; 0; 0; 1; 2; 2; 1; 1; 1; 2; 1; 0; 0; 0; 1; )");
}

// The operator tries addresses out, and deletes the entry whose check waits: neither takes the other's socket or transfer slot, and
// nothing of the entry comes back.
TEST(MonitorCommands, TestsAndADeleteInTheMiddleOfChecksDisturbNothing) {
    StartedWorld w;
    for (const char* type : {"HTTP", "SMTP", "FTP"})
        w.rows.Add({.strAddress_IP = type, .strType = type, .strPort = "25", .nTries = 1, .strExpectedText = "220"});
    for (const auto& [host, after] : {std::pair{"HTTP", 4s}, {"SMTP", 4s}, {"FTP", 4s}, {"quick", 0s}})
        w.net.Page("http://" + std::string(host)).Answer("220", after), w.net.Host(host).Port(25).Speak("220\r\n", after);
    for (const auto when : {2s, 7s}) {
        w.world.After(when, [&] { EXPECT_EQ(w.desk.http.getURLData2({.strURL = "http://quick"}).response, "220"); });
        w.world.After(when, [&] { EXPECT_EQ(w.desk.tcp.DoTCPRequest("quick", "220", 10s, "25").strReason, ""); });
    }
    w.answers = {true};
    w.world.After(12s, [&] { MonitorCommands(w.run).DeleteURL("3", "the one that is being checked"); });
    w.RunFor(30s);
    EXPECT_EQ(w.rows.Count("Servers", "nSuccess = 1") + w.rows.Count("Servers") + w.rows.Count("Failures"), 4);
}

TEST(MonitorCommands, NowMakesAllDueAndAStopEndsTheWaitForGood) {
    StartedWorld w({.settings = "Begin=1"});
    MonitorCommands commands(w.run);
    w.net.Host("10.0.0.1").Echo(3ms);
    w.rows.Add({.dtNextCheck = w.world.clock.Now() + 3600s});
    commands.mnuTrayOff(), commands.mnuTrayOff();
    w.RunFor(2min);
    EXPECT_FALSE(w.run.State().bMonitoring || w.run.WaitingToStart() || Holds(w.Heard(), "Done Waiting."));
    const auto now = [&](const auto&) { return commands.cmdStopWaiting(), w.RunFor(8s), w.Cells("nSuccess"); };
    EXPECT_EQ(Each("starts what is stopped|now|now", now), "0; ; 1; ; 2; ; ");
}

TEST(ServerList, ShowsEachEntryInItsState) {
    EXPECT_EQ(Each("5.5|60.5|90|4e6|-2|x", FormatDuration), "5.50 secs.; 61 secs.; 1.50 min.; 1,111.11 hrs.; -2,000 ms.; N/A; ");
    StartedWorld w;
    w.rows.Add({.nTriesCur = 2, .dtNextCheck = w.world.clock.Now() - 45s});
    const auto show = [&w](const std::string& status) {
        w.rows.Change("Servers", 1, {{"strCurStatus", status}});
        const auto row = LoadServerList(w.store, w.rows.DriverString(), w.world.clock.Now(), status == "requested").at(0);
        return row.cells[column::Status] + " " + row.cells[column::NextTry] + std::to_string(static_cast<int>(row.icon));
    };
    EXPECT_EQ(
        Each("UP|Failing|DOWN|Down-Time|Inactive|up|requested", show),
        R"(UP 45 secs. overdue0; Failing 2 of 3 45 secs. overdue1; DOWN 2 of 3 45 secs. overdue2; Down-Time 45 secs. overdue4; Inactive 45 secs. overdue3; up 45 secs. overdue3; Requesting... Now...5; )");
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
    w.heard.push_back(FeedbackForm({"me@x.de", "\r\n\t ", "1.0.0", ""}, w.world.events).refusal);
    w.heard.push_back(TellAFriendForm({{"a@b.c", "", "a.b@c"}, "me", "My Name", "Hi"}, w.world.events).refusal);
    EXPECT_EQ(
        w.Heard(),
        R"(! You have the latest version (10.0.0).  It h..n did not:|More; ? Yes: The newer version (9.9.9) of Korvane i..om/download.asp; ! The Korvane Server could not be reached.  P..ry again later.; ! You have the latest version (10.0.0).  It h..ry agian later.; ! URL Failed: Web Page not Opened; ! Browser Not Found: Could not find associated Browser; ! Korvane can't open any URL until you config..efault browser.; ! We're sorry, but Korvane can't open up your..efault browser.; https://www.example.com/download/korvanecore.deb; https://www.example.com/features.asp?id=17; email=me@x.de&body=a?DAbDA%25%2C%20%2F%7E%3A%24%26éDAV1.0.0; Please enter a comment or question, then clic..nt.  Thank you.; The email address you supplied 'a.b@c' does n..ton  Thank you.; )");
    w.rows.Add({}), w.processes.hasBrowser = w.processes.browserStarts = true, w.desk.reports.DisplayReport("0", "");
    w.Write("Reports/R0/groups.htm", "as it was"), w.desk.reports.DisplayReport("0", "");
    EXPECT_EQ(w.Text("Reports/R0/groups.htm") + w.processes.opened.back(), "as it was" + w.PathOf("Reports/R0/groups.htm"));
}

}  // namespace
}  // namespace korvane
