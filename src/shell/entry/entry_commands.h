// Texts and small rules of the editor's commands for mail, programs, traces and the reset.
#pragma once

#include <string>

#include "platform/files.h"

namespace korvane {

extern const char* const kNoRecipientMessage;

/// The text before the command.
extern const char* const kTestFailureCommand;
extern const char* const kTestUpCommand;
std::string TestCommandQuestion(const std::string& question, const std::string& command);

/// Returns the command line that starts the file at `path`. A name without an extension whose file does not exist means the
/// program with ".exe".
std::string CommandOfFile(Files& files, const std::string& path);

std::string NoTraceMessage(const std::string& name);
std::string ResetQuestion(const std::string& name);

}  // namespace korvane
