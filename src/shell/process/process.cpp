#include "shell/process/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>

#include "base/error.h"
#include "base/raised_flag.h"
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
#include "platform/linux/linux_signals.h"
#include "platform/linux/linux_system_info.h"
#include "platform/linux/process_setup.h"
#include "platform/linux/program_runner.h"
#include "platform/linux/systemd_manager.h"
#include "platform/linux/systemd_services.h"
#include "platform/operator.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "platform/qt/sql_store.h"
#include "shell/run/terminal_operator.h"
#include "store/schema.h"

namespace korvane {
namespace {

constexpr int kCannotGoOn = 1;
constexpr const char* kNoGlib = "QT_NO_GLIB";
/// The icon's name in the desktop's theme.
constexpr const char* kIconName = "korvane";

std::string CommandLine(int argc, char** argv) {
    std::string line;
    for (int i = 1; i < argc; ++i)
        line += (i > 1 ? " " : "") + std::string(argv[i]);
    return line;
}

/// Returns the folder of the executable, or the one that KORVANE_HOME names; it is created when it does not exist.
Run::Options OptionsOf(int argc, char** argv) {
    const std::string folder = QCoreApplication::applicationDirPath().toStdString();
    const std::string home = EnvironmentVariable("KORVANE_HOME");
    Run::Options options{.dir = folder,
                         .dataDir = folder,
                         .commandLine = CommandLine(argc, argv),
                         .version = KORVANE_VERSION,
                         .program = QCoreApplication::applicationFilePath().toStdString(),
                         .icon = kIconName};
    if (!home.empty()) options.dir = std::filesystem::absolute(home).lexically_normal().string();
    while (options.dir.size() > 1 && options.dir.ends_with('/'))
        options.dir.pop_back();
    return options;
}

/// The process ends at once: it must not wait for a name server that does not answer or a running check, and there is nothing
/// left to write.
[[noreturn]] void EndProcess(int status) {
    std::cout.flush();
    std::cerr.flush();
    std::_Exit(status);
}

/// All collected data goes there. Without this check, a start would fail at one file after the other, with other messages.
void RequireWritable(const std::string& folder) {
    if (::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0) return;
    throw Error("The folder " + folder + " cannot be written: " + std::strerror(errno));
}

/// The real implementations of all ports in this process.
struct Adapters {
    explicit Adapters(const std::string& version)
        : inetOptions{.caBundle = EnvironmentVariable("SSL_CERT_FILE"), .userAgent = "Korvane/" + version} {}

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
    QtSqlStore store{KindOfColumn};
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

/// Lives from the start of the run to the end of the process.
class Life {
public:
    Life(Run::Options options, const std::function<Face(Timers&)>& makeFace)
        : options_(std::move(options)),
          adapters_(options_.version),
          face_(makeFace(adapters_.timers)),
          run_(adapters_.PortsWith(face_.desk, [this] { Exit(); }), options_) {}
    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

    [[noreturn]] void Live();

private:
    void Start();
    void WhenLoaded(void (Life::*end)());
    void StopAsAsked();
    [[noreturn]] void Exit();
    void GlanceWhileFrozen();

    Run::Options options_;
    Adapters adapters_;
    Face face_;
    Run run_;
    TerminationSignals termination_{adapters_.events, [this] { WhenLoaded(&Life::StopAsAsked); }};
    PauseSignals pauses_{adapters_.events, [this] { run_.Service().Pause(); }, [this] { run_.Service().Continue(); }};
    bool started_ = false;
    bool frozen_ = false;  ///< work is running during which no event may be delivered
};

void Life::Live() {
    face_.attach(run_, [this] { WhenLoaded(&Life::Exit); });
    adapters_.store.WhileCompacting([this] { GlanceWhileFrozen(); });
    // When the display closes at the end of the session, its library ends the process by itself.
    on_exit(
        [](int, void* life) {
            auto& self = *static_cast<Life*>(life);
            if (self.started_) self.run_.mnuExit_Click();
        },
        this);
    Start();
    started_ = true;
    if (run_.ExitAsked()) StopAsAsked();
    EndProcess(QCoreApplication::exec());
}

// A start that cannot continue ends the process after its message.
void Life::Start() {
    try {
        adapters_.files.CreatePrivateFolder(options_.dir);
        RequireWritable(options_.dir);
        if (run_.StartUp() == Run::Started::Running) return;
    } catch (const std::exception& error) {
        face_.desk.person.ShowMessage(kMessageTitle, "Korvane can't start: " + std::string(error.what()));
    }
    EndProcess(kCannotGoOn);
}

void Life::WhenLoaded(void (Life::*end)()) {
    if (run_.OnlyTelling()) EndProcess(kCannotGoOn);
    if (run_.MayExit()) (this->*end)();
}

// The service manager stops its services by a signal.
void Life::StopAsAsked() {
    if (!run_.Service().RunningAsService()) Exit();
    run_.Service().Stop(frozen_);
}

void Life::Exit() {
    face_.beforeExit();
    run_.mnuExit_Click();
    if (!frozen_) run_.Service().HandOver();
    EndProcess(EXIT_SUCCESS);
}

// Compacting a large database takes minutes: the service manager must neither consider the program dead nor wait for it.
void Life::GlanceWhileFrozen() {
    const RaisedFlag frozen(frozen_);
    if (adapters_.serviceManager.AliveInterval()) adapters_.serviceManager.Alive();
    termination_.Look();
}

}  // namespace

void PrepareProcess() {
    ReturnLargeBlocks();  // an answer of 50 MB must not stay in the memory of a program that runs for a year
    // The plain event loop wakes only for our own timers and sockets, and needs less memory.
    setenv(kNoGlib, "1", 1);
    IgnoreBrokenPipes();
    KeepOthersFromWriting();
}

void RunProcess(int argc, char** argv, const std::function<Face(Timers&)>& makeFace) {
    unsetenv(kNoGlib);  // our child processes must not inherit it
    // The adapters read the greeting, so nothing may be started before they exist.
    Life life(OptionsOf(argc, argv), makeFace);
    KeepGreetingFromChildren();
    life.Live();
}

void RunInTerminal(int argc, char** argv) {
    TerminalOperator person(std::cout, std::cerr);
    RunProcess(argc, argv, [&](Timers&) { return Face{.desk = {person}}; });
}

}  // namespace korvane
