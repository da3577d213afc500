// One life of the program as a process: its folders, arguments and signals, the adapters that are handed to the run, and its
// end. The same with and without a window.
#pragma once

#include <functional>

#include "engine/collaborators.h"
#include "notify/mail_trace.h"
#include "platform/operator.h"
#include "platform/timer.h"
#include "shell/run/monitor_window.h"
#include "shell/run/run.h"

namespace korvane {

/// How this process meets the person at the desk. The parts must live as long as the process.
struct Face {
    Operator& person;
    MonitorWindow* window = nullptr;
    ConversationWindow* conversation = nullptr;
    MailTrace* mailTrace = nullptr;
    /// Called once, before start-up; what it is given saves everything and ends the process.
    std::function<void(Run& run, std::function<void()> exit)> attach = [](Run&, const std::function<void()>&) {};
    /// Called when the process is about to end as File, Exit ends it, before anything is saved.
    std::function<void()> beforeExit = [] {};
};

/// Before any Qt application object is made: what this process sets for itself and for the libraries it stands on.
void PrepareProcess();

/// Runs the program on the application object that is there, and ends the process. `makeFace` gets the timers of the process.
[[noreturn]] void RunProcess(int argc, char** argv, const std::function<Face(Timers&)>& makeFace);

/// The same without a window: status lines on standard output, messages on standard error.
[[noreturn]] void RunInTerminal(int argc, char** argv);

}  // namespace korvane
