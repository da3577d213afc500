#include "shell/web/web_pages.h"

#include <chrono>
#include <cstddef>

#include "base/raised_flag.h"
#include "base/text.h"
#include "platform/operator.h"
#include "store/settings.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kPageExtension = "htm";

struct PageOfCommand {
    std::string_view path;
    bool getsUniqueid = false;  ///< the id of this installation follows
};

/// In the order of WebPage.
constexpr PageOfCommand kPages[] = {
    {"/help.asp"},         {"/features.asp?id=", true}, {"/terms.asp"},        {"/default.asp?id=", true},
    {"/help.asp#service"}, {"/help.asp#shutdown"},      {"/help.asp?q_id=62"},
};

constexpr auto kTimeout = 7s;

// The version file, in characters.
constexpr std::size_t kBeforeVersion = 8;
constexpr std::size_t kVersionLength = 5;
constexpr std::size_t kBeforeFeatures = 14;

/// Longest text of the features in a message box: the file at the address may have any size.
constexpr std::size_t kMostShown = 4000;

std::string AddressOf(WebPage page, const std::string& uniqueid) {
    const PageOfCommand& found = kPages[static_cast<std::size_t>(page)];
    return std::string(kWebsite) + std::string(found.path) + (found.getsUniqueid ? uniqueid : "");
}

std::string_view After(const std::string& text, std::size_t characters) {
    return std::string_view(text).substr(Left(text, characters).size());
}

// An error page instead of the file also has some text there.
bool LooksLikeVersion(const std::string& text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

}  // namespace

WebPages::WebPages(const Ports& ports)
    : ports_(ports), helpUrl_(AddressOf(WebPage::mnuHelpWeb, "")), frmHelp_Show_([this] { OpenHelpURL(); }) {}

void WebPages::Show(WebPage page) {
    Show(AddressOf(page, ports_.settingsFile.Read(kSettingsSection, "uniqueid", "")));
}

void WebPages::Show(const std::string& address) {
    SetHelpURL(address);
    frmHelp_Show_();
}

bool WebPages::OpenHelpURL() {
    if (TheirBrowser()) return OpenAddress(GetHelpURL());
    ports_.person.ShowMessage(kMessageTitle, "Korvane can't open any URL until you configure a default browser.");
    return false;
}

bool WebPages::OpenAddress(const std::string& address) {
    return ports_.processes.OpenPage(
        address, [&person = ports_.person](const std::string&) { person.ShowMessage("URL Failed", "Web Page not Opened"); });
}

bool WebPages::TheirBrowser() {
    if (TheirBrowser2()) return true;
    ports_.person.ShowMessage("Browser Not Found", "Could not find associated Browser");
    return false;
}

bool WebPages::TheirBrowser2() {
    return ports_.processes.HasDefaultProgram(kPageExtension);
}

bool WebPages::IsInternetExplorerBrowser() {
    const std::string browser = ToLower(ports_.processes.DefaultProgram(kPageExtension));
    return Holds(browser, "iexplore.exe") || Holds(browser, "internet explorer");
}

std::string WebPages::BrowserType() {
    if (IsInternetExplorerBrowser()) return "Internet Explorer Browser ";
    return "Other Browser: " + ports_.processes.DefaultProgram(kPageExtension);
}

// Versions are compared as text: "10.0.0" is older than "9.9.9". Without an answer this version counts as the latest.
VersionCheck::LatestVersion VersionCheck::IsLatestVersion() {
    const std::string response =
        http_.getURLData2({.strURL = std::string(kVersionFileAddress), .nTimeout = kTimeout, .nPort = 80}).response;
    if (response.empty()) return {.strLatest = version_, .strFeatures = "Temporarily unavailable...  Please try agian later."};
    LatestVersion found{.strLatest = Left(After(response, kBeforeVersion), kVersionLength),
                        .strFeatures = std::string(After(response, kBeforeFeatures))};
    const std::string latest = Trim(found.strLatest);
    if (!LooksLikeVersion(latest)) found.strLatest.clear();
    found.isLatest = !found.strLatest.empty() && Trim(version_) >= latest;
    return found;
}

void VersionCheck::CheckForVersion() {
    if (checking_) return;
    const RaisedFlag checking(checking_);
    const LatestVersion found = IsLatestVersion();
    if (found.isLatest) {
        person_.ShowMessage(kMessageTitle, "You have the latest version (" + version_ +
                                               ").  It has these features that the previous version did not:\r\n" +
                                               Left(found.strFeatures, kMostShown));
    } else if (found.strLatest.empty()) {
        person_.ShowMessage(
            kMessageTitle,
            "The Korvane Server could not be reached.  Please check your internet connection and try again later.");
    } else {
        const std::string question =
            "The newer version (" + found.strLatest + ") of Korvane is available. \r\nYou have version (" + version_ +
            ")\r\nWould you like to download this version now?\r\nFrom " + std::string(kDownloadPageAddress);
        person_.Ask("A New Version is Available", question, [&pages = pages_] { pages.Show(std::string(kInstallerAddress)); });
    }
}

}  // namespace korvane
