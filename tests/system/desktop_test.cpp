// The program as people get it, on a desktop with a window manager and a notification area: by keyboard, with real
// servers to check.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "support/loopback_server.h"
#include "system/desktop_session.h"
#include "system/real_servers.h"

namespace korvane::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr const char* kMain = "Korvane Network Monitoring & Server Monitor v";
constexpr const char* kEditor = "Server Settings for ";
constexpr const char* kMessage = "Korvane";  // the title of messages and questions

struct Entry {
    std::string name, type, address, port, expected;
    int interval = 60;
};

// A home as it is after the first start, with these entries, and the program that runs in it.
class DesktopProgram {
public:
    DesktopProgram(const DesktopSession& session, const std::vector<Entry>& entries) : session_(session) {
        fs::copy(std::string(KORVANE_DIST_DIR) + "/kvempty.mdb", home_.Path("kvdata2.mdb"));
        home_.Write("kvurlwatchn.ini", "[Settings]\nBegin=0\nbALLInDB=True\nSuccessLT=1\n[Setup]\nDone=True\n");
        int id = 0;
        for (const Entry& entry : entries) {
            const std::string number = std::to_string(++id);
            Query(
                "INSERT INTO Servers (ID, strDesc, strType, strAddress_IP, strPort, strExpectedText, nIntervalSeconds, "
                "dtNextCheck, "
                "datelastreset) VALUES (" +
                number + ",'" + entry.name + "','" + entry.type + "','" + entry.address + "','" + entry.port + "','" +
                entry.expected + "'," + std::to_string(entry.interval) + ",'2026-01-01 00:00:0" + number +
                "','2026-01-01 00:00:00')");
        }
    }

    /// `more`: words of "env" that come last.
    std::vector<std::string> Command(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words = session_.Environment();
        words.push_back("KORVANE_HOME=" + home_.Path());
        words.insert(words.end(), more.begin(), more.end());
        words.push_back(std::string(KORVANE_DIST_DIR) + "/korvanecore");
        return words;
    }
    void Start(const std::vector<std::string>& more = {}) { process_ = std::make_unique<Process>(Command(more), home_); }

    const Process& Running() const { return *process_; }
    std::string Query(const std::string& sql) const { return Rows(home_.Path("kvdata2.mdb"), sql); }
    bool Becomes(const std::string& sql, const std::string& rows) const {
        return DesktopSession::Waited([&] { return Query(sql) == rows; });
    }
    std::string Output() const { return home_.Read("output"); }
    std::string Settings() const { return home_.Read("kvurlwatchn.ini"); }

private:
    const DesktopSession& session_;
    PrivateFolder home_;
    std::unique_ptr<Process> process_;
};

class DesktopSystem : public testing::Test {
protected:
    void SetUp() override {
        for (const std::string& program : DesktopSession::Programs())
            KORVANE_NEEDS(program);
        KORVANE_NEEDS("nginx");
    }

    // Whether the page goes on being asked for.
    static bool Monitors(const WebServer& web) {
        const int before = web.Answers("/page");
        return DesktopSession::Waited([&] { return web.Answers("/page") > before + 1; });
    }
};

std::vector<Entry> PageAndRefused(const WebServer& web) {
    return {{"page", "HTTP", "127.0.0.1/page", std::to_string(web.http), "Welcome", 1},
            {"refused", "OTHER PORT", "127.0.0.1", std::to_string(RefusingPort()), "", 3600}};
}

// A field of the window that has the keyboard, by its mnemonic.
void Fill(const DesktopSession& session, const std::string& key, const std::string& text) {
    session.Key(key + " ctrl+a");
    session.Type(text);
}

TEST_F(DesktopSystem, AnOperatorWorksByKeyboard) {
    const WebServer web;
    const DesktopSession session;
    DesktopProgram program(session, PageAndRefused(web));
    program.Start();
    ASSERT_TRUE(session.Waited([&] { return session.HasTrayIcon(); })) << program.Output();
    session.ClickTrayIcon();
    ASSERT_TRUE(session.WaitForWindow(kMain)) << program.Output();
    EXPECT_TRUE(program.Becomes("SELECT nSuccess > 0, nFail FROM Servers ORDER BY ID", "1|0\n0|1\n")) << program.Output();
    session.Screenshot("main");

    // A new entry: tried out, refused for its down time, saved.
    session.Key("ctrl+n");
    ASSERT_TRUE(session.WaitForWindow(kEditor));
    session.Type("http://127.0.0.1/page");
    Fill(session, "alt+d", "New page");
    Fill(session, "alt+p", std::to_string(web.http));
    Fill(session, "alt+u Tab", "Welcome");
    session.Key("alt+t");
    ASSERT_TRUE(session.WaitForTitle(kMessage)) << session.ActiveTitle();
    session.Screenshot("test_run");
    session.Key("Return");
    ASSERT_TRUE(session.WaitForTitle(kEditor + std::string("127.0.0.1/page"))) << session.ActiveTitle();
    session.Key("ctrl+Tab ctrl+Tab");
    Fill(session, "alt+1", "tomorrow");
    session.Key("Return");
    ASSERT_TRUE(session.WaitForTitle(kMessage)) << session.ActiveTitle();
    session.Screenshot("refused");
    session.Key("Return");
    ASSERT_TRUE(session.WaitForWindow(kEditor));
    session.Screenshot("refused_field");
    EXPECT_EQ(program.Query("SELECT count(*) FROM Servers WHERE strDesc = 'New page'"), "0\n");
    session.Type("3:00am");
    EXPECT_TRUE(Monitors(web)) << "while the editor is open";
    session.Key("Return");
    ASSERT_TRUE(session.WaitForWindow(kMain)) << session.ActiveTitle();
    EXPECT_TRUE(
        program.Becomes("SELECT strAddress_IP, strPort, strExpectedText, strDownTime1 FROM Servers WHERE strDesc = 'New page'",
                        "127.0.0.1/page|" + std::to_string(web.http) + "|Welcome|3:00am\n"));

    session.Key("End Home Return");
    ASSERT_TRUE(session.WaitForWindow(kEditor + std::string("127.0.0.1"))) << session.ActiveTitle();
    session.Key("Escape");
    ASSERT_TRUE(session.WaitForWindow(kMain)) << session.ActiveTitle();

    // The copy is selected. Deleting asks first, with monitoring stopped.
    const std::string entries = "SELECT ID FROM Servers ORDER BY ID";
    const std::string before = program.Query(entries);
    session.Key("ctrl+d");
    EXPECT_TRUE(program.Becomes("SELECT count(*) FROM Servers", "4\n"));
    const std::string withCopy = program.Query(entries);
    for (const auto& [answer, left] : {std::pair{"alt+n", withCopy}, std::pair{"alt+y", before}}) {
        session.Key("Delete");
        ASSERT_TRUE(session.WaitForTitle(kMessage)) << session.ActiveTitle();
        session.Screenshot("delete");
        session.Key(answer);
        ASSERT_TRUE(session.WaitForWindow(kMain)) << session.ActiveTitle();
        EXPECT_TRUE(program.Becomes(entries, left));
    }
    const std::string overdue = "SELECT dtNextCheck < datetime('now', 'localtime', '-3 seconds') FROM Servers WHERE ID = 1";
    EXPECT_TRUE(program.Becomes(overdue, "1\n")) << "stopped";
    session.Screenshot("stopped");
    session.Key("F9");
    EXPECT_TRUE(Monitors(web));

    // Hidden it goes on, until somebody looks at it again.
    const auto hidden = [&] {
        const std::vector<std::string> titles = session.WindowTitles();
        return std::none_of(titles.begin(), titles.end(), [](const std::string& title) { return title.starts_with(kMain); });
    };
    for (const char* hide : {"ctrl+m", "alt+F4"}) {
        EXPECT_TRUE(session.KeyUntil(hide, hidden)) << hide;
        for (const std::string& title : session.TaskBar())
            EXPECT_EQ(title.find(kMain), std::string::npos) << hide;
        EXPECT_TRUE(Monitors(web));
        session.ClickTrayIcon();
        ASSERT_TRUE(session.WaitForWindow(kMain)) << hide;
    }
    session.Screenshot("restored");

    const PrivateFolder elsewhere;
    const Process second(program.Command(), elsewhere);
    ASSERT_TRUE(session.WaitForWindow("Multiple Instance")) << elsewhere.Read("output");
    session.Screenshot("second_instance");
    session.Key("Return");
    ASSERT_TRUE(second.Ended(10s));
    EXPECT_EQ(second.ExitStatus(), 1);
    ASSERT_TRUE(session.WaitForWindow(kMain));

    session.Key("ctrl+q");
    ASSERT_TRUE(program.Running().Ended(10s));
    EXPECT_EQ(program.Running().ExitStatus(), 0) << program.Output();
    EXPECT_NE(program.Settings().find("bMinimized=False"), std::string::npos) << program.Settings();
    EXPECT_TRUE(session.Waited([&] { return !session.HasTrayIcon(); }));
    EXPECT_EQ(program.Output(), "");
    EXPECT_EQ(program.Query("PRAGMA integrity_check"), "ok\n");
}

TEST_F(DesktopSystem, EndsByASignalWhateverIsOpen) {
    const LoopbackServer silent([](LoopbackServer::Peer& peer) { peer.ReadToEnd(); });
    const DesktopSession session;
    DesktopProgram program(session, {{"silent", "OTHER PORT", "127.0.0.1", std::to_string(silent.Port()), "220"}});
    program.Start();
    ASSERT_TRUE(session.Waited([&] { return session.HasTrayIcon() && silent.Connections() > 0; })) << program.Output();
    session.ClickTrayIcon();
    ASSERT_TRUE(session.WaitForWindow(kMain)) << program.Output();
    session.Key("End Return");
    ASSERT_TRUE(session.WaitForWindow(kEditor));
    session.Key("alt+t");
    ASSERT_TRUE(session.Waited([&] { return silent.Connections() > 1; })) << "a test run beside the check";
    program.Running().Signal(SIGTERM);
    ASSERT_TRUE(program.Running().Ended(5s));
    EXPECT_EQ(program.Running().ExitStatus(), 0) << program.Output();
    EXPECT_NE(program.Settings().find("bMinimized=False"), std::string::npos) << program.Settings();
    EXPECT_EQ(program.Query("PRAGMA integrity_check"), "ok\n");
}

TEST_F(DesktopSystem, RunsWithoutADisplay) {
    const WebServer web;
    const DesktopSession session(DesktopSession::Tray::None);
    for (const char* display : {"DISPLAY=", "DISPLAY=:65000"}) {
        SCOPED_TRACE(display);
        DesktopProgram program(session, PageAndRefused(web));
        program.Start({display});
        EXPECT_TRUE(program.Becomes("SELECT nSuccess > 0, nFail FROM Servers ORDER BY ID", "1|0\n0|1\n")) << program.Output();
        EXPECT_NE(program.Output().find("Done Waiting."), std::string::npos) << program.Output();
        program.Running().Signal(SIGTERM);
        ASSERT_TRUE(program.Running().Ended(5s));
        EXPECT_EQ(program.Running().ExitStatus(), 0) << program.Output();
    }
}

TEST_F(DesktopSystem, StaysInTheTaskBarWithoutANotificationArea) {
    const WebServer web;
    const DesktopSession session(DesktopSession::Tray::None);
    DesktopProgram program(session, PageAndRefused(web));
    program.Start();
    const auto minimised = [&] {
        const std::vector<std::string> bar = session.TaskBar();
        return session.WindowTitles().empty() && bar.size() == 1 && bar[0].starts_with(kMain);
    };
    ASSERT_TRUE(session.WaitForWindow(kMain)) << program.Output();
    EXPECT_TRUE(session.KeyUntil("alt+F4", minimised));
    EXPECT_TRUE(Monitors(web));
    session.Activate(kMain);
    ASSERT_TRUE(session.WaitForWindow(kMain));
    session.Key("ctrl+q");
    ASSERT_TRUE(program.Running().Ended(10s));
    EXPECT_EQ(program.Running().ExitStatus(), 0) << program.Output();
}

struct Look {
    std::string name;
    std::string size;
    std::vector<std::string> environment;
};

void PrintTo(const Look& look, std::ostream* to) {
    *to << look.name;
}

class DesktopLook : public DesktopSystem, public testing::WithParamInterface<Look> {};

// Each window opens, and its picture is there to be looked at.
TEST_P(DesktopLook, OfEveryWindow) {
    const WebServer web;
    const DesktopSession session(DesktopSession::Tray::Shown, GetParam().size);
    DesktopProgram program(session, PageAndRefused(web));
    program.Query("UPDATE Servers SET nIntervalSeconds = 3600");
    program.Start(GetParam().environment);
    ASSERT_TRUE(session.Waited([&] { return session.HasTrayIcon(); })) << program.Output();
    session.ClickTrayIcon();
    ASSERT_TRUE(session.WaitForWindow(kMain)) << program.Output();
    EXPECT_TRUE(program.Becomes("SELECT nSuccess > 0, nFail FROM Servers ORDER BY ID", "1|0\n0|1\n")) << program.Output();
    const auto shot = [&](const std::string& name) { session.Screenshot(GetParam().name + "_" + name); };
    shot("main");
    for (const std::string menu : {"f", "e", "m", "w", "s", "h"}) {
        session.Key("alt+" + menu);
        shot("menu_" + menu);
        session.Key("Escape Escape");  // the menu, then the menu bar
    }
    session.Key("Home End");  // the page, which is due last
    session.Key("Menu");
    shot("context_menu");
    session.Key("Escape Return");
    ASSERT_TRUE(session.WaitForWindow(kEditor)) << session.ActiveTitle();
    for (const std::string page : {"1_server", "2_mail", "3_down_times", "4_authentication", "5_scan_text", "6_commands"}) {
        shot("editor_" + page);
        if (page.starts_with('5')) {
            session.Key("alt+f");
            ASSERT_TRUE(session.WaitForTitle("Failure Texts and Commands")) << session.ActiveTitle();
            shot("failure_texts");
            session.Key("Escape");
            ASSERT_TRUE(session.WaitForWindow(kEditor));
        }
        session.Key("ctrl+Tab");
    }
    // Each window that a key of the first page opens, and the key that leaves it.
    struct Window {
        std::string name, key, title;
    };
    for (const auto& [name, key, title] : {Window{"text_to_find", "alt+u Tab Tab space", "Text to Find"},
                                           Window{"traceroute", "alt+a", kMessage}, Window{"reset", "alt+h", kMessage}}) {
        session.Key(key);
        ASSERT_TRUE(session.WaitForTitle(title)) << name << ": " << session.ActiveTitle();
        shot(name);
        session.Key("Escape");
        ASSERT_TRUE(session.WaitForWindow(kEditor)) << name;
    }
    session.Key("Escape");
    ASSERT_TRUE(session.WaitForWindow(kMain));
    for (const auto& [key, title] : {std::pair{"s", "Request and Response"}, std::pair{"m", "Conversation with Mail Servers"}}) {
        session.Key(std::string("alt+w ") + key);
        ASSERT_TRUE(session.WaitForTitle(title)) << session.ActiveTitle();
        shot(std::string("conversation_") + key);
        session.Key("Escape");
        ASSERT_TRUE(session.WaitForWindow(kMain));
    }
    session.Key("ctrl+comma");
    ASSERT_TRUE(session.WaitForTitle("Settings")) << session.ActiveTitle();
    for (const std::string page : {"1_monitoring", "2_mail", "3_reports", "4_restart", "5_proxy", "6_service", "7_resets"}) {
        shot("settings_" + page);
        session.Key("ctrl+Tab");
    }
    session.Key("Escape");
    ASSERT_TRUE(session.WaitForWindow(kMain));
    for (const auto& [name, key, title] :
         {Window{"about", "alt+h a", "About Korvane"}, Window{"feedback", "alt+h f", "Send Feedback"},
          Window{"tell_friend", "alt+h n", "Tell a Friend"}, Window{"cpu", "ctrl+1", "Korvane CPU Monitor"},
          Window{"disks", "ctrl+2", "Korvane Disk Monitor"}, Window{"memory", "ctrl+3", "Korvane Memory Monitor"},
          Window{"services", "ctrl+4", "Korvane Service Monitor"}}) {
        session.Key(key);
        ASSERT_TRUE(session.WaitForTitle(title)) << name << ": " << session.ActiveTitle();
        if (title.find("Monitor") != std::string::npos) session.Key("alt+s");
        shot(name);
        const auto isBack = [&] { return session.ActiveTitle().find(kMain) != std::string::npos; };
        ASSERT_TRUE(session.KeyUntil("Escape", isBack)) << name << ": " << session.ActiveTitle();
    }
    session.Key("ctrl+q");
    ASSERT_TRUE(program.Running().Ended(10s));
    EXPECT_EQ(program.Running().ExitStatus(), 0) << program.Output();
}

INSTANTIATE_TEST_SUITE_P(Looks, DesktopLook,
                         testing::Values(Look{"light", "1280x800", {}}, Look{"dark", "1280x800", {"GTK_THEME=Adwaita:dark"}},
                                         Look{"large", "2560x1600", {"QT_SCALE_FACTOR=2"}}),
                         [](const testing::TestParamInfo<Look>& look) { return look.param.name; });

}  // namespace
}  // namespace korvane::test
