// A tour of the windows by real keys, from the first start to the end, while the program goes on checking a real page.
#include "system/desktop.h"
#include "system/servers.h"

namespace korvane::test::tour_test {

const std::string kMain = "Korvane Network Monitoring & Server Monitor v";
const std::string kEditor = "Server Settings for ";
const std::string kMessage = "Korvane\n";  // the whole title of messages and questions
const std::string kOldTime = "'2026-01-01 00:00:00'";

class Tour : public testing::Test {
protected:
    void SetUp() override {
        KORVANE_NEEDS("Xvfb openbox trayer xdotool xprop nginx");
        Real("nginx");
        desktop = std::make_unique<Desktop>();
    }
    // A field of the window that has the keyboard, by its letter.
    void Fill(const std::string& key, const std::string& text) const {
        desktop->Key(key + " ctrl+a");
        desktop->Type(text);
    }
    bool Monitors() const {
        const auto checks = [&] { return std::stoi(program.Query("SELECT total(nSuccess) FROM Servers")); };
        return Waited([&, before = checks()] { return checks() > before; });
    }
    std::unique_ptr<Desktop> desktop;
    Program program;
};

TEST_F(Tour, OfAnOperator) {
    if (!OwnMounts()) GTEST_SKIP() << "no service manager can be played here";
    // A new home, and a service manager that refuses what it is asked.
    for (const char* file : {"kvurlwatchn.ini", "kvdata2.mdb"})
        fs::remove(program.home.At(file));
    program.home.WriteScript("systemctl", "echo $* >>" + program.home.At("asked") + "; case $* in enable*) exit 1 ;; esac");
    program.Start(desktop->Words() + "PATH=" + program.home.Path() + ":$PATH " +
                  Mounted("mount -t tmpfs none /run; mkdir -p /run/systemd/system; mount -t tmpfs none /etc/systemd; mkdir "
                          "/etc/systemd/system"));
    desktop->Press("", "Korvane Setup Question 1 of 3");
    desktop->Type("http://127.0.0.1/page");
    desktop->Press("Return", "Korvane Setup Question 2 of 3");
    desktop->Type("operator@korvane.example");
    desktop->Press("Return", "Korvane Setup Question 3 of 3");
    desktop->Press("Return", "Korvane Setup Info 2 of 3");
    // A program in a temporary folder is not offered to the manager: the unit would not see it there.
    EXPECT_EQ(Holds(program.home.Read("asked"), "enable"), !kDist.starts_with("/tmp/") && !kDist.starts_with("/var/tmp/"));
    EXPECT_TRUE(fs::is_empty("/proc/" + std::to_string(program.process->Id()) + "/root/etc/systemd/system"));
    desktop->Press("Return", "Korvane Setup Info 3 of 3");
    desktop->Press("Return", kMain);
    EXPECT_EQ(program.Query("SELECT strAddress_IP, strEmailList1, strEmailFrom FROM Servers"),
              "127.0.0.1/page|operator@korvane.example|operator@korvane.example\n");

    // The entry is corrected, tried out and checked.
    desktop->Press("End Return", kEditor);
    Fill("alt+p", std::to_string(kBase));
    desktop->Press("alt+t", kMessage);
    desktop->Press("Return", kEditor);
    desktop->Press("Return", kMain);
    desktop->Press("F5", kMain);
    EXPECT_TRUE(program.Becomes("SELECT nSuccess > 0 FROM Servers", "1\n"));
    program.Query("UPDATE Servers SET nIntervalSeconds = 1, dtNextCheck = " + kOldTime);

    // The other windows open and close, while checks go on.
    for (const auto& [keys, title] : {std::pair{"ctrl+n", kEditor.c_str()}, std::pair{"ctrl+comma", "Settings"},
                                      std::pair{"alt+w s", "Request and Response"}, std::pair{"ctrl+1", "Korvane CPU Monitor"}}) {
        desktop->Press(keys, title);
        EXPECT_TRUE(Monitors()) << title;
        EXPECT_TRUE(desktop->PressUntil("Escape", [&] { return Holds(desktop->Active(), kMain); })) << title;
    }

    // Hidden it goes on, until somebody looks at it again.
    for (const char* hide : {"ctrl+m", "alt+F4"}) {
        EXPECT_TRUE(desktop->PressUntil(hide, [&] { return !desktop->InTaskBar(kMain); })) << hide;
        EXPECT_TRUE(Monitors());
        desktop->ClickTrayIcon();
        desktop->Press("", kMain);
    }
    const Folder elsewhere;
    const Process second(program.Command(desktop->Words()), elsewhere);
    desktop->Press("", "Multiple Instance");
    desktop->Press("Return", kMain);
    ASSERT_TRUE(second.Ended());
    EXPECT_EQ(second.Status(), 1);

    desktop->Key("ctrl+q");
    ASSERT_TRUE(program.process->Ended());
    EXPECT_EQ(program.process->Status(), 0);
    EXPECT_TRUE(Waited([&] { return !desktop->HasTrayIcon(); }));
    EXPECT_EQ(program.Output(), "");
    EXPECT_TRUE(Holds(program.Settings(), "bMinimized=False")) << program.Settings();
    program.ExpectWhole();
}

// Without a notification area the window stays in the task bar; and a service that has a window ends amid a publication.
TEST_F(Tour, OfAServiceWithoutANotificationArea) {
    desktop->tray.reset();
    program.Query(Due("HTTP", "127.0.0.1/page", kBase, "Welcome", ", nIntervalSeconds = 1") +
                  "WITH n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 1500) INSERT INTO Servers (ID, strDesc, "
                  "nAveResponse, nAveSession, dtNextCheck, "
                  "datelastfail) SELECT i, 'entry ' || i, 5, 5, '2099-01-01 00:00:00', datetime('now', 'localtime') FROM n");
    program.StartAsService(desktop->Words());
    desktop->Press("", kMain);
    EXPECT_TRUE(desktop->PressUntil("alt+F4", [&] { return !desktop->Shows(kMain) && desktop->InTaskBar(kMain); }));
    EXPECT_TRUE(Monitors());
    desktop->Activate(kMain);
    desktop->Press("", kMain);
    const auto pages = [&] { return Count(Answer("find " + program.home.At("Reports") + " -name '*.htm'"), "\n"); };
    desktop->Press("ctrl+r", kMain);
    ASSERT_TRUE(Waited([&] { return pages() > 20; })) << program.Output();
    program.Stop();
    EXPECT_LT(pages(), 1500);
    EXPECT_EQ(Answer("grep -rLi '</html>' --include='*.htm' " + program.home.At("Reports")), "");
}

// An outage as a screen reader and the desktop's notifications tell it. The notification service answers nothing, which must not
// hold the window.
TEST_F(Tour, OfAnOutage) {
    KORVANE_NEEDS("dbus-daemon");
    if (Answer("/usr/bin/python3 -c 'import dbus.service, gi' 2>&1") != "")
        GTEST_SKIP() << "python3-dbus or python3-gi is not installed (scripts/setup --test)";
    const Session session;
    const std::string kShop = "tree item|Shop|", kPrinter = "tree item|Printer|";
    const std::string kReason = "Reason 'Failed to connect to 127.0.0.1 port " + std::to_string(kNobody);
    const auto chip = [](const std::string& state, int count) {
        return "Show servers that are " + state + "|" + std::to_string(count) + "|";
    };
    const auto listen = [&](int port) {
        program.Query("UPDATE Servers SET strPort = " + std::to_string(port) + " WHERE ID = 1");
    };
    program.Query(Due("HTTP", "127.0.0.1/page", kBase, "Welcome", ", nIntervalSeconds = 1, nTries = 1, strDesc = 'Shop'") +
                  Due("HTTP", "127.0.0.2", kBase, "", ", dtNextCheck = '2099-01-01 00:00:00', strDesc = 'Printer'"));
    program.Start(desktop->Words() + session.Words());
    ASSERT_TRUE(Waited([&] {
        session.ClickTrayIcon();
        return desktop->Shows(kMain);
    })) << program.Output();
    desktop->Press("", kMain);
    EXPECT_TRUE(Monitors());
    EXPECT_TRUE(session.Reads(chip("Down", 0)));

    listen(kNobody);
    EXPECT_TRUE(session.Reads(chip("Down", 1)));
    desktop->Key("alt+1");  // the chip
    EXPECT_TRUE(session.Reads("showing 1 of 2"));
    EXPECT_TRUE(session.Reads(kShop, kPrinter));
    EXPECT_TRUE(session.Reads("|Details of the selected server||Shop · 127.0.0.1/page\nDOWN since "));
    EXPECT_TRUE(session.Reads("\n" + kReason));  // nothing but the details begins a line with it
    desktop->Key("alt+1 ctrl+f");
    desktop->Type("print");
    EXPECT_TRUE(session.Reads(kPrinter, kShop));
    desktop->Key("Escape");
    EXPECT_TRUE(session.Reads(kShop));
    EXPECT_TRUE(program.Becomes("SELECT nFail > 2 FROM Servers WHERE ID = 1", "1\n"));
    EXPECT_TRUE(Waited([&] { return !session.Notes().empty(); }));
    const std::string note = session.Notes();
    EXPECT_TRUE(note.starts_with("Shop is DOWN: " + kReason)) << note;
    desktop->Press("ctrl+n", kEditor);
    desktop->Press("Escape", kMain);

    listen(kBase);
    EXPECT_TRUE(session.Reads(chip("Up", 2)));
    EXPECT_TRUE(Waited([&] { return session.Notes() != note; }));
    EXPECT_EQ(session.Notes(), note + "Shop is UP again: The outage is over.\n");  // no second one of the failures in between
    program.Stop();
}

}  // namespace korvane::test::tour_test
