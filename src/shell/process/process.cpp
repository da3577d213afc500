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
#include "platform/linux/environment.h"
#include "platform/linux/linux_signals.h"
#include "platform/linux/process_setup.h"
#include "platform/operator.h"
#include "shell/process/adapters.h"
#include "shell/run/terminal_operator.h"

namespace korvane {
namespace {

constexpr int kCannotGoOn = 1;
constexpr const char* kNoGlib = "QT_NO_GLIB";
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

/// Lives from the start of the run to the end of the process.
class Life {
public:
    Life(Run::Options options, const std::function<Face(Timers&)>& makeFace)
        : options_(std::move(options)),
          adapters_(options_),
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
        const Run::Started started = run_.StartUp();
        if (started == Run::Started::Running || started == Run::Started::Stopped) return;
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
