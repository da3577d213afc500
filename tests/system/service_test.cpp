// The program as a service manager starts it, and starts that cannot go on.
#include "system/servers.h"

namespace korvane::test::service_test {

TEST(Service, TellsTheManagerHowItIsAndLeavesItsSettingsAlone) {
    KORVANE_NEEDS("aiosmtpd");
    const Played silent("127.0.0.86:" + std::to_string(kNobody) + "=mute");
    Program program(kBegin, Due("TCP", "127.0.0.86", kNobody, "220", ", nTimeout = 300"));
    program.StartAsService("WATCHDOG_USEC=1600000");
    ASSERT_TRUE(Waited([&] { return Holds(silent.Output(), "client of"); })) << program.Output();
    EXPECT_TRUE(program.manager.Told().starts_with("STATUS=Service Started.\nREADY=1\n")) << program.manager.Told();
    const std::string settings = program.Settings();
    // Signals, and what it says after each, also while the check waits.
    for (const auto& [signal, word] :
         {std::pair{0, "WATCHDOG=1"}, std::pair{0, "WATCHDOG=1"}, std::pair{SIGUSR1, "STATUS=Service Paused."},
          std::pair{SIGUSR1, "STATUS=Service Already Paused."},
          std::pair{SIGUSR2, "STATUS=Service Continuing (monitoring again)"},
          std::pair{SIGUSR2, "STATUS=Service Still Continuing."}, std::pair{0, "WATCHDOG=1"}}) {
        program.manager.Forget();
        program.process->Signal(signal);
        EXPECT_TRUE(Waited([&] { return Holds(program.manager.Told(), word); }, 1600ms)) << word;
    }
    program.Stop();
    EXPECT_EQ(program.Settings(), settings);
    EXPECT_TRUE(program.manager.Told().ends_with("STOPPING=1\nSTATUS=Service Stopped.\n")) << program.manager.Told();
}

// The greeting of another process is not for this one, and what it starts hears nothing of it. By hand it saves at its end, beside
// what others wrote meanwhile.
TEST(Service, GreetingOfAnotherProcessIsNotForIt) {
    Program program;
    program.home.WriteScript("dump", "cd " + program.home.Path() + " && env >new && mv new environment\n");
    program.Query(Due("TCP", "127.0.0.1", kNobody, "", ", nTries = 1, strCMD = '" + program.home.At("dump") + "'"));
    program.StartAsService("SYSTEMD_EXEC_PID=1 WATCHDOG_USEC=1000000 KORVANE_TEST=1");
    EXPECT_TRUE(program.Becomes("SELECT count(*) FROM Failures", "1\n")) << program.Output();
    EXPECT_TRUE(Waited([&] { return fs::exists(program.home.At("environment")); })) << program.Output();
    const std::string environment = program.home.Read("environment");
    EXPECT_TRUE(Holds(environment, "KORVANE_TEST=1"));
    for (const char* variable : {"NOTIFY_SOCKET=", "WATCHDOG_USEC=", "SYSTEMD_EXEC_PID="})
        EXPECT_FALSE(Holds(environment, variable)) << variable;
    program.home.Write("kvurlwatchn.ini", program.Settings() + "[Foreign]\nKey=kept\n");
    program.Stop();
    EXPECT_EQ(program.manager.Told(), "");
    EXPECT_TRUE(Holds(program.Settings(), "SuccessLT=20") && Holds(program.Settings(), "Key=kept")) << program.Settings();
}

TEST(Start, ThatCannotGoOnSaysWhyAndEnds) {
    struct Case {
        std::string prepare, says, words = "";
    };
    std::vector<Case> cases = {
        {"chmod 500 home", "cannot be written: Permission denied", "setpriv --bounding-set=-dac_override"},
        {"rm dist/kvempty.mdb", "The necessary Template Database"},
    };
    // A log of today that ends just before a page of the disk, and no page left.
    if (OwnMounts())
        cases.push_back(
            {"mount -t tmpfs -o size=300k none home; mkdir home/Logs; cp dist/kvempty.mdb home; "
             "yes | head -c 4080 >\"home/Logs/kvmonlog $(date '+%Y %m-%d').txt\"; dd if=/dev/zero of=home/filler",
             "No space left on device"});
    for (const Case& each : cases) {
        SCOPED_TRACE(each.prepare);
        const Folder folder;
        folder.WriteScript("start", "cp -r " + kDist + " dist; mkdir home; " + each.prepare + "\nKORVANE_HOME=home " +
                                        each.words + " env -u DISPLAY -u WAYLAND_DISPLAY dist/korvanecore; status=$?\n" +
                                        "[ -z \"$(tail -qc 1 home/Logs/*.txt)\" ] || echo half a record; exit $status");
        const Process process(OwnMounts() ? "exec unshare -m ./start" : "exec ./start", folder);
        ASSERT_TRUE(process.Ended());
        EXPECT_EQ(process.Status(), 1);
        const std::string output = folder.Read("output");
        EXPECT_TRUE(Holds(output, each.says) && !Holds(output, "half a record")) << output;
    }
}

}  // namespace korvane::test::service_test
