// Texts of the editor: explanations of what was just typed, and messages and questions of its commands.
#pragma once

#include <string>

#include "shell/entry/entry_inputs.h"

namespace korvane {

/// Explains what must come back for the check to pass, as typed so far.
std::string ExplainExpectedText(const EntryFields& fields);

/// Explains how the name will be shown.
std::string ExplainDisplayName(const EntryFields& fields);

/// Explains when the entry is not checked each day, according to down time 1 or 2 as typed so far.
std::string ExplainDownTime(const std::string& time, const std::string& minutes);

/// Returns "Nobody is notified: ..." as long as no mail would be sent, otherwise an empty text. Only the outbox sends to the second
/// list alone.
std::string ExplainRecipients(const EntryFields& fields, bool outboxIsOn);

/// Returns in one line what follows from a number that is allowed and odd, such as 0 tries; empty for ordinary ones. Web pages on a port above
/// `highestWebPort` cannot be checked.
std::string ExplainNumbers(const EntryFields& fields, int highestWebPort);

/// Returns "Seconds.  (1.5 minutes).".
std::string IntervalInMinutes(const std::string& seconds);

/// Returns the line above the box for the text that must appear in an answer. `server` is the entry's address as the editor shows it.
std::string TextToFindHeading(const std::string& server);

/// Returns the explanation below it. `upperCase` is the same text in upper case.
std::string TextToFindHelp(const std::string& text, const std::string& upperCase);

/// `question` is the text before the command.
std::string TestCommandQuestion(const std::string& question, const std::string& command);

std::string NoTraceMessage(const std::string& name);
std::string ResetQuestion(const std::string& name);

}  // namespace korvane
