// Room `setup`: the first start.
//
// The first start with somebody at the desk: three questions, and what is made of the answers: the first entry, the mail
// server, and a program that comes back by itself with the machine.
#pragma once

#include <functional>
#include <string>

#include "shell/run/desk.h"

namespace korvane {

/// A page of the setup. Line ends in texts are CR LF.
struct WizardPage {
    std::string title;
    std::string prompt;
    std::string defaultText = {};      ///< in the input box from the start
    std::string blankAnswerText = {};  ///< belongs to the page and is never shown: a blank answer is accepted
    bool textboxVisible = true;        ///< false: the page only tells something
    std::string firstButton = {};      ///< a blank caption: there is no such button
    std::string secondButton = "Next >>";
};

/// What setup needs beside the rooms. All of it must be set. What one of them throws ends the setup.
struct FirstRunCommands {
    /// Shows the page, waits through the event pump until it is left, and gives the text of its input box; blank when the
    /// page was closed unanswered.
    std::function<std::string(const WizardPage&)> ask;
    std::function<bool()> IsWindows95;
    std::function<bool()> IsWindowsNT;
    std::function<void(bool add)> AddOrRemoveGroupShortCut;
    std::function<bool(const std::string& serviceName)> InstallService;
    std::function<void()> WarnIfInStartupGroup;
    std::function<void()> checkTrayStartup;    ///< puts the mark at mnuTrayStartup
    std::function<void()> checkTrayNTService;  ///< puts the mark at mnuTrayNTService
    /// Writes the address to alert to the files of the disk, memory, CPU and service monitors, in this order, and has those that
    /// run read it. It may be blank.
    std::function<void(const std::string& address)> setEmailOfMonitors;
};

/// The whole setup, once in the life of a home. The first entry of the database is overwritten if there is one. An error
/// ends it, is logged, and leaves what was written until then. Waits for the operator, for days if need be. Throws nothing.
void SetUpFirstRun(const Desk& desk, const FirstRunCommands& commands);

}  // namespace korvane
