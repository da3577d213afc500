// Room `web`: everything that uses the website: help, version check, feedback.
//
// The pages of the website that commands open, and the browser that shows them.
#pragma once

#include <functional>
#include <string>

#include "platform/operator.h"
#include "platform/processes.h"
#include "store/ini_file.h"

namespace korvane {

/// Named after the command that opens the page.
enum class WebPage { mnuHelpWeb, mnuHelpFeatures, mnuTerms, AboutLink, ServiceHelp, ShutdownHelp, RulesHelp };

/// `uniqueid` is that of this installation; some of the pages receive it.
std::string AddressOf(WebPage page, const std::string& uniqueid);

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

}  // namespace korvane
