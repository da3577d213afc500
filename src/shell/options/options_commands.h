// The test and reset commands of the settings dialog, with their texts.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "shell/options/options_fields.h"
#include "shell/run/desk.h"

namespace korvane {

/// Asks for one line of text without waiting; `answered` receives it, empty when the operator cancels. Nothing is called when the
/// parent window of the question closes before that.
using AskText = std::function<void(const std::string& title, const std::string& prompt,
                                   std::function<void(const std::string& text)> answered)>;

/// Puts the mail settings of the inputs into the collection, asks for both addresses and returns; sends once there are answers.
/// `setStatus` receives the progress. Sending waits through the event pump, so the window may be gone when `setStatus` and `done`
/// are called. `done` comes last, unless a question was never answered.
void TestMailSettings(const Desk& desk, const OptionsFields& fields, const AskText& ask,
                      const std::function<void(const std::string& text)>& setStatus, const std::function<void()>& done);

/// The status after a test of the restart.
extern const std::string_view kRestartTested;

/// The reactions to the marks of the restart.
extern const std::string_view kRestartsThisMachine;
extern const std::string_view kDoesNotRestart;
extern const std::string_view kRestartsForAny;
extern const std::string_view kRestartsForAll;

enum class OptionsReset { Summary, ResponseData, All };

/// Asks without waiting; after a Yes it resets all entries and generates the reports again.
void ResetForAll(const Desk& desk, OptionsReset reset);

/// Returns a chosen path without its file name.
std::string FolderOfFile(const std::string& path);

}  // namespace korvane
