// The whole program on real files and a real database, in virtual time: a home folder, and the run with everything outside it
// played.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/qt/sql_store.h"
#include "shell/run/run.h"
#include "store/schema.h"
#include "support/recording_operator.h"
#include "support/recording_power.h"
#include "support/recording_processes.h"
#include "support/recording_service_manager.h"
#include "support/recording_sound.h"
#include "support/scripted_services.h"
#include "support/scripted_system_info.h"
#include "support/temporary_folder.h"
#include "support/virtual_icmp_echo.h"
#include "support/virtual_inet.h"
#include "support/virtual_mail_server.h"
#include "support/virtual_net.h"
#include "support/virtual_tcp_socket.h"
#include "support/virtual_world.h"

namespace korvane {

/// A home folder and the program in it. Several may stand in one home, as a second start does.
class Home {
public:
    Home() {
        std::string pattern = (std::filesystem::temp_directory_path() / "korvane-home-XXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    ~Home() { std::filesystem::remove_all(path_); }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    void Write(const std::string& name, const std::string& text) const { std::ofstream(path_ / name, std::ios::binary) << text; }
    std::string Log() const { return ReadAll(path_ / "Logs/kvmonlog 2026 11-21.txt"); }
    std::string Path() const { return path_.string(); }

private:
    std::filesystem::path path_;
};

/// Who is at the desk: as it stands, the recording person without a window.
struct DesktopOfProgram {
    Operator* person = nullptr;
    MonitorWindow* window = nullptr;
    ConversationWindow* conversation = nullptr;
};
using MakeDesktop = std::function<DesktopOfProgram(Timers& timers)>;

struct Program {
    explicit Program(const Home& home, std::string dataDir = KORVANE_DIST_DIR, std::string commandLine = "")
        : Program(home.Path(), std::move(dataDir), std::move(commandLine)) {}

    explicit Program(
        const std::string& dir, std::string dataDir = KORVANE_DIST_DIR, std::string commandLine = "",
        const MakeDesktop& makeDesktop = [](Timers&) { return DesktopOfProgram{}; })
        : desktop(makeDesktop(world.timers)),
          run({.clock = world.clock,
               .events = world.events,
               .timers = world.timers,
               .store = store,
               .person = desktop.person == nullptr ? person : *desktop.person,
               .files = files,
               .tcpSocket = socket,
               .sckesmtp = sckesmtp,
               .plainSocket = plainSocket,
               .testSocket = testSocket,
               .alertEsmtp = alertEsmtp,
               .alertPlain = alertPlain,
               .echo = echo,
               .sound = sound,
               .processes = processes,
               .guids = guids,
               .power = power,
               .serviceManager = serviceManager,
               .services = services,
               .autostart = autostart,
               .systemInfo = systemInfo,
               .newInet = [this] { return std::make_unique<VirtualInet>(net); },
               .proxyServer = [this] { return proxyServer; },
               .exit = [this] { exits += 1; },
               .window = desktop.window,
               .conversation = desktop.conversation},
              {.dir = dir,
               .dataDir = std::move(dataDir),
               .commandLine = std::move(commandLine),
               .version = "1.0.0",
               .program = "/opt/korvane/korvanecore",
               .icon = "korvane"}) {}

    std::vector<std::string> Column(const Home& home, const std::string& query) {
        const auto conn = store.NewConnection();
        conn->SetConnectionString("DBQ=" + (home / "kvdata2.mdb").string());
        conn->Open();
        const auto rs = store.NewRecordset();
        std::vector<std::string> values;
        for (rs->Open(query, *conn, CursorType::Static, LockType::Optimistic); !rs->Eof(); rs->MoveNext()) {
            values.push_back(rs->Fields("v").Value().Text());
        }
        return values;
    }

    VirtualWorld world{DateTime::Of(2026, 11, 21, 15, 0, 0)};
    VirtualNet net{world};
    LinuxFiles files;
    QtSqlStore store{KindOfColumn};
    RecordingOperator person;
    RecordingSound sound;
    VirtualTcpSocket socket{net};
    VirtualTcpSocket sckesmtp{net};
    VirtualTcpSocket plainSocket{net};
    VirtualTcpSocket testSocket{net};
    VirtualTcpSocket alertEsmtp{net};
    VirtualTcpSocket alertPlain{net};
    VirtualIcmpEcho echo{net};
    RecordingProcesses processes;
    LinuxGuidSource guids;
    RecordingPower power;
    RecordingServiceManager serviceManager;
    ScriptedServices services{world};
    RecordingAutostart autostart;
    ScriptedSystemInfo systemInfo;
    std::string proxyServer;
    int exits = 0;  ///< how often the process was to end
    DesktopOfProgram desktop;
    Run run;
};

}  // namespace korvane
