#include "shell/process/process.h"

#include <unistd.h>

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include "engine/shutdown_path.h"
#include "platform/curl/curl_inet.h"
#include "platform/linux/autostart.h"
#include "platform/linux/desktop_proxy.h"
#include "platform/linux/desktop_sound.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/linux/linux_icmp_echo.h"
#include "platform/linux/linux_memory.h"
#include "platform/linux/linux_power.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/linux_signals.h"
#include "platform/linux/linux_system_info.h"
#include "platform/linux/program_runner.h"
#include "platform/linux/systemd_manager.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "platform/qt/qt_timer.h"
#include "platform/qt/sql_store.h"
#include "shell/message_title.h"
#include "shell/terminal_operator.h"
#include "store/schema.h"

namespace korvane {
namespace {

constexpr int kCannotGoOn = 1;
constexpr const char* kNoGlib = "QT_NO_GLIB";
/// Of the desktop's theme.
constexpr const char* kIconName = "korvane";

std::string CommandLine(int argc, char** argv) {
    std::string line;
    for (int i = 1; i < argc; ++i)
        line += (i > 1 ? " " : "") + std::string(argv[i]);
    return line;
}

/// The folder of the executable, or the one that KORVANE_HOME names; it is made when it is not there.
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

/// The process ends here and now: a name server that does not answer or a check that is under way must not hold it up, and there
/// is nothing left to write.
[[noreturn]] void EndProcess(int status) {
    std::cout.flush();
    std::cerr.flush();
    std::_Exit(status);
}

/// A start that can't go on ends the process, behind its message.
void Start(Run& run, const Face& face, Files& files, const Run::Options& options) {
    try {
        files.CreateFolder(options.dir);
        if (run.StartUp() == Run::Started::Running) return;
    } catch (const std::exception& error) {
        face.person.ShowMessage(kMessageTitle, "Korvane can't start: " + std::string(error.what()));
    }
    EndProcess(kCannotGoOn);
}

}  // namespace

void PrepareProcess() {
    ReturnLargeBlocks();  // an answer of 50 MB must not stay in the memory of a program that runs for a year
    // The plain event loop wakes for our own timers and sockets only, and needs less memory.
    setenv(kNoGlib, "1", 1);
    IgnoreBrokenPipes();
}

void RunProcess(int argc, char** argv, const std::function<Face(Timers&)>& makeFace) {
    unsetenv(kNoGlib);  // what we start is not to inherit it
    const SystemdGreeting greeting(EnvironmentVariable, ::getpid());
    KeepGreetingFromChildren();
    const Run::Options options = OptionsOf(argc, argv);
    SystemClock clock;
    LinuxFiles files;
    QtEvents events;
    QtTimers timers;
    QtSqlStore store(KindOfColumn);
    QtTcpSocket tcpSocket;
    QtTcpSocket sckesmtp;
    QtTcpSocket plainSocket;
    QtTcpSocket testSocket;
    LinuxIcmpEcho echo;
    LinuxProcesses processes(events);
    DesktopSound sound(processes);
    LinuxGuidSource guids;
    LinuxPower power([&](const std::vector<std::string>& words) { processes.Start(words); },
                     ThisMachine(getShudownEXEPath(files)));
    SystemdManager services({files, ProgramRunner(events, clock)}, SystemdPlaceOfThisUser(EnvironmentVariable), greeting);
    DesktopAutostart autostart(files, EnvironmentVariable);
    LinuxSystemInfo systemInfo;
    const Face face = makeFace(timers);
    const CurlInet::Options inetOptions{.caBundle = EnvironmentVariable("SSL_CERT_FILE"),
                                        .userAgent = "Korvane/" + options.version};
    std::function<void()> exit;
    Run run({clock,
             events,
             timers,
             store,
             face.person,
             files,
             tcpSocket,
             sckesmtp,
             plainSocket,
             testSocket,
             echo,
             sound,
             processes,
             guids,
             power,
             services,
             autostart,
             systemInfo,
             [&] { return std::make_unique<CurlInet>(events, clock, inetOptions); },
             [] { return DesktopProxyServer(EnvironmentVariable); },
             [&] { exit(); },
             face.window,
             face.conversation,
             face.mailTrace},
            options);

    exit = [&] {
        face.beforeExit();
        run.mnuExit_Click();
        run.Service().HandOver();
        EndProcess(EXIT_SUCCESS);
    };
    const auto whenLoaded = [&run](const std::function<void()>& end) {
        return [&run, end] {
            if (run.OnlyTelling()) EndProcess(kCannotGoOn);
            if (run.MayExit()) end();
        };
    };
    // The service manager stops its services by a signal.
    const auto stop = [&] { run.Service().RunningAsService() ? run.Service().Stop() : exit(); };
    face.attach(run, whenLoaded(exit));
    const TerminationSignals termination(events, whenLoaded(stop));
    const PauseSignals pauses(
        events, [&] { run.Service().Pause(); }, [&] { run.Service().Continue(); });
    // When the display goes, with the session, its library ends the process by itself.
    bool started = false;
    const std::function<void()> atExit = [&] {
        if (started) run.mnuExit_Click();
    };
    on_exit([](int, void* work) { (*static_cast<const std::function<void()>*>(work))(); },
            const_cast<std::function<void()>*>(&atExit));
    Start(run, face, files, options);
    started = true;
    if (run.ExitAsked()) stop();
    EndProcess(QCoreApplication::exec());
}

void RunInTerminal(int argc, char** argv) {
    TerminalOperator person(std::cout, std::cerr);
    RunProcess(argc, argv, [&](Timers&) { return Face{.person = person}; });
}

}  // namespace korvane
