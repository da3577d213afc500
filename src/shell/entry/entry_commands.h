// The words and the small rules of the editor's commands for mail, programs, traces and the reset.
#pragma once

#include <string>

#include "platform/files.h"

namespace korvane {

extern const char* const kNoRecipientMessage;

/// Up to the command.
extern const char* const kTestFailureCommand;
extern const char* const kTestUpCommand;
std::string TestCommandQuestion(const std::string& question, const std::string& command);

/// The command line that starts the file at `path`. A name without an extension that is not there means the program with ".exe".
std::string CommandOfFile(Files& files, const std::string& path);

std::string NoTraceMessage(const std::string& name);
std::string ResetQuestion(const std::string& name);

}  // namespace korvane
