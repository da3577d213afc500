// What the settings dialog tries out and resets, and the words that go with it.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "shell/options/options_fields.h"
#include "shell/run/desk.h"

namespace korvane {

/// Asks for one line of text and goes on; `answered` gets it, blank when the operator thinks better of it. Nothing is called when
/// the window over which the question stands goes before that.
using AskText = std::function<void(const std::string& title, const std::string& prompt,
                                   std::function<void(const std::string& text)> answered)>;

/// Puts the mail settings of the inputs into the collection, asks for both addresses and goes on; once there are answers it
/// sends. `setStatus` hears how it goes. Sending waits through the event pump, so anything may have happened to the window when
/// `setStatus` and `done` are called. `done` comes last, unless a question was never answered.
void TestMailSettings(const Desk& desk, const OptionsFields& fields, const AskText& ask,
                      const std::function<void(const std::string& text)>& setStatus, const std::function<void()>& done);

/// The status behind a test of the restart.
extern const std::string_view kRestartTested;

/// The reactions to the marks of the restart.
extern const std::string_view kRestartsThisMachine;
extern const std::string_view kDoesNotRestart;
extern const std::string_view kRestartsForAny;
extern const std::string_view kRestartsForAll;

enum class OptionsReset { Summary, ResponseData, All };

/// Asks and goes on; after a Yes it resets all entries and makes the reports anew.
void ResetForAll(const Desk& desk, OptionsReset reset);

/// What is left of a chosen path without its file.
std::string FolderOfFile(const std::string& path);

}  // namespace korvane
