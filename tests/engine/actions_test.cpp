// What follows from an outage and its end, word by word: the mails and what the `Failures` row tells; the trace, and the restart
// of this machine.
#include <cstdlib>
#include <filesystem>

#include "engine/engine_test.h"
#include "store/database_files.h"
#include "store/last_checks.h"

namespace korvane::actions_test {

const std::string kAllFailing = "ALL SERVERS ARE FAILING.";
const std::string kTrace = "/bin/sh '~/kvlogs/KvTR7.bat'";
constexpr const char* kRebootAll = "Reboot=True\nRebootAny=False";

/// Entry 7, a web page that fails for the third time and then comes back.
struct Outage : Engine {
    explicit Outage(Row columns = Row(), const std::string& settings = "", DateTime start = kStart)
        : Engine({}, settings, start) {
        columns.merge(
            Columns("strEmailList1 strEmailList2 strEmailFrom strEmailText strEmailBody strAddress_IP strDesc nTriesCur "
                    "strCurStatus nIntervalSeconds",
                    "a@x", "b@y", "me@z", "Down!", "Look at it", "web/a", "web", 2, "Failing", 4));
        last = 6;
        Add(Web(columns));
        net.Page("http://web/a").Fail("no answer", 500ms).Answer("ok");
    }
    /// Of the failure.
    std::string Fail() {
        RunFor(4s);
        return rows.Rows("Failures").at(0).at("strAction").Text();
    }
    /// "<subject>|<body>" of the mails since the last call, which must have gone to both recipients.
    std::string TakeMail() {
        const auto mails = std::exchange(mail.mails, {});
        if (mails.empty()) return "";
        EXPECT_EQ(mails.front().recipients, Texts{"<a@x>"});
        EXPECT_EQ(mails.back().recipients, Texts{"<b@y>"});
        EXPECT_EQ(mails.back().from, "<me@z>");
        const std::string& text = mails.back().text;
        const auto subject = text.find("Subject: ") + 9, body = text.find("\r\n\r\n") + 4;
        return text.substr(subject, text.find("\r\n", subject) - subject) + "|" + text.substr(body, text.rfind("\r\n") - body);
    }
};

TEST(FailureState, MailsThenTracesThenRunsTheCommandAndSaysSo) {
    const std::string restart = "Korvane will shutdown and restart the computer Korvane is running on. ";
    const std::string restarted = "<li>Korvane shut down and restarted the computer it was running on.  ";
    const std::string any = "Set to reboot if ANY server fails.", fix = "The following command will be executed:\r\nfix it";
    const std::string none = "No commands will be executed (none are configured).",
                      noneItem = "No commands are configured to be executed.";
    const std::tuple<const char*, const char*, std::string, std::string> cases[] = {
        {" ", "RebootAny=True", none, noneItem},
        {"", "Reboot=True\nRebootAny=True", none + "\r\n\r\n" + restart + " " + any, noneItem + restarted + any},
        {"fix it", kRebootAll, fix + "\r\n\r\n" + restart + kAllFailing, "fix it was executed. " + restarted + kAllFailing},
    };
    for (const auto& [strCMD, settings, words, items] : cases) {
        Outage outage(Row{{"strCMD", strCMD}}, settings);
        bool first = true;
        outage.mail.refuse = [&](const std::string&) { return !(first = first && outage.processes.started.empty()); };
        EXPECT_EQ(outage.Fail(),
                  "None.<ul><li>" + items +
                      "\r\n<li>Server DOWN Email Notification successfully sent to: 'a@x b@y'.<li>Server configured so a "
                      "Server UP Notification <b>will</b> be sent with tracert information when the server comes back up. </ul>");
        EXPECT_EQ(outage.TakeMail(),
                  "Down! (web) 11/21/2026 3:00:02 PM|Look at it\r\nTime: 11/21/2026 3:00:02 PM\r\n\r\nThe Server "
                  "HTTP://web/a could not be reached \r\n3 times in a row.  \r\nReason: Reason 'no answer'\r\n\r\n" +
                      words + "\r\n\r\nDown!");
        EXPECT_EQ(outage.TakeStarted(), strCMD[0] == 'f' ? (Texts{kTrace, "fix it"}) : Texts{kTrace});
    }
}

TEST(FailureState, TroubleWithAStepLeavesTheOthers) {
    Outage outage(Row{{"strCMD", "fix it"}, {"bNotSendBody", true}, {"bSendUpNotify", false}, {"strDesc", ""}});
    outage.files.faults.Add({.operation = FilesOperation::CreateFolder, .about = "kvlogs", .description = "read-only"});
    outage.processes.missing = "fix it";
    EXPECT_TRUE(outage.Fail().ends_with("<li>Server configured so a Server UP Notification <b>WILL NOT</b> be sent.</ul>"));
    EXPECT_EQ(outage.TakeMail(), "Down! 11/21/2026 3:00:02 PM|");
    EXPECT_TRUE(outage.Logged("KvTR7.bat because read-only"));
    EXPECT_TRUE(outage.Logged("fix it program could not be executed because No such file or directory"));
    Outage unread(Row{}, kRebootAll);
    unread.store.faults.Add({.operation = StoreOperation::Open, .about = "Down-Time", .description = "disk full"});
    EXPECT_EQ(unread.Fail(), "None.<ul><li>No commands are configured to be executed.");
    EXPECT_TRUE(unread.Logged("# frmMonitor:DoFailureStateStuff: Errors block: disk full"));
}

TEST(FailureState, AllServersAreFailingWhenNoneThatIsDueWithinSixMinutesIsUp) {
    const DateTime late = DateTime::Of(2026, 11, 21, 23, 53, 58);  // six minutes later it is midnight, which no query can name
    const std::tuple<const char*, int, bool, DateTime> cases[] = {
        {"UP", 362, false, kStart}, {"UP", 363, true, kStart}, {"Down-Time", 30, true, kStart}, {"UP", 30, false, late}};
    for (const auto& [status, seconds, all, start] : cases) {
        Outage outage(Row(), kRebootAll, start);
        outage.Add(Ping({{"strCurStatus", status}, {"dtNextCheck", start + std::chrono::seconds(seconds)}}));
        EXPECT_EQ(Holds(outage.Fail(), kAllFailing), all) << status << " in " << seconds;
    }
    Outage none(Row(), kRebootAll);
    none.world.After(2200ms, [&] { none.Change(7, {{"bIsMonitoring", false}}); });
    EXPECT_FALSE(Holds(none.Fail(), kAllFailing));
}

TEST(Commands, AreToldOfTheEntryInTheirEnvironmentInShortLines) {
    const Row commands{{"strCMD", "fix it"}, {"strCMDUP", "cheer"}, {"strDesc", "w\r\ne\tb" + std::string(65536, 'x')}};
    Outage outage(commands);
    outage.RunFor(9s);
    const std::string entry = "KORVANE_ID=7|KORVANE_NAME=w  e b...|KORVANE_ADDRESS=web/a|KORVANE_TYPE=HTTP|KORVANE_STATE=";
    EXPECT_EQ(ReplaceAll(outage.processes.environment, std::string(994, 'x'), "..."),
              entry + "DOWN|KORVANE_REASON=Reason 'no answer'|KORVANE_SINCE=2026-11-21 15:00:02|" + entry +
                  "UP|KORVANE_REASON=|KORVANE_SINCE=2026-11-21 15:00:07|");
    EXPECT_EQ(outage.TakeStarted(), (Texts{kTrace, "fix it", "cheer"}));
    Outage text(Row{{"strCMD", "fix it"}, {"strExpectedText", "text"}, {"strAddress_IP", "web/b"}});
    text.net.Page("http://web/b").Answer("another");
    text.Fail();
    EXPECT_TRUE(Holds(text.processes.environment, "|KORVANE_REASON=The expected text is not in the answer.|"));
    Outage hides(Row{{"strCMD", "fix it"}, {"strAddress_IP", "u:word@web/c"}}, "HidePasswords=True");
    hides.Fail();
    EXPECT_TRUE(Holds(hides.processes.environment, "|KORVANE_ADDRESS=u:[not shown]@web/c|"));
    EXPECT_FALSE(Holds(hides.processes.environment, "word") || Holds(hides.mail.mails.at(0).text, "word"));
}

TEST(UpAgain, TellsOfTheReturnWithTheTraceOfTheFailureThoughNotEverythingCanBeRead) {
    const std::string expected =
        "SERVER BACK UP (Down!) web 11/21/2026 3:00:07 PM|Time: 11/21/2026 3:00:07 PM\r\n\r\nThe Server HTTP://web/a (web) can "
        "be "
        "reached again! Previously, an email was sent notifying failure.\r\n\r\nRunning Server Up command 'cheer'";
    const std::string trace =
        "\r\n\r\nThe traceroute (tracert.exe) was executed when the server failure occurred. \r\nBecause it takes to long, the "
        "failure tracert is sent to you with the server up notificaton. The following is the tracert run right after the server "
        "failure:\r\n-------------------------------\r\n1 hop\r\n2 hops\r\n";
    for (const bool read : {true, false}) {
        Outage outage(Row{{"strCMDUP", "cheer"}});
        outage.Fail();
        outage.TakeMail();
        outage.Write("kvlogs/KvTR7.txt", "1 hop\n2 hops\r\n");
        if (!read) outage.files.faults.Add({.operation = FilesOperation::Read, .about = "KvTR7.txt"});
        if (!read) outage.store.faults.Add({.operation = StoreOperation::Read, .about = "bSendUpNotify"});
        outage.RunFor(5s);
        EXPECT_EQ(outage.TakeMail(), expected + (read ? trace : ""));
        EXPECT_EQ(outage.TakeStarted(), (Texts{kTrace, "cheer"}));
    }
}

/// Entry 1, a page whose certificate ends after some time.
struct Certified : Engine {
    explicit Certified(const std::string& settings,
                       const Row& to = Columns("strEmailList1 strEmailList2 strEmailFrom", "a@x", "b@y", "me@z"))
        : Engine({}, settings) {
        Add(With(to, {.strDesc = "shop",
                      .strAddress_IP = "web",
                      .strType = "HTTPS",
                      .strPort = "443",
                      .nTries = 100,
                      .nIntervalSeconds = 10}));
        Ends(kStart + 20h * 24 + 1h);
    }
    void Ends(std::optional<DateTime> when, PageAnswer::Kind kind = PageAnswer::Kind::Body) {
        net.Page("https://web").Anew().Add({.kind = kind, .text = "ok", .after = 5ms, .certificateEnd = when});
    }
    /// The subjects of the mails to the first recipient that several checks send.
    std::string TakeMails(std::chrono::hours later = 0h) {
        world.MoveClock(later);
        Change(1, {{"dtNextCheck", world.clock.Now()}});
        RunFor(90s);
        std::string subjects;
        for (const auto& each : std::exchange(mail.mails, {})) {
            const auto at = each.text.find("Subject: ") + 9;
            if (each.recipients == Texts{"<a@x>"}) subjects += each.text.substr(at, each.text.find(" (shop)", at) - at) + "|";
        }
        return subjects;
    }
    /// Of the table, in the order of the mails.
    std::string Noted() {
        std::string texts;
        for (const CertificateMail& mailed : LastChecks(database).MailsOf(*rows.Connected(), 1))
            texts += mailed.end.DateText() + " " + std::to_string(mailed.limit.count()) + "|";
        return texts;
    }
    bool HasTable() {
        return OpenRows(database, *rows.Connected(),
                        "SELECT name FROM sqlite_master WHERE name IN ('LastChecks', 'CertificateMails')")
                   ->RecordCount() > 0;
    }
};

TEST(Certificate, IsMailedOnceAtEachOfItsTimesAndARenewedOneAnew) {
    for (const std::string outbox : {"", "MailOutbox=True\n"}) {
        Certified shop(outbox + "CertWarnDays= 20 \n");
        EXPECT_EQ(shop.TakeMails(), "");
        for (const auto& [later, subject] :
             std::initializer_list<std::pair<std::chrono::hours, std::string>>{{1h, "Certificate ends in 19 days|"},
                                                                               {9h * 24, ""},
                                                                               {24h, "Certificate ends in 9 days|"},
                                                                               {8h * 24, "Certificate ends in 47 hours|"},
                                                                               {24h, "Certificate ends in 23 hours|"}})
            EXPECT_EQ(shop.TakeMails(later), subject) << later.count();
        shop.Ends(kStart + 20h * 24 + 1h, PageAnswer::Kind::Failure);
        EXPECT_EQ(shop.TakeMails(24h), "Certificate has ended|");
        World again({.start = shop.world.clock.Now(), .home = shop.home});
        again.net.Page("https://web").Add({.kind = PageAnswer::Kind::Failure, .certificateEnd = kStart + 20h * 24 + 1h});
        again.Start();
        again.RunFor(90s);
        EXPECT_TRUE(again.mail.mails.empty()) << "restarts do not matter";
        const DateTime end = shop.world.clock.Now() + 9h * 24;
        shop.Ends(end);
        EXPECT_EQ(shop.TakeMails(), "Certificate ends in 8 days|");
        shop.Ends(end + 1h);
        EXPECT_EQ(shop.TakeMails(), "") << "two servers behind one name";
        EXPECT_EQ(shop.Noted(),
                  "12/11/2026 480|12/11/2026 240|12/11/2026 72|12/11/2026 24|12/11/2026 0|" + end.DateText() + " 240|");
        EXPECT_EQ(shop.Of(1, "strCurStatus,nTriesCur"), "UP,0");
        EXPECT_TRUE(shop.Logged("The certificate of https://web (shop) ends in 8 days, on " + end.Text() + "."));
        shop.rows.Remove("Servers", 1);
        EXPECT_EQ(shop.Noted(), "") << "an entry with this ID would inherit it";
    }
}

TEST(Certificate, TheOddCases) {
    Certified nobody("CertWarnDays=3\n", Row());
    nobody.Ends(kStart + 30h);
    nobody.TakeMails();
    EXPECT_EQ(nobody.Noted(), "11/22/2026 36|");
    EXPECT_TRUE(nobody.Logged("(shop) ends in 29 hours, on 11/22/2026 9:00:00 PM. Nobody is notified."));
    Certified refused("CertWarnDays=30\nServerBackup=\n");
    refused.mail.refuse = [](const std::string&) { return true; };
    EXPECT_EQ(refused.TakeMails(), "");
    refused.mail.refuse = nullptr;
    EXPECT_EQ(refused.TakeMails(), "") << "each check would wait for the mail server";
    refused.RunFor(1h);
    EXPECT_EQ(refused.TakeMails(), "Certificate ends in 19 days|");
    Certified full("CertWarnDays=30\n");
    full.store.faults.Add(
        {.operation = StoreOperation::Update, .forever = true, .about = "CertificateMails", .description = "disk full"});
    EXPECT_EQ(full.TakeMails(), "Certificate ends in 20 days|") << "once, though it cannot be noted";
    EXPECT_EQ(full.Noted() + full.Of(1, "strCurStatus"), "UP");
    full.store.faults.Heal();
    full.TakeMails();
    EXPECT_EQ(full.Noted(), "12/11/2026 720|");
    for (const std::string value : {"0", "-1", "1001", "20.5", "soon", "1e2", "99999999999999999999"}) {
        Certified off("KeepPhases=yes\nCertWarnDays=" + value + "\n");
        EXPECT_EQ(off.TakeMails(19h * 24), "");
        EXPECT_TRUE(off.Logged("# KeepPhases: 'yes' is not \"True\" or \"False\". It is off. CertWarnDays: '" + value +
                               "' is not a number of days from 1 to 1000. It is off."));
        EXPECT_FALSE(off.HasTable());
    }
}

TEST(LastCheck, IsKeptWithTheRowOnlyWhileItIsWanted) {
    Certified shop("CertWarnDays=\n");
    const auto kept = [&] { return LastChecks(shop.database).Read(*shop.rows.Connected(), 1).value(); };
    shop.TakeMails();
    EXPECT_FALSE(shop.HasTable());
    shop.Set("KeepPhases", "True");
    shop.TakeMails();
    EXPECT_TRUE(kept().phases.firstByte == 5ms && !kept().phases.name && kept().when <= shop.world.clock.Now());
    shop.Ends(std::nullopt, PageAnswer::Kind::Failure);
    shop.TakeMails();
    EXPECT_EQ(kept().phases.certificateEnd, kStart + 20h * 24 + 1h) << "a check without an answer saw none";
    shop.Ends(std::nullopt);
    shop.TakeMails();
    EXPECT_EQ(kept().phases.certificateEnd, std::nullopt);
    shop.net.Host("mail").ResolveAfter(30ms).Port(25).Accept(20ms).Speak("220 hi\r\n", 10ms).OnLine("QUIT", "221\r\n");
    shop.Change(1, Columns("strType strAddress_IP strPort strExpectedText", "SMTP", "mail", "25", "220,QUIT,221"));
    shop.TakeMails();
    EXPECT_TRUE(kept().phases.name == 30ms && kept().phases.connect == 21ms && kept().phases.steps.size() == 2)
        << kept().phases.connect->count();
    EXPECT_TRUE(kept().phases.steps.front().awaited == "220" && kept().phases.steps.front().took == 10ms);
    shop.Change(1, Columns("strType strAddress_IP strExpectedText", "PING", "10.0.0.1", "1000"));
    shop.TakeMails();
    EXPECT_TRUE(kept().phases.whole == 5ms && !kept().phases.connect && kept().phases.steps.empty());
}

TEST(StartupNotice, GoesToThePeopleOfTheFirstEntry) {
    const std::string expected = R"(Korvane Just Started. This server is up. 11/21/2026 3:00:01 PM|Time: 11/21/2026 3:00:01 PM

Korvane Just Started.  You have the global setting turned on to reboot the computer upon Server failure.  (Checkbox on the Settings Menu). 

A reboot will occur only when ALL of the servers are in a failing state. 

This message is sent to you to notify you that Korvane just started (and most likely it's because the server just came back up). The only way to turn off this startup email notification is if you turn off the setting to automatically restart the server upon Server failure (Checkbox on the Settings Menu).)";
    for (const bool somebody : {false, true}) {
        Outage outage(Row(), kRebootAll);
        for (const auto& [key, value] : {std::pair{"URL", "x"}, {"Email", "a@x"}, {"Email2", "b@y"}, {"EmailFrom", "me@z"}})
            outage.run.TheDesk().settingsFile.Write("Settings1", key, value);
        if (somebody) outage.run.TheDesk().entries.readURLData(1);
        outage.RunFor(1s);
        EXPECT_EQ(outage.TakeMail(), somebody ? ReplaceAll(expected, "\n", "\r\n") : "");
        EXPECT_EQ(outage.Logged("# frmMonitor:SendStartupNotice: There is no entry"), !somebody);
    }
}

// The script is run by a real shell, with tracers that only write down what they are given.
TEST(Trace, TheScriptNamesOneHostForTheTracerThatIsThere) {
    namespace fs = std::filesystem;
    const Texts addresses = {"www.example.com/path?a=b;c", "host\\share/x", "-f", "x'; touch harm; '",
                             "$(touch harm)`touch harm`",  "x\" > harm\n"};
    const Texts hosts = {"www.example.com", "host", "-f", "x'; touch harm; '", "$(touch harm)`touch harm`", "x\" > harm"};
    const TemporaryFolder folder;
    const fs::path programs = folder.Path() + "/programs";
    fs::create_directories(programs);
    for (const char* program : {"rm", "timeout"})
        fs::create_symlink(fs::path("/usr/bin") / program, programs / program);
    World world({.home = folder.Path() + "/it's $HOME `id`"});
    const auto trace = [&](const std::string& address) {
        world.run.TheDesk().trace.RunTraceRoute(address, 7);
        const std::string command = "PATH='" + programs.string() + "' " + world.processes.started.back().command;
        EXPECT_EQ(std::system(("cd '" + folder.Path() + "' && " + command).c_str()) & 0x7F, 0);
        return world.Text("kvlogs/KvTR7.txt");
    };
    for (const std::string tracer : {"tracepath", "traceroute"}) {
        std::ofstream(programs / tracer) << "#!/bin/sh\nprintf '[%s]' " << tracer << " \"$@\"\n";
        fs::permissions(programs / tracer, fs::perms::owner_all);
        std::ofstream earlier(world.PathOf("kvlogs/KvTR7.txt"), std::ios::app);  // as if an earlier trace still ran
        for (std::size_t i = 0; i < hosts.size(); ++i)
            EXPECT_EQ(trace(addresses[i]), "[" + tracer + "][--][" + hosts[i] + "]");
        earlier << "late" << std::flush;
        EXPECT_FALSE(Holds(world.Text("kvlogs/KvTR7.txt"), "late"));
    }
    EXPECT_FALSE(fs::exists(folder.Path() + "/harm"));
}

TEST(MachineRestart, StopsMonitoringAndReboots) {
    using enum PowerSystem;
    for (const auto& [yes, system] :
         {std::pair{false, ServiceManager}, {true, ServiceManager}, {true, ShutdownCommand}, {true, Unknown}}) {
        Engine engine;
        engine.person.answers = {yes, yes};
        engine.power.system = system;
        int answered = 0;
        for (int i = 0; i < 2; ++i)  // the second time monitoring is off already
            engine.run.TheDesk().restart.TestShutDown([&] { ++answered; });
        EXPECT_EQ(answered, 2);
        EXPECT_EQ(engine.run.State().bMonitoring, !yes);
        EXPECT_EQ(engine.power.requests, std::vector<PowerAction>(yes ? 2 : 0, PowerAction::Reboot));
        EXPECT_EQ(engine.person.Said("Can't shutdown because this is an unknown system."), system == Unknown);
        EXPECT_EQ(engine.Logged("# DoReboot: Nothing on this machine can do it"), system == Unknown);
    }
}

}  // namespace korvane::actions_test
