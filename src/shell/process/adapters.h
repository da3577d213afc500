// The real implementations of all ports in this process, and what the process knows of itself.
#pragma once

#include <unistd.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/machine_restart.h"
#include "platform/curl/curl_inet.h"
#include "platform/linux/desktop_entries.h"
#include "platform/linux/environment.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/linux/linux_icmp_echo.h"
#include "platform/linux/linux_own_program.h"
#include "platform/linux/linux_power.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/linux_system_info.h"
#include "platform/linux/program_runner.h"
#include "platform/linux/systemd_manager.h"
#include "platform/linux/systemd_services.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "platform/qt/sql_store.h"
#include "shell/run/ports.h"
#include "store/schema.h"

namespace korvane {

/// Returns the folder of the executable, or the one that KORVANE_HOME names.
RunOptions OptionsOf(int argc, char** argv);

/// Reads the setting `Database` of this home; blank: the database is a file.
SharedDatabase SharedDatabaseOf(const std::string& dir, Files& files);
SharedDatabase SharedDatabaseAt(const std::string& dir, const std::string& address);

/// The real implementations of all ports in this process.
struct Adapters {
    /// An operation on the store waits so long while another process holds the database.
    explicit Adapters(const RunOptions& options, std::chrono::milliseconds busyTimeout = std::chrono::seconds(1))
        : store(KindOfColumn, busyTimeout, SharedDatabaseOf(options.dir, files)),
          inetOptions{.caBundle = EnvironmentVariable("SSL_CERT_FILE"), .userAgent = "Korvane/" + options.version} {}

    RunPorts PortsWith(const DeskPorts& desk, std::function<void()> exit) {
        const auto newInet = [this] { return std::make_unique<CurlInet>(events, clock, inetOptions); };
        const auto proxyServer = [] { return DesktopProxyServer(EnvironmentVariable); };
        return {{tcpSocket, testSocket, echo, newInet, networkSocket, networkEcho},
                {sckesmtp, plainSocket, alertEsmtp, alertPlain, popSocket, guids, ownProgram},
                {store, files},
                {clock, events, timers, processes, sound, power, serviceManager, services, autostart, systemInfo, proxyServer,
                 std::move(exit)},
                desk};
    }

    SystemClock clock;
    LinuxFiles files;
    QtEvents events;
    QtTimers timers;
    QtSqlStore store;
    QtTcpSocket tcpSocket, testSocket, networkSocket, sckesmtp, plainSocket, alertEsmtp, alertPlain, popSocket;
    LinuxIcmpEcho echo, networkEcho;
    LinuxProcesses processes{events};
    DesktopSound sound{processes};
    LinuxGuidSource guids;
    LinuxOwnProgram ownProgram{events};
    LinuxPower power{[this](const std::vector<std::string>& words) { processes.Start(words); },
                     ThisMachine(getShudownEXEPath(files))};
    SystemdManager serviceManager{{files, ProgramRunner(events, clock)},
                                  SystemdPlaceOfThisUser(EnvironmentVariable),
                                  SystemdGreeting(EnvironmentVariable, ::getpid())};
    SystemdServices services{events};
    DesktopAutostart autostart{files, EnvironmentVariable};
    LinuxSystemInfo systemInfo;
    CurlInet::Options inetOptions;
};

}  // namespace korvane
