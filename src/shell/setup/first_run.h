// Room `setup`: the first start.
//
// The first start with a user at the desk: asks three questions and sets up, from the answers, the first entry, the mail server,
// and the automatic start with the machine.
#pragma once

#include <functional>
#include <string>

#include "shell/run/desk.h"

namespace korvane {

/// A page of the setup. Line ends in texts are CR LF.
struct WizardPage {
    std::string title;
    std::string prompt;
    std::string defaultText = {};      ///< initial text of the input box
    std::string blankAnswerText = {};  ///< belongs to the page but is never shown: an empty answer is accepted
    bool textboxVisible = true;        ///< false: the page only shows information
    std::string firstButton = {};      ///< empty: there is no such button
    std::string secondButton = "Next >>";
};

/// Shows the page, waits through the event pump until it is closed, and returns the text of its input box; empty when the page was
/// closed without an answer.
using AskPage = std::function<std::string(const WizardPage&)>;

/// Performs the whole setup, once in the life of a home. The first entry of the database is overwritten if there is one. An error
/// ends it, is logged, and keeps what was already written. Waits for the operator, for days if necessary. Throws nothing.
/// `setEmailOfMonitors` writes the alert address, which may be empty, to the files of the disk, memory, CPU and service monitors,
/// in this order, and makes running monitors read it.
void SetUpFirstRun(const Desk& desk, const AskPage& ask,
                   const std::function<void(const std::string& address)>& setEmailOfMonitors);

}  // namespace korvane
