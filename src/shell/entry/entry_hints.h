// What the status line of the editor says: the help on a page or an input, and the explanations of what was just typed.
#pragma once

#include <string>
#include <string_view>

#include "shell/entry/entry_fields.h"

namespace korvane {

/// "Server", "E-Mail", "Down Times", "Authentication", "Scan Text", "Commands"; blank for anything else.
std::string_view HelpOnPage(std::string_view page);

/// By the name of the control; blank for one without help.
std::string_view HelpOnInput(std::string_view control);

extern const std::string_view kNewEntryHint;

/// What must come back for the check to pass, as typed so far.
std::string ExplainExpectedText(const EntryFields& fields);

/// How the name will be shown.
std::string ExplainDisplayName(const EntryFields& fields);

/// When the entry is left alone each day, by down time 1 or 2 as typed so far.
std::string ExplainDownTime(const std::string& time, const std::string& minutes);

/// "Seconds.  (1.5 minutes)."
std::string IntervalInMinutes(const std::string& seconds);

/// Why a box that a type fixes cannot be changed, and what to do about it.
extern const std::string_view kFixedPortMessage;
extern const std::string_view kFixedRequestMessage;
extern const std::string_view kFixedExpectedTextMessage;

}  // namespace korvane
