#include "shell/process/process.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include "platform/curl/curl_inet.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/linux/linux_icmp_echo.h"
#include "platform/linux/linux_memory.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/linux_signals.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "platform/qt/qt_timer.h"
#include "platform/qt/sql_store.h"
#include "shell/no_sound.h"
#include "shell/terminal_operator.h"
#include "store/schema.h"

namespace korvane {
namespace {

constexpr int kCannotGoOn = 1;
constexpr const char* kNoGlib = "QT_NO_GLIB";

std::string FromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string CommandLine(int argc, char** argv) {
    std::string line;
    for (int i = 1; i < argc; ++i)
        line += (i > 1 ? " " : "") + std::string(argv[i]);
    return line;
}

/// The folder of the executable, or the one that KORVANE_HOME names; it is made when it is not there.
Run::Options OptionsOf(int argc, char** argv) {
    const std::string program = QCoreApplication::applicationDirPath().toStdString();
    const std::string home = FromEnvironment("KORVANE_HOME");
    Run::Options options{.dir = program, .dataDir = program, .commandLine = CommandLine(argc, argv), .version = KORVANE_VERSION};
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
        face.person.ShowMessage("Korvane", "Korvane can't start: " + std::string(error.what()));
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
    NoSound sound;
    LinuxProcesses processes(events);
    LinuxGuidSource guids;
    const Face face = makeFace(timers);
    const CurlInet::Options inetOptions{.caBundle = FromEnvironment("SSL_CERT_FILE"), .userAgent = "Korvane/" + options.version};
    Run run({clock, events, timers, store, face.person, files, tcpSocket, sckesmtp, plainSocket, testSocket, echo, sound,
             processes, guids, [&] { return std::make_unique<CurlInet>(events, clock, inetOptions); }, face.window,
             face.conversation, face.mailTrace},
            options);

    const auto exit = [&] {
        face.beforeExit();
        run.mnuExit_Click();
        EndProcess(EXIT_SUCCESS);
    };
    const auto exitWhenLoaded = [&] {
        if (run.OnlyTelling()) EndProcess(kCannotGoOn);
        if (run.MayExit()) exit();
    };
    face.attach(run, exitWhenLoaded);
    const TerminationSignals termination(events, exitWhenLoaded);
    // When the display goes, with the session, its library ends the process by itself.
    bool started = false;
    const std::function<void()> atExit = [&] {
        if (started) run.mnuExit_Click();
    };
    on_exit([](int, void* work) { (*static_cast<const std::function<void()>*>(work))(); },
            const_cast<std::function<void()>*>(&atExit));
    Start(run, face, files, options);
    started = true;
    if (run.ExitAsked()) exit();
    EndProcess(QCoreApplication::exec());
}

void RunInTerminal(int argc, char** argv) {
    TerminalOperator person(std::cout, std::cerr);
    RunProcess(argc, argv, [&](Timers&) { return Face{.person = person}; });
}

}  // namespace korvane
