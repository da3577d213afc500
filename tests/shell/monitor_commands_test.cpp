// The main window's commands over the whole program in virtual time, without a window.
#include "shell/list/monitor_commands.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "shell/program.h"
#include "support/test_database.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

class MonitorCommandsTest : public testing::Test {
protected:
    struct Window : MonitorWindow {
        bool HasWindow() const override { return true; }
    };

    MonitorCommandsTest() {
        EXPECT_EQ(program.run.StartUp(), Run::Started::Running);
        person.Forget();
    }

    Window window;
    TestDatabase database;
    Program program{database.Folder(), KORVANE_DIST_DIR, "", [this](Timers&) { return DesktopOfProgram{.window = &window}; }};
    RecordingOperator& person = program.person;
    MonitorCommands commands{program.run};
};

TEST_F(MonitorCommandsTest, TheFiveHundredthEntryIsRefused) {
    for (const auto& [count, allowed] : {std::pair{498, true}, {499, false}, {500, false}}) {
        person.Forget();
        program.run.TheDesk().settings.SetTotalURLs(count);
        EXPECT_EQ(commands.BeginAdd(), allowed) << count;
        EXPECT_EQ(person.messages.size(), allowed ? 0u : 1u);
    }
    commands.CopyURL("1");
    EXPECT_EQ(person.messages.size(), 2u);
}

TEST_F(MonitorCommandsTest, ACopyBeginsItsCountsAnewAndHasNoRules) {
    const std::int64_t id = database.Add({.strDesc = "shop",
                                          .strType = "HTTP",
                                          .nTriesCur = 2,
                                          .strCMD = "reboot",
                                          .strCurStatus = "DOWN",
                                          .nAveResponse = 12.5,
                                          .nSuccess = 7,
                                          .nFail = 3});
    database.Change("Servers", id, {{"strLastResponse", "gone"}, {"nPercentUp", 70.0}, {"idCustomer", 4}});
    database.AddRow("ResponseFailText", {{"id", 1}, {"idParent", id}, {"strFailText", "Error"}});
    const std::string copy = commands.CopyURL(std::to_string(id));
    Row expected = database.Server(id);
    for (const auto& [name, value] : Row{{"id", std::int64_t{std::stoll(copy)}},
                                         {"strCurStatus", "UP"},
                                         {"strLastResponse", ""},
                                         {"nAveResponse", 0.0},
                                         {"nAveSession", 0.0},
                                         {"nSuccess", 0},
                                         {"nFail", 0},
                                         {"nPercentUp", 100.0},
                                         {"nTriesCur", 0}})
        expected[name] = value;
    EXPECT_EQ(database.Server(std::stoll(copy)), expected);
    EXPECT_EQ(database.Count("ResponseFailText"), 1);
    for (const std::string& gone : {std::string("999"), std::string()}) {
        EXPECT_EQ(commands.CopyURL(gone), "");
        EXPECT_EQ(person.messages.back().text, "didn't find source record to copy.");
    }
    EXPECT_EQ(database.Count("Servers"), 2);
}

TEST_F(MonitorCommandsTest, DeletesOnlyAfterAYes) {
    const std::int64_t id = database.Add({.strDesc = "shop"});
    database.AddRow("Failures", {{"id", 1}, {"idParent", id}});
    commands.DeleteURL("", "");
    EXPECT_EQ(person.messages.back().text, "Please click an entry in the list, then click delete.");
    EXPECT_TRUE(program.run.State().bMonitoring);
    commands.DeleteURL(std::to_string(id), "shop");
    EXPECT_EQ(person.questions.back().text,
              "Are you sure you want to Permanently Delete the shop Server?\r\n\r\nChoosing Yes will Delete the entry.");
    EXPECT_FALSE(program.run.State().bMonitoring);
    EXPECT_TRUE(person.Said("Not Deleted"));
    EXPECT_EQ(database.Count("Servers"), 1);
    person.answers = {true};
    commands.DeleteURL(std::to_string(id), "shop");
    EXPECT_TRUE(person.Said("Server Entry Deleted"));
    EXPECT_EQ(database.Count("Servers") + database.Count("Failures"), 0);
}

// The check goes on after its entry is gone; nothing of it may come back, and the next tick goes on.
TEST_F(MonitorCommandsTest, DeletingTheEntryThatIsBeingCheckedIsSafe) {
    const std::int64_t checked = database.Add({.strAddress_IP = "10.0.0.1", .strType = "HTTP", .strPort = "80"});
    const std::int64_t next = database.Add({.strAddress_IP = "10.0.0.2"});
    program.net.Page("http://10.0.0.1").Answer("late", 5s);
    program.net.Host("10.0.0.2").Echo(3ms);
    person.answers = {true};
    commands.cmdStopWaiting();
    program.world.After(3s, [&] {
        ASSERT_EQ(program.net.Page("http://10.0.0.1").Requests(), 1);
        commands.DeleteURL(std::to_string(checked), "web");
    });
    program.world.RunFor(10s);
    EXPECT_EQ(database.Count("Servers"), 1);
    EXPECT_EQ(database.Count("Failures"), 0);
    commands.mnuTrayOn();
    program.world.RunFor(5s);
    EXPECT_EQ(database.Server(next).at("nSuccess"), Value(1));
}

// The operator tries addresses out while the cycle waits for its own: neither may take the other's socket or transfer slot.
TEST_F(MonitorCommandsTest, TestsInTheMiddleOfACheckDisturbNeither) {
    const auto web = database.Add({.strAddress_IP = "10.0.0.1", .strType = "HTTP", .strPort = "80", .strExpectedText = "slow"});
    const auto mail = database.Add({.strAddress_IP = "10.0.0.2", .strType = "SMTP", .strPort = "25", .strExpectedText = "220"});
    program.net.Page("http://10.0.0.1").Answer("a slow page", 4s);
    program.net.Page("http://10.0.0.3").Answer("quick", 10ms);
    program.net.Host("10.0.0.2").Port(25).Speak("220 late\r\n", 4s);
    program.net.Host("10.0.0.3").Port(25).Speak("220 at once\r\n");
    Desk desk = program.run.TheDesk();
    std::vector<std::string> answers;
    const auto test = [&] {
        const CheckResult page = desk.http.getURLData2({.strURL = "http://10.0.0.3"});
        answers.push_back(page.response + page.strReason);
        answers.push_back(desk.tcp.DoTCPRequest("10.0.0.3", "220", 10s, "25").strReason);
    };
    commands.cmdStopWaiting();
    for (const auto when : {2s, 7s})
        program.world.After(when, test);
    program.world.RunFor(12s);
    EXPECT_EQ(answers, (std::vector<std::string>{"quick", "", "quick", ""}));
    EXPECT_EQ(database.Server(web).at("nSuccess"), Value(1));
    EXPECT_EQ(database.Server(mail).at("nSuccess"), Value(1));
    EXPECT_EQ(database.Count("Failures"), 0);
}

TEST_F(MonitorCommandsTest, StartNowMakesEveryEntryDue) {
    const auto id = database.Add({.dtNextCheck = program.world.clock.Now() + 3600s});
    program.net.Host("10.0.0.1").Echo(3ms);
    EXPECT_TRUE(program.run.WaitingToStart());
    commands.cmdStopWaiting();
    EXPECT_FALSE(program.run.WaitingToStart());
    program.world.RunFor(3s);
    EXPECT_EQ(database.Server(id).at("nSuccess"), Value(1));
    commands.mnuTrayOff();
    commands.mnuTrayOff();
    EXPECT_FALSE(program.run.State().bMonitoring);
    commands.cmdStopWaiting();
    EXPECT_TRUE(program.run.State().bMonitoring);
}

TEST_F(MonitorCommandsTest, NowEndsTheSleepBetweenChecks) {
    const auto id = database.Add({.dtNextCheck = program.world.clock.Now() + 90s});
    program.net.Host("10.0.0.1").Echo(3ms);
    commands.cmdStopWaiting();
    program.world.RunFor(2s);
    database.Change("Servers", id, {{"dtNextCheck", program.world.clock.Now() + 60s}});
    program.world.RunFor(3s);
    ASSERT_GT(program.run.State().nSleepLeft, 30);
    commands.cmdStopWaiting();
    program.world.RunFor(2s);
    EXPECT_EQ(database.Server(id).at("nSuccess"), Value(2));
}

TEST_F(MonitorCommandsTest, OpensItsFilesInTheEditor) {
    commands.mnuFileOpen();
    EXPECT_EQ(person.messages.back().text, "There is no file " + database.Folder() + "/kvurlwatch0.txt yet.");
    commands.cmdSave();
    commands.mnufilekvsettings();
    EXPECT_EQ(program.processes.openedTexts, (std::vector<std::string>{database.Folder() + "/kvurlwatchn.ini"}));
    program.processes.hasEditor = false;
    commands.mnufilekvsettings();
    EXPECT_TRUE(Holds(person.messages.back().text, "could not be opened in a text editor: No such file or directory"));
}

TEST_F(MonitorCommandsTest, ResetsAskAndRepairKeepsEverything) {
    const auto id = database.Add({.nFail = 3});
    database.AddRow("Failures", {{"id", 1}, {"idParent", id}});
    database.AddRow("Response", {{"id", 1}, {"idParent", id}});
    commands.mnuFileResetGraph();
    commands.mnuEditClearStatus();
    EXPECT_EQ(database.Count("Failures") + database.Count("Response"), 2);
    person.answers = {true, true};
    database.Change("Servers", id, {{"strGroup", "O'Brien"}});  // which can't be published
    commands.mnuFileResetGraph();
    EXPECT_TRUE(person.SaidPart("Reporting Error: "));
    EXPECT_EQ(database.Count("Response"), 0);
    EXPECT_EQ(database.Count("Failures"), 1);
    commands.mnuEditClearStatus();
    EXPECT_EQ(database.Count("Failures"), 0);
    EXPECT_EQ(database.Server(id).at("nFail"), Value(0));
    commands.mnuFileRepair();
    EXPECT_TRUE(person.Said("Done compacting and repairing database."));
    EXPECT_EQ(database.Count("Servers"), 1);
}

}  // namespace
}  // namespace korvane
