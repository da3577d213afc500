// What becomes of every kind of version file: the verdict, and what the operator is told or asked.
#include "shell/web/version_check.h"

#include <gtest/gtest.h>

#include "support/memory_files.h"
#include "support/recording_operator.h"
#include "support/recording_processes.h"
#include "support/virtual_inet.h"
#include "support/virtual_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Messages = std::vector<RecordingOperator::Message>;

constexpr const char* kFile = "http://www.example.com/zshared/version.txt";
const std::string kUnavailable = "Temporarily unavailable...  Please try agian later.";

struct VersionRig {
    explicit VersionRig(const std::string& version) : check({http, person, pages}, version) {
        collection.setKvSettingsColValue("ProxyName", "");
        http.LoadInets([this] { return std::make_unique<VirtualInet>(net); });
    }

    VirtualWorld world{DateTime::Of(2026, 11, 21, 15, 0, 0)};
    VirtualNet net{world};
    MemoryFiles files;
    IniFile file{files, "/kvurlwatchn.ini"};
    SettingsCollection collection;
    RecordingOperator person;
    RecordingProcesses processes;
    std::unique_ptr<Timer> TimerProgress = world.timers.NewTimer("TimerProgress");
    const CycleState state;
    RequestProgress progress{{world.events, person, state, *TimerProgress}};
    HttpRequester http{{collection, world.events, world.clock, progress}};
    WebPages pages{{processes, person, file}};
    VersionCheck check;
};

std::string FileOf(const std::string& version, const std::string& features) {
    return "version=" + version + "|" + features;
}

TEST(IsLatestVersion, ReadsTheVersionFile) {
    struct Case {
        const char* name;
        std::string running;
        std::string file;  ///< blank: no answer
        bool isLatest;
        std::string latest;
        std::string features;
    };
    const Case cases[] = {
        {"the same", "1.0.0", FileOf("1.0.0", "More\r\nand more"), true, "1.0.0", "More\r\nand more"},
        {"newer", "1.0.0", FileOf("1.0.1", "More"), false, "1.0.1", "More"},
        {"older", "1.2.0", FileOf("1.1.9", "More"), true, "1.1.9", "More"},
        {"text sorts by its characters", "10.0.0", FileOf("9.9.9", ""), false, "9.9.9", ""},
        {"and the other way", "9.9.9", FileOf("10.0.", ""), true, "10.0.", ""},
        {"blanks do not count", "1.0.0 ", FileOf(" 1.0 ", ""), true, " 1.0 ", ""},
        {"no answer", "1.0.0", "", true, "1.0.0", kUnavailable},
        {"3 bytes", "1.0.0", "abc", false, "", ""},
        {"only the label", "1.0.0", "version=", false, "", ""},
        {"a version cut short", "1.0.0", "version=2.", false, "2.", ""},
        {"no separator", "1.0.0", "version=2.0.0", false, "2.0.0", ""},
        {"a label of characters, not bytes", "1.0.0",
         "versi\xC3\xB6n=2.0.0|Gr\xC3\xB6\xC3\x9F"
         "er",
         false, "2.0.0",
         "Gr\xC3\xB6\xC3\x9F"
         "er"},
        {"blanks in its place", "1.0.0", FileOf("     ", ""), false, "", ""},
        {"an error page", "1.0.0", "<!DOCTYPE html><html>", false, "", "><html>"},
        {"nothing runs, nothing is there", "", "abc", true, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VersionRig rig(c.running);
        if (c.file.empty()) {
            rig.net.Page(kFile).Fail("Could not resolve host", 600ms);
        } else {
            rig.net.Page(kFile).Answer(c.file);
        }
        const LatestVersion found = rig.check.IsLatestVersion();
        EXPECT_EQ(found.isLatest, c.isLatest);
        EXPECT_EQ(found.strCurrent, c.running);
        EXPECT_EQ(found.strLatest, c.latest);
        EXPECT_EQ(found.strFeatures, c.features);
        const Inet::Request& request = rig.net.Page(kFile).LastRequest();
        EXPECT_EQ(request.RequestTimeout, 7s);
        EXPECT_EQ(request.UserName + request.Password, "");
        EXPECT_EQ(request.RemotePort, 0);
    }
}

TEST(CheckForVersion, TellsOrAsks) {
    struct Case {
        const char* name;
        std::function<void(VirtualPage&)> file;
        Messages messages;
        Messages questions;
    };
    const auto latest = [](const std::string& features) {
        return Messages{
            {"Korvane",
             "You have the latest version (1.0.0).  It has these features that the previous version did not:\r\n" + features}};
    };
    const Messages notReached = {
        {"Korvane", "The Korvane Server could not be reached.  Please check your internet connection and try again later."}};
    const Messages newer = {
        {"A New Version is Available",
         "The newer version (1.0.1) of Korvane is available. \r\nYou have version (1.0.0)\r\nWould you like to "
         "download this version now?\r\nFrom https://www.example.com/download.asp"}};
    const Case cases[] = {
        {"latest", [](VirtualPage& p) { p.Answer(FileOf("1.0.0", "Fast")); }, latest("Fast"), {}},
        {"silent", [](VirtualPage& p) { p.Silent(); }, latest(kUnavailable), {}},
        {"3 bytes", [](VirtualPage& p) { p.Answer("abc"); }, notReached, {}},
        {"NUL bytes", [](VirtualPage& p) { p.AnswerBinary(); }, notReached, {}},
        {"NUL bytes taken for text", [](VirtualPage& p) { p.Answer(std::string(1000, '\0')); }, notReached, {}},
        {"newer", [](VirtualPage& p) { p.Answer(FileOf("1.0.1", "Faster")); }, {}, newer},
        {"50 MB",
         [](VirtualPage& p) { p.Answer(FileOf("1.0.0", "").append(50'000'000, 'x')); },
         latest(std::string(4000, 'x')),
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VersionRig rig("1.0.0");
        c.file(rig.net.Page(kFile));
        rig.check.CheckForVersion();
        EXPECT_EQ(rig.person.messages, c.messages);
        EXPECT_EQ(rig.person.questions, c.questions);
        EXPECT_EQ(rig.processes.opened, std::vector<std::string>{});
    }
}

TEST(CheckForVersion, AYesOpensTheInstaller) {
    VersionRig rig("1.0.0");
    rig.net.Page(kFile).Answer(FileOf("1.0.1", ""));
    rig.person.answers = {true};
    rig.check.CheckForVersion();
    EXPECT_EQ(rig.processes.opened, std::vector<std::string>{"https://www.example.com/download/korvanecore.deb"});
    EXPECT_EQ(rig.pages.GetHelpURL(), rig.processes.opened.front());
}

TEST(CheckForVersion, ASecondOneDoesNothingWhileTheFirstWaits) {
    VersionRig rig("1.0.0");
    rig.net.Page(kFile).Answer(FileOf("1.0.0", "Fast"), 3s);
    rig.world.After(1s, [&] { rig.check.CheckForVersion(); });
    rig.check.CheckForVersion();
    EXPECT_EQ(rig.net.Page(kFile).Requests(), 1);
    EXPECT_EQ(rig.person.messages.size(), 1U);
}

}  // namespace
}  // namespace korvane
