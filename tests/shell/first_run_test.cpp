// The first-run setup on the whole program in virtual time: what is asked, in which order, and what each answer leaves behind.
#include "shell/setup/first_run.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "shell/program.h"
#include "support/test_database.h"

namespace korvane {
namespace {

class FirstRunTest : public testing::Test {
protected:
    struct Window : MonitorWindow {
        bool HasWindow() const override { return true; }
    };

    FirstRunTest() {
        EXPECT_EQ(program.run.StartUp(), Run::Started::Running);
        person.Forget();
        program.run.TheDesk().collection.setKvSettingsColValue("ServiceName", "KvMon");
    }

    /// Answers by the number of the question; a question without one keeps its default.
    void SetUpWith(std::map<int, std::string> answers) {
        int questions = 0;
        const auto ask = [&](const WizardPage& page) {
            pages.push_back(page);
            events.push_back(page.title);
            EXPECT_EQ(page.firstButton, "");
            EXPECT_EQ(page.secondButton, "Next >>");
            if (!page.textboxVisible) return page.defaultText;
            const auto answer = answers.find(++questions);
            return answer == answers.end() ? page.defaultText : answer->second;
        };
        const auto note = [&](const std::string& what) { return [this, what] { events.push_back(what); }; };
        SetUpFirstRun(program.run.TheDesk(),
                      {.ask = ask,
                       .IsWindows95 = [&] { return isWindows95; },
                       .IsWindowsNT = [&] { return isWindowsNT; },
                       .AddOrRemoveGroupShortCut = [&](bool add) { events.push_back(add ? "add shortcut" : "remove shortcut"); },
                       .InstallService =
                           [&](const std::string& name) {
                               events.push_back("install " + name);
                               if (breakInstall) throw Error("The manager does not answer.");
                               return installs;
                           },
                       .WarnIfInStartupGroup = note("warn"),
                       .checkTrayStartup = note("check start-up"),
                       .checkTrayNTService = note("check service"),
                       .setEmailOfMonitors = [&](const std::string& address) { events.push_back("monitors " + address); }});
    }

    Row Entry() {
        const std::vector<Row> rows = database.Rows("Servers");
        return rows.empty() ? Row{} : rows.front();
    }
    std::string Text(const char* column) { return Entry().at(column).Text(); }
    std::string Setting(const char* key) { return program.run.TheDesk().collection.getKvSettingsColVal(key); }

    Window window;
    TestDatabase database;
    Program program{database.Folder(), KORVANE_DIST_DIR, "", [this](Timers&) { return DesktopOfProgram{.window = &window}; }};
    RecordingOperator& person = program.person;
    bool isWindows95 = false;
    bool isWindowsNT = false;
    bool installs = true;
    bool breakInstall = false;
    std::vector<WizardPage> pages;
    std::vector<std::string> events;
};

TEST_F(FirstRunTest, BlankAnswersKeepTheSampleEntry) {
    SetUpWith({{1, ""}, {2, ""}, {3, ""}});
    ASSERT_EQ(database.Count("Servers"), 1);
    const Row entry = Entry();
    for (const auto& [column, value] : Row{{"strAddress_IP", "www.example.com"},
                                           {"strGroup", "Popular_Sites"},
                                           {"strEmailFrom", "someone@example.com"},
                                           {"strEmailText", "Server XXX Down."},
                                           {"nIntervalSeconds", 120},
                                           {"dtNextCheck", program.world.clock.Now()}})
        EXPECT_EQ(entry.at(column), value) << column;
    EXPECT_EQ(Setting("Server"), "mail.example.com");
    EXPECT_EQ(pages[2].defaultText, "mail.example.com");
    EXPECT_EQ(events.back(), "monitors ");
}

TEST_F(FirstRunTest, TheWholeSequenceAsAService) {
    isWindowsNT = true;
    const auto refreshedBefore = person.refreshCount;
    SetUpWith({{1, "www.shop.com"}, {2, "admin@shop.com"}});
    const std::vector<std::string> expected = {"Korvane Setup Question 1 of 3",
                                               "Korvane Setup Question 2 of 3",
                                               "Korvane Setup Question 3 of 3",
                                               "install KvMon",
                                               "Korvane Setup Info 1 of 3",
                                               "check service",
                                               "warn",
                                               "Korvane Setup Info 2 of 3",
                                               "Korvane Setup Info 3 of 3",
                                               "monitors admin@shop.com"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(pages[0].prompt,
              "Since this is the first time running Korvane, here are a few questions to get you started. \r\n\r\n"
              "What is the URL of page on your website (e.g. www.example.com/default.htm)?");
    EXPECT_EQ(pages[1].defaultText, "someone@example.com");
    EXPECT_EQ(pages[2].defaultText, "mail.shop.com");
    EXPECT_TRUE(pages[3].prompt.starts_with("The 'KvMon' automatic service was added"));
    EXPECT_EQ(pages[4].prompt,
              "After clicking OK, Korvane will start to monitor the web server 'www.shop.com' (in about two minutes). ");
    EXPECT_FALSE(pages[3].textboxVisible || pages[4].textboxVisible || pages[5].textboxVisible);
    EXPECT_EQ(person.refreshCount, refreshedBefore + 1);

    // As it stands on the disk, and the hints from 5 up to 1 behind the word of the saving.
    IniFile file(program.files, database.Folder() + "/kvurlwatchn.ini");
    EXPECT_EQ(file.Read("Settings", "Service", ""), "True");
    EXPECT_EQ(file.Read("Settings", "Server", ""), "mail.shop.com");
    const std::vector<std::string> said = person.StatusTexts();
    ASSERT_GE(said.size(), 6u);
    EXPECT_EQ(said[said.size() - 6], "Settings Saved");
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_TRUE(said[said.size() - 5 + i].starts_with(std::to_string(5 - i) + ") ")) << said[said.size() - 5 + i];
}

TEST_F(FirstRunTest, AnswersBecomeAddressAndName) {
    const struct {
        const char* name;
        std::string answer;
        std::string address;
        std::string desc;
    } cases[] = {
        {"upper case", "HTTP://WWW.Shop.COM/Start.htm", "www.shop.com/start.htm", "shop/starthtm"},
        {"one inside the other", "hthttp://tp://a.de", "http://a.de", "http://ade"},
        {"letters inside words", "www.comics.com", "www.comics.com", "ics"},
        {"NUL and line ends", std::string("www.\0shop\r\n.de", 14), "www.shop.de", "shopde"},
        {"blanks around it", "  a b.de\t", "a b.de", "a bde"},
    };
    for (const auto& c : cases) {
        SetUpWith({{1, c.answer}});
        ASSERT_EQ(database.Count("Servers"), 1) << c.name;
        EXPECT_EQ(Text("strAddress_IP"), c.address) << c.name;
        EXPECT_EQ(Text("strDesc"), c.desc) << c.name;
        EXPECT_EQ(Text("strEmailText"), "Server " + c.desc + " Down.") << c.name;
    }
    for (const char* nothing : {"   ", "http://", "HTTPS://"}) {
        SetUpWith({{1, nothing}});
        EXPECT_EQ(Text("strAddress_IP"), "www.example.com") << nothing;
        EXPECT_EQ(Text("strDesc"), "Example") << nothing;
    }
}

TEST_F(FirstRunTest, TheMailServerFollowsFromTheAddress) {
    const struct {
        const char* name;
        std::string email;
        std::string stored;
        std::string server;
    } cases[] = {{"blank", "", "someone@example.com", "mail.example.com"},
                 {"no @", "admin", "admin", "mail.example.com"},
                 {"blanks around it", " a@b.de ", "a@b.de", "mail.b.de"},
                 {"NUL", std::string("a@\0b.de", 7), "a@b.de", "mail.b.de"}};
    for (const auto& c : cases) {
        SetUpWith({{2, c.email}});
        EXPECT_EQ(Text("strEmailList1"), c.stored) << c.name;
        EXPECT_EQ(Text("strEmailFrom"), c.stored) << c.name;
        EXPECT_EQ(Setting("Server"), c.server) << c.name;
        EXPECT_EQ(events.back(), "monitors " + (c.email.empty() ? "" : c.stored)) << c.name;
    }
}

TEST_F(FirstRunTest, WithoutAService) {
    const struct {
        const char* name;
        bool isWindowsNT;
        std::vector<std::string> events;
        std::string service;
    } cases[] = {{"an installation that fails is marked all the same", true, {"install KvMon", "check service"}, "True"},
                 {"without services the desktop starts it", false, {"add shortcut", "check start-up"}, "False"}};
    installs = false;
    for (const auto& c : cases) {
        program.run.TheDesk().collection.setKvSettingsColValue("Service", "False");
        isWindowsNT = c.isWindowsNT;
        isWindows95 = !c.isWindowsNT;
        events.clear();
        SetUpWith({});
        std::vector<std::string> expected = c.events;
        for (const char* more : {"Korvane Setup Info 2 of 3", "Korvane Setup Info 3 of 3", "monitors someone@example.com"})
            expected.push_back(more);
        EXPECT_EQ(std::vector<std::string>(events.begin() + 3, events.end()), expected) << c.name;
        EXPECT_EQ(Setting("Service"), c.service) << c.name;
    }
}

TEST_F(FirstRunTest, TheFirstRowBecomesTheDefaultEntryAndTheOthersStay) {
    const std::int64_t first =
        database.Add({.strDesc = "old", .nTimeout = 99, .nFail = 7, .dtNextCheck = DateTime::Of(2030, 1, 1)});
    database.Change("Servers", first, {{"strEmailList2", "boss@shop.com"}});
    const std::int64_t second = database.Add({.strDesc = "other"});
    const Row other = database.Server(second);
    SetUpWith({{1, "shop.de"}});
    ASSERT_EQ(database.Count("Servers"), 2);
    EXPECT_EQ(database.Server(second), other);
    EXPECT_EQ(database.Count("Servers", "id = " + std::to_string(first)), 0);
    const Row entry = database.Query("SELECT * FROM Servers where strAddress_IP = 'shop.de'").front();
    EXPECT_EQ(entry.at("nTimeout"), Value(15));
    EXPECT_EQ(entry.at("nFail"), Value(0));
    EXPECT_EQ(entry.at("strEmailFrom"), Value("someone@example.com"));
    EXPECT_EQ(entry.at("strEmailList2"), Value("boss@shop.com"));
}

TEST_F(FirstRunTest, AnErrorEndsItAndLeavesWhatWasWritten) {
    isWindowsNT = true;
    breakInstall = true;
    SetUpWith({{1, "shop.de"}, {3, "mail.shop.de"}});
    EXPECT_EQ(events.back(), "install KvMon");
    EXPECT_EQ(Text("strAddress_IP"), "shop.de");
    EXPECT_EQ(Setting("Server"), "mail.shop.de");
    EXPECT_EQ(Setting("Service"), "False");
    EXPECT_FALSE(person.SaidPart("1) Resize"));
    const auto log = ReadAll(database.Folder() + "/Logs/kvmonlog 2026 11-21.txt");
    EXPECT_TRUE(Holds(log, "First-run setup ended early: The manager does not answer.")) << log;
}

}  // namespace
}  // namespace korvane
