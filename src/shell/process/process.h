// The program as a process: its folders, arguments and signals, the adapters for the run, and its end. The same with and without
// a window.
#pragma once

#include <functional>

#include "shell/run/ports.h"
#include "shell/run/run.h"

namespace korvane {

/// How this process communicates with the user. The parts must live as long as the process.
struct Face {
    DeskPorts desk;
    /// Called once, before start-up; the `exit` argument saves everything and ends the process.
    std::function<void(Run& run, std::function<void()> exit)> attach = [](Run&, const std::function<void()>&) {};
    /// Called when File, Exit or an equivalent is about to end the process, before anything is saved.
    std::function<void()> beforeExit = [] {};
};

/// Sets up this process and the libraries that it uses. Must be called before any Qt application object is created.
void PrepareProcess();

/// Runs the program on the existing application object, and ends the process. `makeFace` receives the timers of the process.
[[noreturn]] void RunProcess(int argc, char** argv, const std::function<Face(Timers&)>& makeFace);

/// The same without a window: status lines on standard output, messages on standard error.
[[noreturn]] void RunInTerminal(int argc, char** argv);

}  // namespace korvane
