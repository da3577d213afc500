// The commands of the settings dialog for tests, resets and the proxy, and the texts of its reactions.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "shell/options/options_inputs.h"
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
inline constexpr std::string_view kRestartTested =
    "IF YOU CLICKED YES, your computer should be shutting down. If not, the shutdown command failed.  "
    "Verify whether you have the file 'shutdown.exe' on your computer.  "
    "If so, it should be located in the same directory where Korvane is installed 'korvanecore.exe'";

/// The reactions to the marks of the restart.
inline constexpr std::string_view kRestartsThisMachine =
    "Select this option ONLY when you've installed Korvane on the web server (or important server) computer.  "
    "To shutdown a remote computer, check out the help topics.";
inline constexpr std::string_view kDoesNotRestart =
    "Korvane will not reboot THIS machine (the one this program is running on), when a server failure occurs.  "
    "This is the option to choose when Korvane is NOT installed on the web server (or important server) machine.";
inline constexpr std::string_view kRestartsForAny = "Korvane will restart this computer if ANY server failes (x times in a row).";
inline constexpr std::string_view kRestartsForAll =
    "Korvane will restart this computer when ALL servers are failing.  "
    "If a server fails x times in a row and all other server entries are failing or have failed x times in a row, "
    "this computer will be restarted";

enum class OptionsReset { Summary, ResponseData, All };

/// Asks without waiting; after a Yes it resets all entries and generates the reports again.
void ResetForAll(const Desk& desk, OptionsReset reset);

/// Returns a chosen path without its file name.
std::string FolderOfFile(const std::string& path);

std::string ProxyDetectedText(const std::string& detected);

struct ProxyBoxes {
    std::optional<std::string> name;  ///< nothing: the box stays unchanged
    std::string port;
};

/// Converts the detected text, such as "host:80", for the command that sets the proxy. The name is complete if the port has two
/// digits; it loses one character at its end for every further digit, which the operator corrects by hand.
ProxyBoxes ProxyFromDetected(const std::string& detected);

/// Returns whether the name as typed so far gets the advice below. It is stored anyway.
bool LacksProxyScheme(const std::string& name);
inline constexpr std::string_view kProxySchemeMessage =
    "Proxy server must begin with http:// if you use any value for the proxy server";

/// Shown in the status line after each change of the name.
inline constexpr std::string_view kProxyChangedHint =
    "If you change the proxy server / proxy port, you must click OK, shut down Korvane, and restart it for the changes to take "
    "effect!";
/// Shown after a changed name was saved.
inline constexpr std::string_view kProxyChangedMessage =
    "You must shutdown and restart Korvane for any proxy server settings changes to take effect.";

/// The status if there is no service manager.
inline constexpr std::string_view kNoServiceHint =
    "You are Not running Windows NT/XP/2000/2003.  You can not install Korvane as a service for this reason, but you can add "
    "Korvane to the StartUp group so it starts each time Windows Starts.  "
    "Do that by Clicking on the 'Add Korvane to the Startup Group' Checkbox.";

/// About the initial text of the mail server box if none is set.
std::string NoMailServerHint();
std::string NoMailServerMessage();

}  // namespace korvane
