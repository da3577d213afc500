// What the operator does at the desk that its windows do not show: entries column by column, global addresses under
// faults, the version check, reports and the website.
#include <gtest/gtest.h>

#include <random>

#include "shell/entry/entry_save.h"
#include "shell/entry/fail_text_rules.h"
#include "shell/list/entry_acts.h"
#include "shell/list/entry_csv.h"
#include "shell/list/entry_detail_text.h"
#include "shell/list/list_filter.h"
#include "shell/list/outage_notes.h"
#include "shell/list/outage_starts.h"
#include "shell/list/server_list.h"
#include "shell/options/global_email_walk.h"
#include "shell/options/resource_emails.h"
#include "shell/run/requests.h"
#include "shell/shell_world.h"
#include "shell/web/web_forms.h"
#include "store/last_checks.h"

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

/// The rows as any tool may have written them, and what is told of entry 1.
struct DetailWorld : StartedWorld {
    EntryDetail Look() { return LoadEntryDetail(desk, 1, world.clock.Now()); }
    std::string Says(const std::string& statement) {
        rows.Connected()->Execute(statement);
        const EntrySentences says = InSentences(Look(), world.clock.Now());
        std::string all;
        for (const std::string& each : {says.title, says.state + says.since, says.reason, says.done, says.notified, says.figures})
            all += (all.empty() ? "" : "|") + each;
        return all + (says.failures.empty() ? "" : "|" + says.failures.front());
    }
};

TEST(EntryDetail, TellsTheRowsAndCallsWhatIsUnreadableUnknown) {
    DetailWorld w;
    w.rows.Add({.strDesc = "", .dtNextCheck = DateTime::Of(2026, 11, 21, 15, 0, 40)});
    Play(R"(
$ UPDATE Servers SET nFail = 0 => 10.0.0.1|UP, no failure on record|||Nobody is notified.|Not checked yet · next check in 40 s · an outage is noticed within 4 min
$ UPDATE Servers SET nFail = 2 => 10.0.0.1|UP, no failure on record|||Nobody is notified.|Up-time 100.00 % · next check in 40 s · an outage is noticed within 4 min
$ UPDATE Servers SET nFail = 2, nSuccess = 1998, nPercentUp = 99.9, datelastfail = '2026-11-20 13:00:00', strEmailList1 = 'a@x, b@x' => 10.0.0.1|UP, last failure 11/20/2026 1:00:00 PM (1 d 2 h ago)|||Mailed to a@x, b@x: failures and recoveries|Up-time 99.90 % · next check in 40 s · an outage is noticed within 4 min
$ UPDATE Servers SET strEmailList1 = '', strEmailList2 = 'c@x', bSendUpNotify = 0 => 10.0.0.1|UP, last failure 11/20/2026 1:00:00 PM (1 d 2 h ago)|||Nobody is notified: the first list is empty.|Up-time 99.90 % · next check in 40 s · an outage is noticed within 4 min
$ UPDATE Servers SET strEmailList2 = NULL, nTries = 0 => 10.0.0.1|UP, last failure 11/20/2026 1:00:00 PM (1 d 2 h ago)|||Nobody is notified: with 0 tries no failure is mailed.|Up-time 99.90 % · next check in 40 s · an outage is noticed within 2 min
$ UPDATE Servers SET strCurStatus = 'Down-Time', strDownTime1 = '2:30 pm', nDownDuration1 = 90, nTries = 3 => 10.0.0.1|Down-Time since 2:30:00 PM until 11/21/2026 3:00:40 PM|||Nobody is notified.|Up-time 99.90 % · next check in 40 s · an outage is noticed within 4 min
$ UPDATE Servers SET strCurStatus = 'Inactive', datelastcheck = '2026-11-18 12:00:00', bIsMonitoring = 0 => 10.0.0.1|Inactive, last checked 11/18/2026 12:00:00 PM (3 d 3 h ago)|||Nobody is notified.|Up-time 99.90 % · next check in 40 s · outages are not noticed
$ UPDATE Servers SET strCurStatus = 'DOWN', nTriesCur = 4, bIsMonitoring = 1, strLastResponse = 'late <b>', strEmailList1 = 'a@x' => 10.0.0.1|DOWN since unknown, 4 failures in a row|late <b>||Mailed to a@x: failures, not recoveries|Up-time 99.90 % · next check in 40 s · an outage is noticed within 4 min
$ INSERT INTO Failures (ID, IDParent, nFailCount, nFailMax, strReason, strAction, dateFail) VALUES (1, 1, 3, 3, 'old', 'None.', '2026-11-20 10:00:00'), (2, 1, 1, 3, 'r', '', '2026-11-21 14:00:00'), (3, 1, 2, 3, 'r', '', '2026-11-21 14:01:00'), (4, 1, 3, 3, 'r', 'None.<ul><li>up.sh was executed. ' || char(13, 10) || '<li>Server DOWN Email Notification <font color=red>FAILED</font>  because ''550''.<li>Server configured so a Server UP Notification <b>will</b> be sent</ul>', '2026-11-21 14:02:00'), (5, 1, 4, 3, 'refused', 'None.', '2026-11-21 14:58:00'), (6, 2, 9, 3, 'another', 'None.', '2026-11-21 14:59:00') => 10.0.0.1|DOWN since 11/21/2026 2:02:00 PM (58 min), 4 failures in a row|refused|At 2:02:00 PM: up.sh was executed. Mail FAILED: '550'.|Mailed to a@x: failures, not recoveries|Up-time 99.90 % · next check in 40 s · an outage is noticed within 4 min|2:58:00 PM  4 of 3  refused
$ UPDATE Servers SET strCurStatus = 'Failing' => 10.0.0.1|Failing since 11/21/2026 2:00:00 PM (1 h), 4 of 3 tries failed|refused|At 2:02:00 PM: up.sh was executed. Mail FAILED: '550'.|Mailed to a@x: failures, not recoveries|Up-time 99.90 % · next check in 40 s · an outage is noticed within 4 min|2:58:00 PM  4 of 3  refused
$ DELETE FROM Failures WHERE ID < 4 => 10.0.0.1|Failing since before 11/21/2026 2:02:00 PM (58 min), 4 of 3 tries failed|refused|At 2:02:00 PM: up.sh was executed. Mail FAILED: '550'.|Mailed to a@x: failures, not recoveries|Up-time 99.90 % · next check in 40 s · an outage is noticed within 4 min|2:58:00 PM  4 of 3  refused
$ UPDATE Servers SET strCurStatus = 'DOWN' => 10.0.0.1|DOWN since 11/21/2026 2:02:00 PM (58 min), 4 failures in a row|refused|At 2:02:00 PM: up.sh was executed. Mail FAILED: '550'.|Mailed to a@x: failures, not recoveries|Up-time 99.90 % · next check in 40 s · an outage is noticed within 4 min|2:58:00 PM  4 of 3  refused
$ UPDATE Failures SET dateFail = 'then', nFailCount = 'x', strReason = NULL => 10.0.0.1|DOWN since unknown, 4 failures in a row|late <b>|At unknown: up.sh was executed. Mail FAILED: '550'.|Mailed to a@x: failures, not recoveries|Up-time 99.90 % · next check in 40 s · an outage is noticed within 4 min|unknown  unknown of 3  no reason given
$ UPDATE Servers SET nTriesCur = 'x', nTries = 'x', dtNextCheck = 'soon', nPercentUp = 1e300, nSuccess = 'x', datelastfail = 'x', strAddress_IP = NULL, nIntervalSeconds = 'x', strDownTime1 = 'x', bSendUpNotify = 'x' => DOWN since unknown, unknown failures in a row|late <b>|At unknown: up.sh was executed. Mail FAILED: '550'.|Mailed to a@x: failures and recoveries|Up-time unknown · next check unknown · how soon an outage is noticed is unknown|unknown  unknown of 3  no reason given
)",
         [&](const auto& statement) { return w.Says(statement); });
    w.Set("MailOutbox", "True");
    OutboxTable outbox(w.store, w.home);
    const DateTime then = DateTime::Of(2026, 11, 21, 14, 2, 1);
    const auto mail = outbox.Add({.idEntry = 1, .event = MailEvent::Failure, .recipients = {"a@x", "b@x"}, .created = then});
    EXPECT_TRUE(Holds(w.Says("UPDATE Failures SET dateFail = '2026-11-21 14:02:00'"),
                      "Mail of 2:02:01 PM to a@x;b@x: waits for a@x;b@x."));
    outbox.NoteTaken(mail, {}, "250 OK", then);
    EXPECT_TRUE(
        Holds(w.Says("INSERT INTO Response (id, idParent, txtType, dtCur, nAveResponse) VALUES (1, 1, 'hour', '2026-11-21 "
                     "14:40:00', 310.4), (2, 1, 'hour', '2026-11-20 16:00:00', 5.25), (3, 1, 'hour', '2026-11-20 "
                     "15:59:59', 1), (4, 1, 'hour', 'x', 3), (5, 1, 'day', '2026-11-20 23:50:00', 1234.5), (6, 1, "
                     "'hour', '2026-11-21 13:00:00', 'x'), (7, 2, 'hour', '2026-11-21 14:40:00', 9)"),
              "to a@x;b@x: taken (250 OK)."));
    w.desk.alertPath.TestMail(false);
    EXPECT_TRUE(Holds(InSentences(w.Look(), then).notified, "recoveries (test mail failed)"));
    EXPECT_TRUE(InSentences(w.Look(), then).failures.back().ends_with("up.sh was executed. Mail FAILED: '550'."));
    EXPECT_TRUE(InSentences(w.Look(), then, false).figures.ends_with("· monitoring is stopped, so nothing is checked"));
    EXPECT_EQ(InWords(w.Look().hours) + "|" + InWords(w.Look().days),
              "11/20/2026 4:00:00 PM: 5.3 ms; 11/21/2026 2:00:00 PM: 310 ms, failures|11/20/2026: 1,235 ms; 11/21/2026: no data, "
              "failures");
    const LastCheck check{1,
                          then,
                          {.name = 60ms,
                           .connect = 250us,
                           .tls = 31ms,
                           .firstByte = 1500ms,
                           .steps = {{"2 2", 3ms}},
                           .whole = 1601ms,
                           .certificateEnd = DateTime::Of(2026, 12, 11, 18)}};
    LastChecks(w.database).Write(*w.rows.Connected(), check);
    const auto measured = [&] { return InSentences(w.Look(), w.world.clock.Now()).measured; };
    EXPECT_EQ(measured(), "");
    w.Set("KeepPhases", "True");
    EXPECT_EQ(measured(),
              "Last check: name 60.0 ms · connect 0.3 ms · TLS 31.0 ms · first byte 1,500 ms · '2 2' 3.0 ms · whole 1,601 ms · "
              "left over 6.8 ms");
    EXPECT_EQ(InSentences(w.Look(), w.world.clock.Now()).certificate, "Certificate ends in 20 d 3 h, on 12/11/2026 6:00:00 PM");
    EXPECT_EQ(CertificateInWords(check.phases, DateTime::Of(2026, 12, 11, 18, 0, 5)),
              "has ended 5 s ago, on 12/11/2026 6:00:00 PM");
    w.Says(
        "UPDATE LastChecks SET nName = NULL, nConnect = 'x', nTLS = -1, nFirstByte = 1e300, strSteps = 'x' || char(10) || '5', "
        "dtCertificate = 'soon'");
    EXPECT_EQ(measured(), "Last check: '' 5.0 ms · whole 1,601 ms · left over 1,596 ms");
    w.rows.Remove("Servers", 1);
    EXPECT_EQ(InSentences(w.Look(), {}).title, "This server cannot be read.");
}

TEST(EntryDetail, NoOutageLastsLongerUntilItIsNoticed) {
    const auto noticed = [](const std::string& entry) {
        std::istringstream order(entry);
        std::string retry;
        Entry columns;
        order >> columns.strType >> columns.strExpectedText >> columns.nIntervalSeconds >> columns.nTries >> columns.nTimeout >>
            retry;
        columns.strPort = "25", columns.strAddress_IP = "10.0.0.1";
        StartedWorld w;
        w.Set("GlobalRetryDuration", retry);
        w.net.Host("10.0.0.1").Echo(3ms).Port(25).Speak("220 ready\r\n");
        w.net.Page("http://10.0.0.1").Answer("220", 3ms);
        w.rows.Add(columns);
        const auto is = [&](const char* status) { return w.Cells("strCurStatus") == status + std::string("; "); };
        while (w.Cells("nSuccess") == "0; ")
            w.RunFor(1s);
        const auto within = LoadEntryDetail(w.desk, 1, w.world.clock.Now()).noticedWithin.value();
        const DateTime start = w.world.clock.Now();
        w.net.Host("10.0.0.1").EchoSilent().Port(25).Anew().Accept(7s);
        w.net.Page("http://10.0.0.1").Anew().Silent();
        while (!is("DOWN") && w.world.clock.Now() - start < 3h)
            w.RunFor(1s);
        const auto took = w.world.clock.Now() - start;
        return std::to_string(within.count()) +
               (took <= within && within - took <= 5s * columns.nTries ? "" : " but " + std::to_string(took.count()));
    };
    EXPECT_EQ(
        Each("HTTP 220 60 3 15 60|HTTP 220 600 3 15 30|HTTP 220 20 1 5 60|PING 1000 300 5 15 90|SMTP 220 600 3 15 60", noticed),
        "228; 708; 26; 675; 813; ");
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

TEST(OutageStarts, KnowTheLongestOutageAlsoWhenItsFirstFailuresAreGone) {
    StartedWorld w;
    const DateTime now = w.world.clock.Now();
    w.rows.AddMany({{.strDesc = "short", .nTriesCur = 3, .strCurStatus = "DOWN"},
                    {.strDesc = "long", .nTriesCur = 100, .strCurStatus = "DOWN"},
                    {.strDesc = "fails", .nTriesCur = 2, .strCurStatus = "Failing"}});
    const auto add = [&](int parent, int count, DateTime when) {
        w.rows.AddRow("Failures",
                      Columns("ID IDParent nFailCount nFailMax dateFail", parent * 1000 + count, parent, count, 3, when));
    };
    for (int count = 1; count <= 3; ++count)
        add(1, count, now - 1h + 1s * count), add(3, count, now - 3h);
    for (int count = 61; count <= 100; ++count)
        add(2, count, now - 1min * (100 - count));
    OutageStarts starts;
    const auto order = [&] {
        std::vector<ServerRow> rows = LoadServerList(w.store, w.rows.DriverString(), now, false);
        starts.AddTo(w.desk, rows);
        SharedRows shared;
        for (const ServerRow& row : rows)
            shared.push_back(std::make_shared<const ServerRow>(row));
        PutProblemsFirst(shared);
        std::string text;
        for (const auto& row : shared)
            text += row->Name() + (row->since ? " " + std::to_string((now - *row->since).count()) : "") + "; ";
        return text;
    };
    EXPECT_EQ(order(), "long 5940; short 3597; fails 10800; ");
    w.rows.Connected()->Execute("DELETE FROM Failures");
    w.rows.Change("Servers", 2, {{"nTriesCur", 101}});
    EXPECT_EQ(order(), "long 5940; short 3597; fails 10800; ") << "it is read once";
    w.rows.Change("Servers", 2, {{"nTriesCur", 4}});
    EXPECT_EQ(order(), "short 3597; long; fails 10800; ") << "this is another outage";
}

TEST(ListFilter, FindsEveryWordSomewhereWithoutRegardToCase) {
    ServerRow row;
    row.strCurStatus = "UP";
    row.cells[column::ShortName] = "K\xC3\x96LN \xCE\xA3\xCE\x91\xCE\xA3 \xD0\x96\xD0\x81";
    row.cells[column::FullName] = "host.example";
    row.cells[column::Status] = "Requesting...";
    row.cells[column::LastResponse] = "50% [a*b] \xF0\x9F\x98\x80 \xC3";
    const SharedRows rows{std::make_shared<const ServerRow>(row)};
    const auto found = [&](const std::string& text) { return std::string(Filtered(rows, {{}, text}).empty() ? "-" : "+"); };
    EXPECT_EQ(Each("| \t |k\xC3\xB6ln|\xCF\x83\xCE\xB1\xCF\x82|\xD0\xB6\xD1\x91|HOST up|request up|host nowhere|5% "
                   "a|[A*|%%|\xF0\x9F\x98\x80|\xC3|k.ln",
                   found),
              "+; +; +; +; +; +; +; -; -; +; -; +; +; -; ");
    EXPECT_EQ(found(std::string(10'000, 'x')) + found(std::string(10'000, ' ')), "-+");
    std::string words;
    for (int i = 0; words.size() < 10'000; ++i)
        words += "host " + std::to_string(i) + " ";
    EXPECT_EQ(found(words), "-");
}

TEST(EntryActs, ChangeAllOrNoneAndOnlyWhatTheyName) {
    StartedWorld w;
    w.rows.AddMany({{.strDesc = "a"}, {.strDesc = "b"}, {.strDesc = "", .strAddress_IP = "c.example"}});
    EntryActs acts(w.desk);
    const auto column = [&](const std::string& name) {
        return Each("1|2|3", [&](const auto& id) { return w.rows.Server(std::stoll(id)).at(name).Text(); });
    };
    for (const int id : {1, 2, 3})
        w.rows.Change("Servers", id, {{"dtNextCheck", w.world.clock.Now() + (id == 2 ? -90s : 60s)}});
    w.rows.Change("Servers", 1, {{"bIsMonitoring", false}});
    const auto before = w.rows.Server(2);
    EXPECT_EQ(acts.CheckNow({"1", "3", "77"}), "1 entry checked next.  2 entries paused: resume first.");
    EXPECT_EQ(w.rows.Server(3).at("dtNextCheck"), Value(w.world.clock.Now() + -91s)) << "before the one that waits longest";
    EXPECT_EQ(w.rows.Server(2), before);
    w.store.faults.Add({.operation = StoreOperation::Update, .nth = 2});
    EXPECT_THROW(acts.Set({"1", "2", "3"}, {{&EntryFields::strGroup, "x"}}), Error);
    EXPECT_THROW(acts.Set({"1"}, {{&EntryFields::strGroup, "x"}, {&EntryFields::nIntervalSeconds, ""}}), Error);
    EXPECT_EQ(column("strGroup"), "Group1; Group1; Group1; ");
    FailTextRows rules;
    rules[1] = {"gone", "restart.sh"};
    FailTextRules(w.desk, w.rows.DriverString(), "3").Save(rules);
    const std::string copy = acts.Duplicate("3");
    EXPECT_EQ(w.Cells("ID|strDesc|nFailScanText|strCurStatus"), copy + "; Copy of c.example; 1; UP; ");
    EXPECT_EQ(FailTextRules(w.desk, w.rows.DriverString(), copy).Open().rows[0], rules[1]);
    EXPECT_EQ(acts.Duplicate("77") + acts.Copy(""), "");
    const auto page = [](const auto& entry) { return PageOfEntry("Https", entry, "8080"); };
    EXPECT_EQ(Each("a/b:1|[::1]/x|a:1|-x; rm| ", page),
              "https://a:8080/b:1; https://[::1]:8080/x; https://a:1; https://-x;%20rm:8080; ; ");
}

TEST(EntryActs, AValueThatCannotBeReadHidesNoEntryAndIsReplaced) {
    StartedWorld w;
    w.rows.AddMany({{.strDesc = "a"}, {.strDesc = "b"}});
    w.rows.Connected()->Execute("UPDATE Servers SET bIsMonitoring = 'maybe', bSendUpNotify = 'maybe' WHERE ID = 1");
    EXPECT_EQ(LoadServerList(w.store, w.rows.DriverString(), w.world.clock.Now(), false).size(), 2u);
    EXPECT_EQ(PlanImport(w.desk, "id,strDesc\n2,c").Count(ImportStep::Changed), 1u);
    EXPECT_TRUE(EntryActs(w.desk).Pause({"1", "2"}).starts_with("2 entries paused"));
    EXPECT_EQ(w.rows.Server(1).at("bIsMonitoring"), Value(false));
}

TEST(Requests, ASettingThatCannotBeStoredStaysAsItIsAndTheLogSaysWhy) {
    StartedWorld w;
    LeaveRequest(w.disk, w.home, "1", "Zone", "-500");
    w.files.faults.Add({.forever = true, .about = "kvurlwatchn.ini", .description = "disk full"});
    w.RunFor(2s);
    EXPECT_TRUE(w.Logged("# The setting Zone was not changed from the command line: disk full"));
    EXPECT_EQ(*w.desk.collection.Find("Zone"), "");
}

TEST(EntryCsv, BringsBackExactlyWhatWasExported) {
    StartedWorld w;
    constexpr std::string_view kSigns[] = {"=", "+", "-", "@", "'", "\"", ",", ";", "\t", "\r", "\n", "\xC3\xA9", " ", "x", "7"};
    std::mt19937 random(7);
    const auto anyText = [&] {
        std::string text;
        for (auto left = random() % 6; left > 0; --left)
            text += kSigns[random() % std::size(kSigns)];
        return text;
    };
    constexpr std::string_view kTyped[] = {"strEmailList1", "strEmailBody", "strCMD", "strUserName", "strPassword"};
    for (int id = 1; id <= 60; ++id) {
        w.rows.Add({.strDownTime1 = "3:00am"});
        for (const std::string_view column : kTyped)
            w.rows.Change("Servers", id, {{std::string(column), anyText()}});
    }
    w.rows.Change("Servers", 1, {{"nTries", Value()}, {"strType", "GONE"}, {"strGroup", "a b"}, {"strDownTime2", "never"}});
    const std::string text = ExportEntries(w.desk, true);
    EXPECT_EQ(PlanImport(w.desk, "\xEF\xBB\xBF" + text).Summary(), "0 added, 0 changed, 60 unchanged, 0 refused.");
    EXPECT_FALSE(Holds(ExportEntries(w.desk, false), "strPassword"));
    const auto before = w.rows.Rows("Servers");
    for (int id = 2; id <= 60; ++id)
        w.rows.Change("Servers", id,
                      {{"strCMD", "x"}, {"strUserName", ""}, {"bNotSendBody", true}, {"nTries", 9}, {"strEmailBody", "y"}});
    const ImportPlan plan = PlanImport(w.desk, text);
    EXPECT_EQ(plan.Summary(), "0 added, 59 changed, 1 unchanged, 0 refused.");
    w.store.faults.Add({.operation = StoreOperation::Update, .nth = 30});
    EXPECT_THROW(ImportEntries(w.desk, plan), Error);
    EXPECT_EQ(w.rows.Count("Servers", "nTries = 9"), 59) << "all or nothing";
    ImportEntries(w.desk, plan);
    EXPECT_EQ(w.rows.Rows("Servers"), before);
}

TEST(EntryCsv, SaysWithTheLineWhatItRefusesAndWhatChanges) {
    StartedWorld w;
    w.rows.Add({.strDesc = "a", .strDownTime1 = "3:00am"});
    const auto planned = [&](const std::string& text) {
        const ImportPlan plan = PlanImport(w.desk, ReplaceAll(text, "^", "\n"));
        std::string said = plan.refusal;
        for (const ImportRow& row : plan.rows)
            said += std::to_string(static_cast<int>(row.step)) + " " + std::to_string(row.line) + " " + row.details + ". ";
        return said;
    };
    EXPECT_EQ(
        Each("|id^77|ID;nTries^1;5^|id,nTries^1,many|id^1^1|nope^1|id,id|id,strType^1,NEW|strDesc^\xFF|strDesc^\"a^b|a\"b|"
             "strDesc^\"a\"b|id,strDesc^^1|id,strDownTime1^1,|id,strDownTime1^1,soon|strType\tstrAddress_IP^ping\thttp://x|"
             "bIsMonitoring^maybe|id,strDesc^1,'=1|id,strDesc^1,''=1|id,nTries^,",
             planned),
        "The file is empty.; 0 2 There is no entry with the id '77'.. ; 2 2 nTries '3' → '5'. ; 0 2 nTries: 'many' is not a "
        "whole number "
        "up to 32767.. ; 3 2 . 0 3 The id '1' is there twice.. ; Line 1: there is no column 'nope'.; Line 1: the column 'id' is "
        "there "
        "twice.; 0 2 strType: there is no type 'NEW'.. ; Line 2: this is not UTF-8. Save the file as UTF-8.; Line 2: a quote is "
        "not "
        "closed.; Line 1: there is a quote in a cell that does not begin with one.; Line 2: there is text after a closing "
        "quote.; 0 3 The "
        "line has 1 of 2 cells.. ; 2 2 strDownTime1 '3:00am' → ''. ; 0 2 We're sorry, but the time you entered in the downtime "
        "field could "
        "not be understood.  You entered 'soon' which is invalid.  Please try again.. ; 1 2 PING x; PING needs an IP address. ; "
        "0 2 "
        "bIsMonitoring: 'maybe' is neither True nor False.. ; 2 2 strDesc 'a' → '=1'. ; 2 2 strDesc 'a' → ''=1'. ; 1 2 HTTP "
        "www.example.com. ; ");
    w.Set("HTTPStatusFails", "True");
    const ImportPlan statuses = PlanImport(w.desk, "id;HTTPStatusGood;strGroup;strType\n1;401;a b;ftp\n");
    w.store.faults.Add({.operation = StoreOperation::Update, .nth = 2});
    EXPECT_THROW(ImportEntries(w.desk, statuses), Error);
    EXPECT_EQ(w.Cells("strGroup") + w.desk.ofEntries.Read(1, "HTTPStatusGood"), "Group1; ") << "all or nothing";
    ImportEntries(w.desk, statuses);
    EXPECT_EQ(w.Cells("strGroup|strType|strPort|strExpectedText") + w.desk.ofEntries.Read(1, "HTTPStatusGood"),
              "a_b; FTP; 21; 220,QUIT,221; 401");
    EXPECT_EQ(PlanImport(w.desk, ExportEntries(w.desk, true)).Summary(), "0 added, 0 changed, 1 unchanged, 0 refused.");
    std::string many = "strDesc\n";
    for (int i = 0; i < 100'000; ++i)
        many += "x\n";
    EXPECT_EQ(planned(many), "The file has 100001 lines, and no more than 499 entries are possible.");
    w.rows.AddMany(std::vector<Entry>(497));
    const ImportPlan plan = PlanImport(w.desk, "strGroup,nTries\nour group,\nx,2\n");
    EXPECT_EQ(plan.Summary() + plan.rows[1].details,
              "1 added, 0 changed, 0 unchanged, 1 refused.500 is the maximum number of Server Entries.");
    ImportEntries(w.desk, PlanImport(w.desk, "strGroup,nTries,strType\nour group,,HTTPS\n"));
    EXPECT_EQ(w.Cells("strGroup|nTries|strType|strPort|strCurStatus|strAddress_IP"),
              "our_group; 3; HTTPS; 443; UP; www.example.com; ");
}

TEST(OutageNotes, OneAnEntryAndOutageAndOneForMany) {
    StartedWorld w;
    std::string shown;
    OutageNotes notes(w.world.timers, [&](const OutageNotes::Note& note) { shown += note.title + ": " + note.text + "; "; });
    w.noteOutage = [&](const auto& entry, bool isDown, const auto& reason) { notes.Add(entry, isDown, reason); };
    const auto after = [&](std::chrono::seconds time) { return w.RunFor(time), std::exchange(shown, ""); };
    w.rows.Add({.strDesc = "", .strAddress_IP = "10.0.0.1", .strType = "PING", .nTries = 2});
    for (const int tries : {2, 0}) {
        w.rows.Change("Servers", 1, {{"nTries", tries}});
        w.net.Host("10.0.0.1").EchoSilent();
        EXPECT_TRUE(after(600s).starts_with("10.0.0.1 is DOWN: Ping Failure"));
        EXPECT_EQ(after(600s), "") << "one an outage";
        w.net.Host("10.0.0.1").Echo(3ms);
        EXPECT_EQ(after(600s), "10.0.0.1 is UP again: The outage is over.; ");
    }
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
