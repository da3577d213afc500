// What follows from an outage and its end: every word of the mails, what the `Failures` row tells, and that no trouble with one
// step costs the others.
#include "engine/failure_actions.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "engine/engine_world.h"
#include "notify/mail_world.h"
#include "support/faulty_files.h"
#include "support/recording_processes.h"
#include "support/virtual_mail_server.h"

namespace korvane {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kTrace = "/home/korvane/kvlogs/KvTR7.txt";
const std::string kOpening =
    "Look at it\r\nTime: 11/21/2026 3:00:00 PM\r\n\r\nThe Server HTTP://www.example.com/a could not be reached \r\n3 times in a "
    "row.  \r\nReason: no answer\r\n\r\n";
const std::string kNoCommand = "No commands will be executed (none are configured).";
const std::string kNoCommandItem = "None.<ul><li>No commands are configured to be executed.";
const std::string kSentItem = "\r\n<li>Server DOWN Email Notification successfully sent to: 'a@x b@y'.";
const std::string kFailedItem = "\r\n<li>Server DOWN Email Notification <font color=red>FAILED</font>  because '";
const std::string kUpWanted =
    "<li>Server configured so a Server UP Notification <b>will</b> be sent with tracert information when the server comes back "
    "up. </ul>";
const std::string kUpMail =
    "Time: 11/21/2026 3:00:00 PM\r\n\r\nThe Server HTTP://www.example.com/a (web) can be reached again! Previously, an email was "
    "sent notifying failure.";

/// Entry 7, a web page, in its failure or recovery.
struct ActionsWorld {
    explicit ActionsWorld(const Row& columns = {}, DateTime start = DateTime::Of(2026, 11, 21, 15, 0, 0)) : engine(start) {
        engine.TimerMonitorDB->SetEnabled(false);
        for (const char* key : {"Reboot", "RebootAny", "SMTPUser1", "SMTPPass1", "SMTPPopHost1", "ServerBackup", "Zone"})
            engine.settings.setKvSettingsColValue(key, "");
        engine.settings.setKvSettingsColValue("Server", "mail.example");
        engine.database.Add({.id = 7, .strDesc = "web", .strAddress_IP = "www.example.com/a", .strType = "HTTP"});
        engine.database.Change("Servers", 7,
                               {{"strEmailList1", "a@x"},
                                {"strEmailList2", "b@y"},
                                {"strEmailFrom", "me@z"},
                                {"strEmailText", "Down!"},
                                {"strEmailBody", "Look at it"},
                                {"strCurStatus", "Failing"}});
        if (!columns.empty()) engine.database.Change("Servers", 7, columns);
    }

    template <class Work>
    void WithRow(Work work) {
        const auto conn = engine.store.NewConnection();
        conn->SetConnectionString(engine.database.DriverString());
        conn->Open();
        const auto rs = engine.store.NewRecordset();
        rs->Open("SELECT * from servers where id=7", *conn, CursorType::Keyset, LockType::Pessimistic);
        work(*conn, *rs);
    }
    std::string Fail() {
        std::string strAction;
        WithRow([&](Connection& conn, Recordset& rs) { strAction = actions.DoFailureStateStuff(conn, rs, "no answer"); });
        return strAction;
    }
    void ComeUp() {
        WithRow([&](Connection&, Recordset& rs) { actions.DoUpAgainStuff(rs); });
    }

    /// Of the latest mail.
    std::string Subject() {
        const std::string& text = primary.mails.back().text;
        const auto begin = text.find("Subject: ") + 9;
        return text.substr(begin, text.find("\r\n", begin) - begin);
    }
    std::string Body() {
        const std::string& text = primary.mails.back().text;
        const std::string body = text.substr(text.find("\r\n\r\n") + 4);
        return body.substr(0, body.rfind("\r\n"));
    }
    Texts Started() {
        Texts all;
        for (const auto& start : processes.started)
            all.push_back(start.command);
        return all;
    }

    EngineWorld engine;
    VirtualMailServer primary{engine.net.Host("mail.example").Port(25)};
    VirtualMailServer backup{engine.net.Host("backup.example").Port(25)};
    VirtualTcpSocket sckesmtp{engine.net};
    VirtualTcpSocket plainSocket{engine.net};
    CountingGuids guids;
    RecordingProcesses processes;
    FaultyFiles files{engine.files};
    ServerEntries entries{{engine.store, engine.world.clock, engine.world.events, engine.log, engine.status, engine.settingsFile,
                           engine.ids, engine.settings},
                          "/home/korvane"};
    Dispatcher mail{{sckesmtp,
                     plainSocket,
                     engine.world.clock,
                     engine.world.events,
                     engine.person,
                     files,
                     guids,
                     engine.status,
                     engine.log,
                     engine.settings,
                     {}},
                    {}};
    TraceRoute trace{{files, processes, engine.status, engine.log}, "/home/korvane"};
    CommandRunner commands{{processes, engine.status, engine.log}};
    ServerActions actions{
        {engine.store, engine.world.clock, engine.status, engine.log, engine.settings, entries, mail, trace, commands}};
};

TEST(FailureState, SaysWhatHappenedAndWhatIsDone) {
    struct Case {
        const char* strCMD;
        const char* Reboot;
        const char* RebootAny;
        const char* other;  ///< status of another entry that is due
        std::string words, items;
    };
    const std::string command = "The following command will be executed:\r\nfix it";
    const std::string restart = "\r\n\r\nKorvane will shutdown and restart the computer Korvane is running on. ";
    const std::string restarted = "<li>Korvane shut down and restarted the computer it was running on.  ";
    const std::string any = "Set to reboot if ANY server fails.";
    const std::string all = "ALL SERVERS ARE FAILING.";
    const Case cases[] = {
        {"", "", "True", "DOWN", kNoCommand, kNoCommandItem},
        {" ", "True", "true", "UP", kNoCommand, kNoCommandItem},
        {"fix it", "", "", "UP", command, "None.<ul><li>fix it was executed. "},
        {"", "True", "True", "UP", kNoCommand + restart + " " + any, kNoCommandItem + restarted + any},
        {"", "True", "", "Failing", kNoCommand + restart + all, kNoCommandItem + restarted + all},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.words);
        ActionsWorld w(Row{{"strCMD", c.strCMD}});
        w.engine.database.Add({.strCurStatus = c.other});
        w.engine.settings.setKvSettingsColValue("Reboot", c.Reboot);
        w.engine.settings.setKvSettingsColValue("RebootAny", c.RebootAny);
        EXPECT_EQ(w.Fail(), c.items + kSentItem + kUpWanted);
        ASSERT_EQ(w.primary.mails.size(), 2U);
        EXPECT_EQ(w.primary.mails[0].recipients, Texts{"<a@x>"});
        EXPECT_EQ(w.primary.mails[1].recipients, Texts{"<b@y>"});
        EXPECT_EQ(w.primary.mails[1].from, "<me@z>");
        EXPECT_EQ(w.Body(), kOpening + c.words + "\r\n\r\nDown!");
        EXPECT_EQ(w.Subject(), "Down! (web) 11/21/2026 3:00:00 PM");
    }
}

TEST(FailureState, SaysLessWhenToldSo) {
    ActionsWorld brief(Row{{"bNotSendBody", true}, {"bSendUpNotify", false}, {"strDesc", ""}});
    EXPECT_EQ(brief.Fail(),
              kNoCommandItem + kSentItem + "<li>Server configured so a Server UP Notification <b>WILL NOT</b> be sent.</ul>");
    EXPECT_EQ(brief.Body(), "");
    EXPECT_EQ(brief.Subject(), "Down! 11/21/2026 3:00:00 PM");

    ActionsWorld mailServer(Row{{"strType", "SMTP"}});
    mailServer.Fail();
    EXPECT_TRUE(Holds(mailServer.Body(), "The Server www.example.com/a could not be reached \r\n"));
}

TEST(FailureState, TriesTheBackupOnceAndTellsBothReasons) {
    struct Case {
        const char* ServerBackup;
        bool primaryTakes, backupTakes;
        std::size_t toPrimary, toBackup;
        Texts log;
        std::string item;
    };
    const std::string routine = "frmMonitor:DoFailureStateStuff: ";
    const std::string refused = "Expected: 250 Recieved: 550 5.7.1 refused";
    const std::string first = routine + "primary Email to a@x failed. " + refused;
    const std::string lost = routine + "Server DOWN Email Notification <font color=red>FAILED</font>  because '" + refused;
    const std::string sent = routine + "Server DOWN Email Notification successfully sent to: 'a@x b@y'.";
    const Case cases[] = {
        {"backup.example", true, true, 2, 0, {sent}, kSentItem},
        {"backup.example", false, true, 0, 2, {first, sent}, kSentItem},
        {"backup.example", false, false, 0, 0, {first, lost}, kFailedItem + refused + "\r\n'."},
        {"mail1", false, true, 0, 0, {first, lost}, kFailedItem + refused + "\r\n'."},
    };
    for (const Case& c : cases) {
        ActionsWorld w(Row{{"strCMD", "fix it"}});
        w.engine.settings.setKvSettingsColValue("ServerBackup", c.ServerBackup);
        w.primary.refuse = [&](const std::string&) { return !c.primaryTakes; };
        w.backup.refuse = [&](const std::string&) { return !c.backupTakes; };
        const std::string strAction = w.Fail();
        EXPECT_EQ(strAction, "None.<ul><li>fix it was executed. " + c.item + kUpWanted);
        EXPECT_EQ(w.primary.mails.size(), c.toPrimary);
        EXPECT_EQ(w.backup.mails.size(), c.toBackup);
        Texts log = w.engine.LogTexts();
        std::erase_if(log, [&](const std::string& text) { return !text.starts_with(routine); });
        EXPECT_EQ(log, c.log);
        EXPECT_EQ(w.engine.Logged(" using mail.example"), !c.primaryTakes);
        EXPECT_EQ(w.processes.started.size(), 2U);  // the trace and the command, whatever became of the mail
    }
    ActionsWorld nobody(Row{{"strEmailList1", ""}});
    EXPECT_EQ(nobody.Fail(), kNoCommandItem + kFailedItem + "'." + kUpWanted);
}

TEST(FailureState, MailsThenTracesThenRunsTheCommand) {
    ActionsWorld w(Row{{"strCMD", "fix it"}});
    bool first = true;
    w.primary.refuse = [&](const std::string&) {
        first = first && w.processes.started.empty();
        return false;
    };
    w.Fail();
    EXPECT_TRUE(first);
    EXPECT_EQ(w.processes.started,
              (std::vector<RecordingProcesses::Started>{{"/bin/sh '/home/korvane/kvlogs/KvTR7.bat'", WindowStyle::Hidden},
                                                        {"fix it", WindowStyle::Normal}}));
    EXPECT_TRUE(w.engine.person.Said("fix it Program executed successfully."));
    EXPECT_TRUE(w.engine.Logged("frmMonitor:RunCommand: Program executed successfully: 'fix it'"));
}

TEST(FailureState, TroubleWithOneStepLeavesTheOthers) {
    const Row command = {{"strCMD", "fix it"}};
    ActionsWorld folder(command);
    folder.files.faults.Add(
        {.operation = FilesOperation::CreateFolder, .about = "kvlogs", .description = "Read-only file system"});
    folder.Fail();
    EXPECT_TRUE(folder.engine.person.Said("Creation of Tracert Bat file failed. couldn't create /home/korvane/kvlogs/KvTR7.bat"));
    EXPECT_TRUE(folder.engine.person.Said("Running and Saving TraceRoute Information ''"));
    EXPECT_TRUE(folder.engine.Logged("KvTR7.bat because Read-only file system"));
    EXPECT_EQ(folder.Started(), Texts{"fix it"});

    ActionsWorld shell(command);
    shell.processes.missing = "/bin/sh";
    shell.Fail();
    EXPECT_TRUE(shell.engine.Logged("frmMonitor:RunTraceRoute: Error: No such file or directory"));
    EXPECT_EQ(shell.Started(), Texts{"fix it"});

    ActionsWorld missing(command);
    missing.processes.missing = "fix it";
    missing.Fail();
    const std::string why = "fix it program could not be executed because No such file or directory";
    EXPECT_TRUE(missing.engine.person.Said(why));
    EXPECT_TRUE(missing.engine.Logged("frmMonitor:RunCommand: " + why));

    ActionsWorld zero(command);
    zero.processes.pid = 0;
    zero.Fail();
    EXPECT_TRUE(zero.engine.person.Said("Program failed to execute: 'fix it'"));
    EXPECT_TRUE(zero.engine.Logged("frmMonitor:RunCommand: Program failed to execute: 'fix it'"));
}

TEST(FailureState, AnErrorEndsItAndWhatIsDoneStaysDone) {
    struct Case {
        StoreOperation operation;
        const char* about;
        std::size_t mails;
        std::string strAction;
    };
    const Case cases[] = {
        {StoreOperation::Read, "strEmailBody", 0, "None."},
        {StoreOperation::Open, "Down-Time", 0, kNoCommandItem},  // the question whether all servers are failing
        {StoreOperation::Read, "bSendUpNotify", 2, kNoCommandItem + kSentItem},
        {StoreOperation::Read, "ID", 2, kNoCommandItem + kSentItem + kUpWanted},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.about);
        ActionsWorld w;
        w.engine.settings.setKvSettingsColValue("Reboot", "True");
        w.engine.database.Add({.strCurStatus = "UP"});
        w.WithRow([&](Connection& conn, Recordset& rs) {
            w.engine.store.faults.Add({.operation = c.operation, .about = c.about, .description = "disk full"});
            EXPECT_EQ(w.actions.DoFailureStateStuff(conn, rs, "no answer"), c.strAction);
        });
        EXPECT_EQ(w.primary.mails.size(), c.mails);
        EXPECT_TRUE(w.processes.started.empty());
        EXPECT_TRUE(w.engine.person.Said("DoFailureStateStuff: Error: disk full"));
        EXPECT_TRUE(w.engine.Logged("frmMonitor:DoFailureStateStuff: Errors block: disk full"));
    }
}

TEST(AreAllServersFailing, CountsWhatIsDueWithinSixMinutes) {
    struct Case {
        const char* status;
        int dueInSeconds;
        bool bAll;
        int hour = 12, minute = 0;
    };
    const Case cases[] = {
        {"UP", 360, false},     {"UP", 361, true}, {"Down-Time", 0, true},   {"Inactive", 0, true}, {"DOWN", 0, true},
        {"Failing", 360, true}, {"up", 0, true},   {"UP", 0, false, 23, 54},  // six minutes before midnight, which no query can name
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.status) + " in " + std::to_string(c.dueInSeconds));
        const DateTime now = DateTime::Of(2026, 11, 21, c.hour, c.minute, 0);
        ActionsWorld w(Row{}, now);
        w.engine.database.Add({.strCurStatus = c.status, .dtNextCheck = now + std::chrono::seconds(c.dueInSeconds)});
        w.WithRow([&](Connection& conn, Recordset&) { EXPECT_EQ(w.actions.AreAllServersFailing(conn), c.bAll); });
    }
    ActionsWorld none(Row{{"bIsMonitoring", false}});
    none.WithRow([&](Connection& conn, Recordset&) { EXPECT_FALSE(none.actions.AreAllServersFailing(conn)); });
}

TEST(UpAgain, TellsOfTheReturnWithTheTraceOfTheFailure) {
    struct Case {
        const char* name;
        Row columns;
        const char* trace;
        std::string body;
        Texts started = {};
    };
    const std::string heading =
        "\r\n\r\nThe traceroute (tracert.exe) was executed when the server failure occurred. \r\nBecause it takes to long, the "
        "failure tracert is sent to you with the server up notificaton. The following is the tracert run right after the server "
        "failure:\r\n-------------------------------\r\n";
    const Case cases[] = {
        {"no trace", {}, "", kUpMail},
        {"trace", {}, "1 hop\n2 hops\r\n", kUpMail + heading + "1 hop\r\n2 hops\r\n"},
        {"command",
         {{"strCMDUP", "cheer"}},
         "x",
         kUpMail + "\r\n\r\nRunning Server Up command 'cheer'" + heading + "x",
         {"cheer"}},
        {"short", {{"strCMDUP", "cheer"}, {"bNotSendBody", true}}, "x", "UP 11/21/2026 3:00:00 PM", {"cheer"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ActionsWorld w(c.columns);
        w.engine.files.CreateFolder("/home/korvane/kvlogs");
        if (*c.trace != '\0') w.engine.files.Replace(kTrace, c.trace);
        w.ComeUp();
        ASSERT_EQ(w.primary.mails.size(), 2U);
        EXPECT_EQ(w.Body(), c.body);
        EXPECT_EQ(w.Subject(), "SERVER BACK UP (Down!) web 11/21/2026 3:00:00 PM");
        EXPECT_EQ(w.Started(), c.started);
    }
    ActionsWorld quiet(Row{{"strCMDUP", "cheer"}, {"bSendUpNotify", false}});
    quiet.ComeUp();
    EXPECT_TRUE(quiet.primary.mails.empty());
    EXPECT_EQ(quiet.Started(), Texts{"cheer"});
}

TEST(UpAgain, GoesOnPastWhatCannotBeReadOrSent) {
    ActionsWorld w(Row{{"strCMDUP", "cheer"}});
    w.engine.settings.setKvSettingsColValue("ServerBackup", "backup.example");
    w.primary.refuse = [](const std::string&) { return true; };
    w.files.faults.Add({.operation = FilesOperation::Read, .about = kTrace, .description = "Permission denied"});
    w.engine.store.faults.Add({.operation = StoreOperation::Read, .about = "bSendUpNotify"});
    w.ComeUp();
    EXPECT_EQ(w.backup.mails.size(), 2U);
    EXPECT_FALSE(w.engine.Logged("FAILED"));

    w.backup.refuse = w.primary.refuse;
    w.ComeUp();
    EXPECT_TRUE(w.engine.Logged("frmMonitor:DoUpAgainStuff: Server UP Email Notification FAILED because 'Expected: 250"));
    EXPECT_EQ(w.Started(), (Texts{"cheer", "cheer"}));
}

TEST(StartupNotice, GoesToThePeopleOfTheFirstEntry) {
    ActionsWorld w;
    w.actions.SendStartupNotice();
    EXPECT_TRUE(w.primary.mails.empty());
    EXPECT_TRUE(w.engine.Logged("frmMonitor:SendStartupNotice: There is no entry"));

    for (const auto& [key, value] : {std::pair{"URL", "x"}, {"Email", "a@x"}, {"Email2", "b@y"}, {"EmailFrom", "me@z"}})
        w.engine.settingsFile.Write("Settings1", key, value);
    w.entries.readURLData(1);
    const std::string body =
        "Time: 11/21/2026 3:00:00 PM\r\n\r\nKorvane Just Started.  You have the global setting turned on to reboot the computer "
        "upon Server failure.  (Checkbox on the Settings Menu). \r\n\r\nA reboot will occur only when ALL of the servers are in "
        "a "
        "failing state. \r\n\r\nThis message is sent to you to notify you that Korvane just started (and most likely it's "
        "because "
        "the server just came back up). The only way to turn off this startup email notification is if you turn off the setting "
        "to "
        "automatically restart the server upon Server failure (Checkbox on the Settings Menu).";
    w.actions.SendStartupNotice();
    ASSERT_EQ(w.primary.mails.size(), 2U);
    EXPECT_TRUE(w.Subject().starts_with("Korvane Just Started. This server is up. "));
    EXPECT_EQ(w.Body(), body);
    w.engine.settings.setKvSettingsColValue("RebootAny", "True");
    w.actions.SendStartupNotice();
    EXPECT_TRUE(Holds(w.Body(), "\r\n\r\nA reboot will occur if ANY of the servers fail x times in a row.\r\n\r\n"));
}

}  // namespace
}  // namespace korvane
