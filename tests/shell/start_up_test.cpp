// The start of the whole program without a window, in every branch, and its end: on real files and a real database, in virtual
// time.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "base/text.h"
#include "shell/program.h"
#include "shell/run/terminal_operator.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr const char* kTwoEntries =
    "[Settings]\nBegin=0\nNumURLs=2\n"
    "[Settings1]\nURL=10.0.0.1\nPRETTY=ping\nType=PING\nServPort=ICMP\nMustHaveText=1000\nTries=3\nnListAttempts=5\n"
    "[Settings2]\nURL=10.0.0.2\nPRETTY=mail\nType=SMTP\nServPort=25\nMustHaveText=220,QUIT,221\nTries=1\n";

TEST(StartUp, AnEmptyHomeBecomesAWorkingOne) {
    const Home home;
    // Of a database that is gone: it would cut the new one down to its first page.
    home.Write(
        "kvdata2.mdb-journal",
        std::string("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7\0\0\0\0\0\0\0\0\0\0\0\1\0\0\2\0\0\0\x10\0", 28) + std::string(484, '\0'));
    Program program(home);
    ASSERT_EQ(program.run.StartUp(), Run::Started::Running);
    EXPECT_TRUE(program.person.Said("New User. Initialize Database..."));
    const std::string log = home.Log();
    std::size_t at = 0;
    for (const char* line :
         {"11/21/2026 3:00:00 PM 1.0.0 i\tKorvane Starting *********************************\n",
          "i\tfrmMonitor:Form_Load: determined to be first Instance\n", "i\tfrmMonitor:Form_Load: ReadInGlobalSettings.\n",
          "i\tfrmMonitor:Form_Load: copy blank database template so we can initialize.\n",
          "i\tfrmMonitor:Form_Load: read in ini files to convert first time database users.\n",
          "i\tfrmMonitor:Form_Load: All data should be in database.\n", "i\tfrmMonitor:Form_Load: calling Form_Resize\n"}) {
        at = log.find(line, at);
        ASSERT_NE(at, std::string::npos) << line << "in\n" << log;
    }
    EXPECT_TRUE(Holds(ReadAll(home / "kvurlwatchn.ini"), "bALLInDB=True"));
    EXPECT_TRUE(fs::is_directory(home / "Reports"));
    for (const char* name : {"kvurlwatchn.ini", "kvdata2.mdb"}) {
        EXPECT_EQ(fs::status(home / name).permissions(), fs::perms::owner_read | fs::perms::owner_write) << name;
    }
}

TEST(StartUp, OldEntriesMoveIntoTheDatabaseAndAreChecked) {
    const Home home;
    home.Write("kvurlwatchn.ini", kTwoEntries);
    Program program(home);
    program.net.Host("10.0.0.1").Echo(3ms);
    program.net.Host("10.0.0.2").Port(25).Refuse();
    ASSERT_EQ(program.run.StartUp(), Run::Started::Running);
    program.world.RunFor(6s);
    EXPECT_EQ(program.Column(home, "SELECT strCurStatus AS v FROM Servers ORDER BY strDesc DESC"),
              (std::vector<std::string>{"UP", "DOWN"}));
    EXPECT_EQ(program.Column(home, "SELECT strReason AS v FROM Failures"),
              (std::vector<std::string>{"Could Not Connect to 10.0.0.2 Double check for typos. "}));
    // No mail server is set: the log tells that nobody heard of it, and the trace is made all the same.
    EXPECT_TRUE(
        Holds(home.Log(), "#\tfrmMonitor:DoFailureStateStuff: Server DOWN Email Notification <font color=red>FAILED</font>"));
    ASSERT_EQ(program.processes.started.size(), 1u);
    EXPECT_TRUE(Holds(program.processes.started[0].command, "/bin/sh '" + home.Path() + "/kvlogs/KvTR"));
}

TEST(StartUp, TellsOfTheRestartSettingUnlessToldToStayQuiet) {
    for (const auto& [commandLine, mails] : {std::pair{"", 1u}, {"-restart", 0u}}) {
        const Home home;
        home.Write("kvurlwatchn.ini",
                   "[Settings]\nBegin=0\nNumURLs=1\nReboot=True\nServer=mail.example\n"
                   "[Settings1]\nURL=10.0.0.1\nType=PING\nEmail=me@example.com\n");
        Program program(home, KORVANE_DIST_DIR, commandLine);
        VirtualMailServer mail(program.net.Host("mail.example").Port(25));
        ASSERT_EQ(program.run.StartUp(), Run::Started::Running);
        program.world.RunFor(2s);
        ASSERT_EQ(mail.mails.size(), mails) << home.Log();
        for (const auto& sent : mail.mails)
            EXPECT_TRUE(Holds(sent.text, "Subject: Korvane Just Started. This server is up. "));
    }
}

TEST(StartUp, ASecondInstanceSaysSoAndLeavesEverythingAlone) {
    const Home home;
    Program first(home);
    ASSERT_EQ(first.run.StartUp(), Run::Started::Running);
    const std::string settings = ReadAll(home / "kvurlwatchn.ini");
    const std::string log = home.Log();
    Program second(home);
    EXPECT_EQ(second.run.StartUp(), Run::Started::SecondInstance);
    ASSERT_EQ(second.person.messages.size(), 1u);
    EXPECT_EQ(second.person.messages[0].title, "Korvane Multiple Instance.");
    EXPECT_EQ(second.person.messages[0].text, "Korvane is already running.  \r\n\r\nOnly one instance may run.");
    EXPECT_EQ(ReadAll(home / "kvurlwatchn.ini"), settings);
    EXPECT_EQ(home.Log(), log + "11/21/2026 3:00:00 PM 1.0.0 i\tKorvane Starting *********************************\n");
}

TEST(StartUp, StopsAtTheFirstThingThatIsMissing) {
    struct Case {
        const char* missing;
        const char* message;
        const char* log;
    };
    const Case cases[] = {
        {"kvempty.mdb", "The necessary Template Databasee ",
         "#\tfrmMonitor:Form_Load: the blank database was not there.  can't initialize database."},
        {"grouptmp.htm", "The necessary report template ",
         "#\tfrmMonitor:Form_Load: the group template /grouptmp.htm was missing. can't continue."},
        {"dailyreporttmp.htm", "The necessary report template ",
         "#\tfrmMonitor:Form_Load: the daily report template /dailyreporttmp.htm was missing. can't continue."},
    };
    for (const Case& c : cases) {
        const Home home;
        const Home installation;
        for (const auto& file : fs::directory_iterator(KORVANE_DIST_DIR)) {
            const std::string name = file.path().filename().string();
            if (name != c.missing && (name.ends_with(".htm") || name == "kvempty.mdb")) fs::copy(file, installation / name);
        }
        Program program(home, installation.Path());
        EXPECT_EQ(program.run.StartUp(), Run::Started::CannotGoOn) << c.missing;
        ASSERT_EQ(program.person.messages.size(), 1u) << c.missing;
        EXPECT_EQ(program.person.messages[0].text,
                  c.message + (home / c.missing).string() +
                      " was missing.  Please reinstall Korvane (may have to choose the repair option).");
        EXPECT_TRUE(Holds(home.Log(), c.log)) << home.Log();
        EXPECT_TRUE(Holds(home.Log(), "Korvane Closing: Form_Terminate:"));
        EXPECT_FALSE(program.world.RunUntil([&] { return program.person.Said("Done Waiting."); }, 10min));
    }
}

TEST(StartUp, BlamesWhatKeepsATemplateFromComing) {
    const Home home;
    fs::create_directory(home / ".kvempty.mdb.new");
    Program program(home);
    EXPECT_EQ(program.run.StartUp(), Run::Started::CannotGoOn);
    EXPECT_EQ(program.person.messages.at(0).text, "Cannot write " + (home / "kvempty.mdb").string() + ": File exists");
}

TEST(StartUp, SaysThatTheDatabaseCannotBeWrittenAndGoesOn) {
    const Home home;
    EXPECT_EQ(Program(home).run.StartUp(), Run::Started::Running);
    const std::string database = ReadAll(home / "kvdata2.mdb");
    const int reader = ::open((home / "kvdata2.mdb").c_str(), O_RDWR | O_CLOEXEC);
    struct flock reading {
        .l_type = F_RDLCK, .l_whence = SEEK_SET, .l_start = 0x40000002, .l_len = 510, .l_pid = 0
    };
    ASSERT_EQ(::fcntl(reader, F_OFD_SETLK, &reading), 0);  // as SQLite does
    for (const bool held : {true, false}) {
        Program program(home);
        EXPECT_EQ(program.run.StartUp(), Run::Started::Running);
        EXPECT_EQ(program.person.SaidPart("is locked by another program"), held);
        EXPECT_TRUE(Holds(home.Log(), "#\tfrmMonitor:Form_Load: The database"));
        if (held) ::close(reader);
    }
    EXPECT_EQ(ReadAll(home / "kvdata2.mdb"), database);
}

TEST(StartUp, TheSetupMarkOutlivesTheSettingsFile) {
    struct Window : MonitorWindow {
        int setups = 0;
        bool HasWindow() const override { return true; }
        void SetUpForTheFirstTime() override { ++setups; }
    } window;
    const Home home;
    for (const auto& [settings, setups] : {std::pair{std::string(1, '\0'), 0}, {"", 1}, {"", 1}, {std::string(1, '\0'), 1}}) {
        home.Write("kvurlwatchn.ini", settings);
        Program program(home.Path(), KORVANE_DIST_DIR, "", [&](Timers&) { return DesktopOfProgram{.window = &window}; });
        EXPECT_EQ(program.run.StartUp(), Run::Started::Running);
        program.world.RunFor(2s);
        EXPECT_EQ(window.setups, setups);
    }
}

TEST(StartUp, ADatabaseOfAnotherKindEndsItAndStaysUntouched) {
    for (const std::string& content : {std::string("dear diary"), std::string("\0\1\0\0Standard Jet DB\0", 20), std::string()}) {
        const Home home;
        home.Write("kvdata2.mdb", content);
        Program program(home);
        EXPECT_EQ(program.run.StartUp(), Run::Started::CannotGoOn);
        ASSERT_EQ(program.person.messages.size(), 2u);
        EXPECT_EQ(program.person.messages[0].title, "Required: Install Microsoft Jet4 components...");
        EXPECT_TRUE(Holds(program.person.messages[0].text, "This is the error: "));
        EXPECT_TRUE(Holds(home.Log(), "#\tfrmMonitor:Form_Load: the database didn't open properly. sending user jet4 info."));
        EXPECT_EQ(ReadAll(home / "kvdata2.mdb"), content);
    }
}

TEST(StartUp, AnSqliteDatabaseOfSomethingElseIsRefused) {
    const Home home;
    ASSERT_EQ(std::system(("sqlite3 '" + (home / "kvdata2.mdb").string() + "' 'CREATE TABLE diary (entry)'").c_str()), 0);
    Program program(home);
    EXPECT_EQ(program.run.StartUp(), Run::Started::CannotGoOn);
    EXPECT_TRUE(Holds(home.Log(), "no such table: servers")) << home.Log();
}

TEST(StartUp, AWishToEndItWaitsUntilNothingIsHalfRead) {
    const Home home;
    home.Write("kvurlwatchn.ini", kTwoEntries);
    Program program(home);
    bool atOnce = true;
    program.world.After(0ms, [&] { atOnce = program.run.MayExit(); });
    ASSERT_EQ(program.run.StartUp(), Run::Started::Running);
    EXPECT_FALSE(atOnce);
    EXPECT_TRUE(program.run.ExitAsked());
    program.run.mnuExit_Click();
    EXPECT_TRUE(Holds(ReadAll(home / "kvurlwatchn.ini"), "NumURLs=2"));
    EXPECT_TRUE(program.run.MayExit());
}

TEST(StartUp, AnUnreadableSettingsFileIsReportedAndKept) {
    const Home home;
    const std::string content("[Settings]\nServer=\0\0\0", 22);
    home.Write("kvurlwatchn.ini", content);
    Program program(home);
    EXPECT_EQ(program.run.StartUp(), Run::Started::Running);
    EXPECT_TRUE(Holds(home.Log(), "#\tfrmMonitor:Form_Load: ")) << home.Log();
    program.run.mnuExit_Click();
    EXPECT_EQ(ReadAll(home / "kvurlwatchn.ini"), content);
}

TEST(StartUp, NamesAColumnThatAnOlderDatabaseLacksAndGoesOn) {
    const Home home;
    home.Write("kvurlwatchn.ini", kTwoEntries);
    {
        Program first(home);
        ASSERT_EQ(first.run.StartUp(), Run::Started::Running);
        first.run.mnuExit_Click();
    }
    ASSERT_EQ(
        std::system(("sqlite3 '" + (home / "kvdata2.mdb").string() + "' 'ALTER TABLE Servers DROP COLUMN nAveSession'").c_str()),
        0);
    Program program(home);
    program.net.Host("10.0.0.1").Echo(3ms);
    ASSERT_EQ(program.run.StartUp(), Run::Started::Running);
    EXPECT_TRUE(Holds(home.Log(), "the database lacks Servers.nAveSession"));
    program.world.RunFor(5s);
    EXPECT_EQ(program.Column(home, "SELECT nSuccess AS v FROM Servers WHERE strDesc = 'ping'"), (std::vector<std::string>{"1"}));
}

TEST(StartUp, AServiceRunTellsItsManagerAndKeepsTheSettingsAsTheyAre) {
    struct Window : MonitorWindow {
        std::string title;
        std::string steps;
        const class Run* run = nullptr;
        void SetTitle(const std::string& text) override { title = text; }
        void SetCaptions(const Captions&) override { steps += title + "; "; }
        void LoadResourceMonitors() override { steps += run->Loading() ? "too early" : "monitors"; }
    } window;
    const Home home;
    home.Write("kvurlwatchn.ini", "[Settings]\r\nBegin=0\r\nServer=as.it.was\r\nbALLInDB=True\r\n");
    Program program(home.Path(), KORVANE_DIST_DIR, "", [&](Timers&) { return DesktopOfProgram{.window = &window}; });
    program.serviceManager.startedThis = true;
    window.run = &program.run;
    ASSERT_EQ(program.run.StartUp(), Run::Started::Running);
    EXPECT_EQ(program.serviceManager.told, (std::vector<std::string>{"Service Started.", "READY"}));
    EXPECT_EQ(window.steps, "Korvane Network Monitoring & Server Monitor v1.0.0 by Brellix; monitors");
    EXPECT_TRUE(window.title.ends_with(" running as service")) << window.title;
    const std::string before = ReadAll(home / "kvurlwatchn.ini");
    program.run.TheDesk().collection.setKvSettingsColValue("Server", "changed.since");
    program.run.Service().Stop();
    EXPECT_EQ(program.exits, 1);
    program.run.mnuExit_Click();
    EXPECT_EQ(ReadAll(home / "kvurlwatchn.ini"), before);
}

TEST(Exit, InTheMiddleOfACheckLeavesTheRowAsItWas) {
    const Home home;
    home.Write("kvurlwatchn.ini", kTwoEntries);
    Program program(home);
    program.net.Host("10.0.0.1").Echo(3ms);
    program.net.Host("10.0.0.2").Port(25).Accept(1ms);
    ASSERT_EQ(program.run.StartUp(), Run::Started::Running);
    bool inTheMiddle = false;
    program.world.After(10s, [&] {
        inTheMiddle = program.person.Said("Waiting for '220'") && !program.person.Said("Done.");
        program.run.mnuExit_Click();
        EXPECT_TRUE(Holds(home.Log(), "Korvane Closing: Form_Unload:----------------------\n"));
        EXPECT_EQ(program.Column(home, "SELECT nSuccess + nFail AS v FROM Servers WHERE strDesc = 'mail'"),
                  (std::vector<std::string>{"0"}));
    });
    program.world.RunFor(11s);
    EXPECT_TRUE(inTheMiddle);
}

TEST(TerminalOperator, PrintsLinesThatCannotHarmTheTerminal) {
    std::ostringstream lines, messages;
    TerminalOperator person(lines, messages);
    person.StatusLine("3:04:05 PM", "banner \x1B[2J\xC3\xBC\xC2\x9B");
    EXPECT_EQ(lines.str(), "3:04:05 PM - banner  [2J\xC3\xBC  \n");
    EXPECT_FALSE(person.AskYesNo("Korvane", "Really?"));
    EXPECT_TRUE(Holds(messages.str(), "Korvane: Really?"));
}

}  // namespace
}  // namespace korvane
