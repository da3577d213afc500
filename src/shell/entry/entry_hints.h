// Texts in the editor's status line: the help on a page or an input, and explanations of what was just typed.
#pragma once

#include <string>
#include <string_view>

#include "shell/entry/entry_fields.h"

namespace korvane {

/// "Server", "E-Mail", "Down Times", "Authentication", "Scan Text", "Commands"; empty for anything else.
std::string_view HelpOnPage(std::string_view page);

/// Help by the name of the control; empty if there is none.
std::string_view HelpOnInput(std::string_view control);

extern const std::string_view kNewEntryHint;

/// Explains what must come back for the check to pass, as typed so far.
std::string ExplainExpectedText(const EntryFields& fields);

/// Explains how the name will be shown.
std::string ExplainDisplayName(const EntryFields& fields);

/// Explains when the entry is not checked each day, according to down time 1 or 2 as typed so far.
std::string ExplainDownTime(const std::string& time, const std::string& minutes);

/// Returns "Seconds.  (1.5 minutes).".
std::string IntervalInMinutes(const std::string& seconds);

/// Why a box whose value the type determines cannot be changed, and what to do about it.
extern const std::string_view kFixedPortMessage;
extern const std::string_view kFixedRequestMessage;
extern const std::string_view kFixedExpectedTextMessage;

}  // namespace korvane
