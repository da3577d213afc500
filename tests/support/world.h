// The whole program in virtual time: the program's own Run on a home of its own, with real files in memory and a real database,
// and everything outside played. A test breaks what it likes (`files.faults`, `store.faults`, the hosts of `net`), lets time pass,
// and looks at rows, log, mails and what the operator saw.
//
//     World world({.settings = "Server=mail.example"});
//     world.Start();                                    // the start, and the wait of `Begin` (0 unless the settings say more)
//     const auto id = world.rows.Add({.strDesc = "web"});
//     world.net.Host("10.0.0.1").EchoSilent();
//     world.RunFor(5min);
#pragma once

#include <chrono>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/qt/sql_store.h"
#include "shell/run/run.h"
#include "store/schema.h"
#include "support/faulty_files.h"
#include "support/faulty_store.h"
#include "support/played_machine.h"
#include "support/qt_application.h"
#include "support/recording_operator.h"
#include "support/temporary_folder.h"
#include "support/test_database.h"
#include "support/virtual_inet.h"
#include "support/virtual_mail_server.h"
#include "support/virtual_net.h"
#include "support/virtual_own_program.h"
#include "support/virtual_tcp_socket.h"
#include "support/virtual_world.h"

namespace korvane {

/// Who is at the desk; what is null is played: a person without a window.
struct WorldFace {
    Operator* person = nullptr;
    MonitorWindow* window = nullptr;
    ConversationWindow* conversation = nullptr;
};

class World {
public:
    struct Setup {
        DateTime start = DateTime::Of(2026, 11, 21, 15, 0, 0);
        std::optional<std::string> settings = "";  ///< lines of section Settings of a new home; nothing: no settings file
        std::string home = "";                     ///< of another World, for a second start in it; empty: a new one
        std::string dataDir = KORVANE_DIST_DIR;
        std::string commandLine = "";
        std::function<WorldFace(Timers& timers)> makeFace = [](Timers&) { return WorldFace{}; };
    };

    World() : World(Setup{}) {}
    explicit World(const Setup& setup)
        : folder_(setup.home.empty() ? std::make_unique<TemporaryFolder>() : nullptr),
          time_(setup.start, std::chrono::hours(-5)),
          home(folder_ ? folder_->Path() : setup.home),
          face(setup.makeFace(time_.timers)),
          run(Ports(), {.dir = home,
                        .dataDir = setup.dataDir,
                        .commandLine = setup.commandLine,
                        .version = "1.0.0",
                        .program = "/opt/korvane/korvanecore",
                        .icon = "korvane"}) {
        NeedQtApplication();
        // A key that comes first counts, so the test's own stands before.
        if (folder_ && setup.settings)
            Write("kvurlwatchn.ini", "[Settings]\n" + *setup.settings + "\nBegin=0\nServer=mail.example\n");
    }

    /// The start of the program. What it says of it is in `started`.
    void Start() { started = run.StartUp(); }
    Run::Started started = Run::Started::CannotGoOn;

    void RunFor(std::chrono::milliseconds time) { time_.RunFor(time); }

    /// Below the home.
    std::string PathOf(const std::string& name) const { return home + "/" + name; }
    std::string Text(const std::string& name) const { return ReadAll(PathOf(name)); }
    void Write(const std::string& name, std::string_view text) { std::ofstream(PathOf(name), std::ios::binary) << text; }

    /// The texts of today's log, without date, time and version; with "# " in front where they are errors.
    std::vector<std::string> LogTexts() {
        const std::string today = time_.clock.Now().Stored();
        std::vector<std::string> texts;
        for (const std::string& line :
             Split(Text("Logs/kvmonlog " + today.substr(0, 4) + " " + today.substr(5, 5) + ".txt"), '\n')) {
            const auto tab = line.find('\t');
            if (tab != std::string::npos && tab != 0) texts.push_back((line[tab - 1] == '#' ? "# " : "") + line.substr(tab + 1));
        }
        return texts;
    }
    bool Logged(const std::string& part) {
        const std::vector<std::string> texts = LogTexts();
        return std::any_of(texts.begin(), texts.end(), [&](const std::string& text) { return Holds(text, part); });
    }

    /// Sets a key in the settings that the running program consults.
    void Set(std::string_view key, std::string value) { run.TheDesk().collection.setKvSettingsColValue(key, std::move(value)); }

    /// For another Run in the same home, such as that of a command.
    RunPorts Ports() {
        const auto newInet = [this] { return std::make_unique<VirtualInet>(net); };
        const auto proxy = [this] { return proxyServer; };
        const auto exit = [this] { ++exits; };
        return {{socket, testSocket, echo, newInet, networkSocket, networkEcho},
                {sckesmtp, plainSocket, alertEsmtp, alertPlain, popSocket, guids, ownProgram},
                {store, files},
                {time_.clock, time_.events, time_.timers, processes, sound, power, serviceManager, services, autostart,
                 systemInfo, proxy, exit},
                {face.person ? *face.person : person, face.window, face.conversation}};
    }

private:
    std::unique_ptr<TemporaryFolder> folder_;
    VirtualWorld time_;

public:
    VirtualWorld& world = time_;  ///< its clock, events and timers
    const std::string home;
    VirtualNet net{time_};
    LinuxFiles disk;
    FaultyFiles files{disk};
    QtSqlStore database{KindOfColumn};
    FaultyStore store{database};
    TestDatabase rows{home, database};
    RecordingOperator person;
    RecordingSound sound;
    VirtualTcpSocket socket{net}, sckesmtp{net}, plainSocket{net}, testSocket{net}, networkSocket{net}, alertEsmtp{net},
        alertPlain{net}, popSocket{net};
    VirtualIcmpEcho echo{net}, networkEcho{net};
    RecordingProcesses processes;
    LinuxGuidSource guids;
    VirtualOwnProgram ownProgram{time_, net};
    RecordingPower power;
    RecordingServiceManager serviceManager;
    ScriptedServices services{time_};
    RecordingAutostart autostart;
    ScriptedSystemInfo systemInfo;
    std::string proxyServer;
    int exits = 0;  ///< how often the process was to end
    VirtualMailServer mail{net.Host("mail.example").Port(25)};
    WorldFace face;
    Run run;
};

}  // namespace korvane
