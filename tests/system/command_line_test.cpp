// The command line: the transcripts of the manual as they stand there, words that are wrong, and changes beside a monitor that runs.
#include <regex>

#include "system/servers.h"

namespace korvane::test::command_line_test {

/// What the shell prints for the command, with errors, in the home of the program.
std::string Shell(const Program& program, const std::string& command) {
    return Answer("cd " + program.home.Path() + "; unset DISPLAY WAYLAND_DISPLAY; export KORVANE_HOME=$PWD PATH=" + kDist +
                  ":$PATH; { " + command + "; } 2>&1");
}

/// Ids, times and the widths of columns differ from run to run, and what is due now may be overdue by a second.
std::string Alike(const std::string& text) {
    std::string dots = std::regex_replace(text, std::regex("[0-9]+(,[0-9]+)*(\\.[0-9]+)?"), "#");
    dots = ReplaceAll(ReplaceAll(dots, "# secs. overdue", "# ms."), "check overdue by # s", "check due now");
    return std::regex_replace(std::regex_replace(dots, std::regex("\\b[AP]M\\b"), "M"), std::regex("[ -]*  +"), "  ");
}

TEST(CommandLine, DoesWhatTheManualShows) {
    KORVANE_NEEDS("aiosmtpd");
    const Played sink("127.0.0.25:25=login");
    const Program program("Begin=0\nServer=127.0.0.25\nSMTPUser1=operator\nSMTPPass1=open sesame\n");
    const std::string manual = ReadAll(KORVANE_SOURCE_DIR "/docs/manual.md"), fence = "```console\n";
    int commands = 0;
    for (auto at = manual.find(fence); at != std::string::npos; at = manual.find(fence, at)) {
        const auto begin = at + fence.size(), end = manual.find("```", begin);
        std::string command, shown;
        const auto run = [&] {
            if (command.empty()) return;
            ++commands;
            EXPECT_EQ(Alike(Shell(program, command)), Alike(shown)) << command;
        };
        for (const std::string& line : Split(manual.substr(begin, end - begin - 1), '\n')) {
            if (!line.starts_with("$ ")) {
                shown += line + "\n";
                continue;
            }
            run();
            command = line.substr(2);
            shown.clear();
        }
        run();
        at = end;
    }
    EXPECT_GE(commands, 17);
    const std::string page = ReadAll(KORVANE_SOURCE_DIR "/data/system/korvanecore.1");
    EXPECT_TRUE(Holds(page, Shell(program, "korvanecore help manual-page"))) << "korvanecore help manual-page has the list";
    const std::string json = Shell(program, "korvanecore list --json | python3 -m json.tool >/dev/null && echo whole");
    EXPECT_EQ(json, "whole\n");
}

TEST(CommandLine, RefusesWhatIsWrongAndChangesNothing) {
    const Program program(kBegin, Due("TCP", "127.0.0.1", kNobody, "", ", strDesc = 'one'") +
                                      Due("TCP", "127.0.0.2", kNobody, "", ", strDesc = 'ONE'"));
    const std::string list = "korvanecore export; korvanecore settings list --quiet";
    const std::string before = Shell(program, list);
    const struct {
        std::string command, status, says;
    } wrongs[] = {
        {"lst", "3", "Did you mean 'list'?"},
        {"list --jsn", "3", "Did you mean '--json'?"},
        {"list --state dwn", "3", "Did you mean 'down'?"},
        {"list --home", "3", "needs a value"},
        {"list --home=", "3", "needs a value"},
        {"export >/dev/full", "1", "the output could not be written"},
        {"help; mkdir gone; cd gone; rmdir ../gone; korvanecore status --home none", "3", "cannot make absolute path"},
        {"list -x", "3", "'list' has no option '-x'."},
        {"--json list", "3", "'--json' must stand after a command."},
        {"settings set Begin", "3", "something is missing"},
        {"settings set CertWarnDays 1001", "1", "is not a number of days from 1 to 1000."},
        {"add new.example --home junk", "1", "korvanecore: The file"},
        {"import bom.json", "1", "there is no column 'x'."},
        {"show", "3", "Usage: korvanecore show <entry>"},
        {"show 1 2", "3", "'2' is too much"},
        {"set 1 intervall=5", "3", "Did you mean 'interval'?"},
        {"set 1", "3", "needs at least one column=value"},
        {"failures --lines 0", "3", "is not a number from 1 to"},
        {"settings gett a", "3", "Did you mean 'get'?"},
        {"set one tries=5", "1", "'one' fits 2 entries, and nothing was done. Name one by its id:\n  1  one  127.0.0.1"},
        {"pause 1 nobody", "1", "There is no entry 'nobody'."},
        {"set 1 tries=40000", "1", "'40000' is not a whole number up to 32767."},
        {"set 1 type=HTP", "1", "Did you mean 'HTTP'?"},
        {"set 1 down-time-1=noon", "1", "could not be understood"},
        {"add new.example interval=often", "1", "is not a whole number."},
        {"add \"\"", "3", "the address is empty"},
        {"settings set Begin 11", "1", "The valid range"},
        {"settings set Bgin 1", "1", "Did you mean 'Begin'?"},
        {"settings set MailOutbox maybe", "1", "is neither True nor False."},
        {"check 1 --count", "1", "No monitor runs with this home"},
        {"list --home=/nowhere", "1", "/nowhere is no home"},
        {"status --home /nowhere", "3", "KORVANE UNKNOWN"},
        {"help; mkdir -p \"Logs/kvmonlog $(date '+%Y %m-%d').txt\"; korvanecore log", "1", "Cannot read"},
        {"import none.csv", "1", "There is no file none.csv."},
        {"import bad.csv", "1", "there is no column 'tries'."},
        {"import half.csv", "1", "Nothing was imported; --skip-refused"},
        {"import bad.json", "1", "This is no JSON"},
        {"import odd.json", "1", "Entry 2: it has not the columns of the first entry."},
    };
    Shell(program, "mkdir junk; echo junk > junk/kvdata2.mdb");
    program.home.Write("bom.json", "\xEF\xBB\xBF[{\"x\": 1}]");
    program.home.Write("bad.csv", "id,tries\n1,5\n");
    program.home.Write("half.csv", "id,nTries\n1,5\n9,5\n");
    program.home.Write("bad.json", "{\"entries\": [");
    program.home.Write("odd.json", "[{\"strAddress_IP\": \"a.example\"}, {\"nTries\": 3}]");
    for (const auto& wrong : wrongs) {
        const std::string said = Shell(program, "korvanecore " + wrong.command + "; echo status $?");
        EXPECT_TRUE(Holds(said, wrong.says) && said.ends_with("status " + wrong.status + "\n")) << wrong.command << "\n" << said;
    }
    EXPECT_EQ(Shell(program, list), before);
    if (getuid() != 0) return;
    fs::permissions(program.home.Path(), fs::perms::all);
    EXPECT_TRUE(Holds(Shell(program, "chown 4711 .; korvanecore add new.example; echo status $?"), "belongs to user 4711"));
    EXPECT_EQ(Shell(program, list), before);
}

TEST(CommandLine, OfARunningMonitorLosesNoChange) {
    // Eight entries that fail each second, while everything of another one is changed again and again.
    std::string sql = Due("PING", "nowhere.example", 0, "", ", strDesc = 'busy', nIntervalSeconds = 1");
    for (int i = 0; i < 8; ++i)
        sql += Due("TCP", "127.0.0.1", kNobody, "", ", nIntervalSeconds = 1, nTries = 5");
    Program program("CatchUp=True\nGlobalRetryDuration=1\n" + kBegin, sql);
    program.Start();
    ASSERT_TRUE(program.Becomes("SELECT count(*) > 0 FROM Failures WHERE IDParent = 1", "1\n")) << program.Output();
    const int changes = std::getenv("KORVANE_LONG") != nullptr ? 1000 : 20;
    const std::string said =
        Shell(program, "for i in $(seq " + std::to_string(changes) +
                           "); do korvanecore set busy interval=$((i % 5 + 1)) tries=$i name=busy --quiet && "
                           "korvanecore add 127.0.0.1 type='Other Port' port=" +
                           std::to_string(kNobody) +
                           " name=new$i monitored=false --quiet && "
                           "test $(korvanecore show busy --json | python3 -c 'import json, sys; "
                           "print(json.load(sys.stdin)[\"columns\"][\"nTries\"])') = $i && "
                           "if [ $i -gt 9 ]; then korvanecore remove new$((i - 9)); fi || echo lost $i; done");
    EXPECT_EQ(Count(said, "lost"), 0U) << said.substr(0, 2000);
    EXPECT_EQ(program.Query("SELECT nTries FROM Servers WHERE ID = 1; SELECT count(*) FROM Servers"),
              std::to_string(changes) + "\n18\n");
    program.ExpectWhole();

    // A setting that is changed beside the monitor is stored by it, and stays when it ends.
    EXPECT_EQ(Shell(program, "korvanecore settings set Zone +0100; korvanecore pause busy; echo status $?"),
              "Zone is +0100.\n1 entry paused: shown as Inactive when the next check is due.\nstatus 0\n");
    EXPECT_TRUE(program.Becomes("SELECT strCurStatus FROM Servers WHERE ID = 1", "Inactive\n"));
    EXPECT_TRUE(Holds(Shell(program, "korvanecore check busy --count; korvanecore resume busy"), "paused: resume first"));
    EXPECT_TRUE(program.Becomes("SELECT strCurStatus FROM Servers WHERE ID = 1", "Failing\n"));
    program.Stop();
    EXPECT_TRUE(Holds(program.Settings(), "Zone=+0100\n")) << program.Settings();
}

// Nothing is due for minutes, and the monitor sleeps.
TEST(CommandLine, WakesASleepingMonitor) {
    Program program(kBegin, Due("TCP", "127.0.0.1", kNobody, "", ", bIsMonitoring = 0"));
    program.Start();
    ASSERT_TRUE(Waited([&] { return Holds(program.Output(), "Sleeping for 60 seconds"); })) << program.Output();
    Shell(program, "echo strAddress_IP > new.csv; echo a.example >> new.csv; korvanecore import --dry-run new.csv");
    EXPECT_FALSE(fs::exists(program.home.Path() + "/kvrequests")) << "by root it would be root's, and closed to its owner";
    EXPECT_EQ(
        Count(Shell(program, "korvanecore add 127.0.0.1 type='Other Port' name=new port=" + std::to_string(kNobody)), "added"),
        1U);
    EXPECT_TRUE(Waited([&] { return program.Query("SELECT count(*) FROM Failures") == "1\n"; }, 10s));
    const std::string why = Shell(program, "korvanecore why new; korvanecore failures new");
    EXPECT_TRUE(Holds(why, "failure 1 of 3: Could Not Connect") && Holds(why, "None: nobody is notified")) << why;
    EXPECT_TRUE(Holds(Shell(program, "korvanecore status; echo status $?"), "KORVANE WARNING - 0 down, 1 failing, "));
    program.Stop();
}

}  // namespace korvane::test::command_line_test
