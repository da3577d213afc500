// What the desktop lends: its sound player, played by scripts on a PATH of their own, and the proxy of its environment.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "platform/linux/desktop_proxy.h"
#include "platform/linux/desktop_sound.h"
#include "platform/linux/linux_clock.h"
#include "platform/qt/qt_events.h"
#include "platform/wait.h"
#include "support/qt_application.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

class DesktopSoundTest : public testing::Test {
protected:
    DesktopSoundTest() {
        fs::create_directory(folder.Path() + "/bin");
        path_ = std::getenv("PATH");
        ::setenv("PATH", (folder.Path() + "/bin").c_str(), 1);
    }
    ~DesktopSoundTest() override { ::setenv("PATH", path_.c_str(), 1); }

    /// A player that writes down what it is to play.
    void Install(const std::string& player) {
        const std::string file = folder.Path() + "/bin/" + player;
        std::ofstream(file) << "#!/bin/sh\necho " + player + " \"$@\" > " + Played() + ".new\n/bin/mv " + Played() + ".new " +
                                   Played() + "\n";
        fs::permissions(file, fs::perms::owner_all);
    }
    std::string Played() { return folder.Path() + "/played"; }
    /// What was played last, once it was.
    std::string Play(const std::string& file) {
        fs::remove(Played());
        sound.PlaySound(file);
        const auto deadline = clock.GetTickCount() + 30s;
        while (!fs::exists(Played()) && clock.GetTickCount() < deadline)
            events.WaitForEvent(5ms);
        return ReadAll(Played());
    }

    const bool application = (NeedQtApplication(), true);
    SystemClock clock;
    QtEvents events;
    LinuxProcesses processes{events};
    DesktopSound sound{processes};
    TemporaryFolder folder;

private:
    std::string path_;
};

TEST_F(DesktopSoundTest, PlaysWithTheFirstPlayerThatIsThere) {
    const std::string wave = folder.Path() + "/two  words $(x).wav";
    std::ofstream(wave) << "RIFF";
    sound.PlaySound(wave);  // without any player
    for (const char* player : {"aplay", "paplay", "pw-play"}) {
        Install(player);
        EXPECT_EQ(Play(wave), player + (" " + wave) + "\n");
    }
    fs::remove(Played());
    for (const std::string& wrong : {std::string(), std::string("  "), wave + "x", folder.Path(), std::string("--help")})
        sound.PlaySound(wrong);
    EXPECT_EQ(Play(wave), "pw-play " + wave + "\n");  // and nothing before it
}

TEST(DesktopProxy, IsTheOneOfTheEnvironment) {
    using Variables = std::map<std::string, std::string>;
    const std::pair<Variables, const char*> cases[] = {
        {{}, ""},
        {{{"http_proxy", "http://proxy.example:3128/"}}, "proxy.example:3128"},
        {{{"http_proxy", " "}, {"HTTP_PROXY", "proxy.example:8080"}}, "proxy.example:8080"},
        {{{"http_proxy", "a:1"}, {"HTTP_PROXY", "b:2"}}, "a:1"},
        {{{"http_proxy", "http://me:p@ss@proxy.example"}}, "proxy.example:80"},
        {{{"http_proxy", "http://"}}, ""},
    };
    for (const auto& [variables, server] : cases) {
        const auto environment = [&](const std::string& name) {
            const auto found = variables.find(name);
            return found == variables.end() ? "" : found->second;
        };
        EXPECT_EQ(DesktopProxyServer(environment), server);
    }
}

}  // namespace
}  // namespace korvane
