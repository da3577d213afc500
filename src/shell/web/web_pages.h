// Room `web`: everything that uses the website: help, version check, feedback.
//
// The website: its addresses, the pages that commands open, the browser that shows them, and the check for a newer version.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "engine/http_requester.h"
#include "platform/operator.h"
#include "platform/processes.h"
#include "store/ini_file.h"

namespace korvane {

// Every web and mail address that the program uses. The host is reserved for documentation until there is a real one.

/// The folder of the product's pages, without a slash at the end.
inline constexpr std::string_view kWebsite = "https://www.example.com";

/// Requested over plain HTTP, as its scheme says.
inline constexpr std::string_view kVersionFileAddress = "http://www.example.com/zshared/version.txt";
inline constexpr std::string_view kDownloadPageAddress = "https://www.example.com/download.asp";
inline constexpr std::string_view kInstallerAddress = "https://www.example.com/download/korvanecore.deb";
inline constexpr std::string_view kFeedbackAddress = "https://www.example.com/zshared/feedback.asp";
inline constexpr std::string_view kTellAFriendAddress = "https://www.example.com/zshared/tellafriend.asp";

inline constexpr std::string_view kDatabaseHelpAddress = "https://www.example.com/korvane/database-help.htm";

/// The mailbox of the program's makers.
inline constexpr std::string_view kContactAddress = "korvane@example.com";

/// Named after the command that opens the page.
enum class WebPage { mnuHelpWeb, mnuHelpFeatures, mnuTerms, AboutLink, ServiceHelp, ShutdownHelp, RulesHelp };

class WebPages {
public:
    struct Ports {
        Processes& processes;
        Operator& person;
        IniFile& settingsFile;
    };

    /// The initial help address is that of the help page.
    explicit WebPages(const Ports& ports);

    const std::string& GetHelpURL() const { return helpUrl_; }
    void SetHelpURL(const std::string& text) { helpUrl_ = text; }

    /// How to show frmHelp. Without it the page is opened anyway.
    void OnShow(std::function<void()> frmHelp_Show) { frmHelp_Show_ = std::move(frmHelp_Show); }

    /// Both set the help address and show frmHelp, which opens it.
    void Show(WebPage page);
    void Show(const std::string& address);

    /// Opens the help address, as frmHelp does when it loads. Returns whether a browser was started; if not, the operator has
    /// been notified.
    bool OpenHelpURL();
    /// Opens any address in the same way, but without checking first whether there is a browser.
    bool OpenAddress(const std::string& address);

    /// Returns whether the user has a browser. The first one notifies the operator if there is none.
    bool TheirBrowser();
    bool TheirBrowser2();
    bool IsInternetExplorerBrowser();
    /// Returns the kind of browser, in the words of the feedback page.
    std::string BrowserType();

private:
    Ports ports_;
    std::string helpUrl_;
    std::function<void()> frmHelp_Show_;
};

/// Checks whether this is the newest version, by the version file of the website, and reports the result to the operator. Waits
/// through the event pump for up to some seconds, so it must outlive the windows whose commands call it.
class VersionCheck {
public:
    /// `version` is "major.minor.revision" of this program.
    VersionCheck(HttpRequester& http, Operator& person, WebPages& pages, std::string version)
        : http_(http), person_(person), pages_(pages), version_(std::move(version)) {}

    /// The command that checks for a new version: checks, and then reports or asks. Does nothing while it is already running.
    void CheckForVersion();

private:
    struct LatestVersion {
        bool isLatest = true;
        std::string strLatest;    ///< empty when the file contains none
        std::string strFeatures;  ///< the whole rest of the file, however long
    };
    LatestVersion IsLatestVersion();

    HttpRequester& http_;
    Operator& person_;
    WebPages& pages_;
    std::string version_;
    bool checking_ = false;
};

}  // namespace korvane
