// Room `web`: everything that goes to the website: help, version check, feedback.
//
// The pages of the website that commands lead to, and the browser that opens them.
#pragma once

#include <functional>
#include <string>

#include "platform/operator.h"
#include "platform/processes.h"
#include "store/ini_file.h"

namespace korvane {

/// By the command that leads there.
enum class WebPage { mnuHelpWeb, mnuHelpFeatures, mnuTerms, AboutLink, ServiceHelp, ShutdownHelp, RulesHelp };

/// `uniqueid` is that of this installation; some of the pages are told it.
std::string AddressOf(WebPage page, const std::string& uniqueid);

class WebPages {
public:
    struct Ports {
        Processes& processes;
        Operator& person;
        IniFile& settingsFile;
    };

    /// The help address is that of the help page at first.
    explicit WebPages(const Ports& ports);

    const std::string& GetHelpURL() const { return helpUrl_; }
    void SetHelpURL(const std::string& text) { helpUrl_ = text; }

    /// How frmHelp is shown. Without it the page is opened all the same.
    void OnShow(std::function<void()> frmHelp_Show) { frmHelp_Show_ = std::move(frmHelp_Show); }

    /// Set the help address and show frmHelp, which opens it.
    void Show(WebPage page);
    void Show(const std::string& address);

    /// Opens the help address, as frmHelp does when it loads. Whether a browser was started; if not, the operator has been told.
    bool OpenHelpURL();
    /// Opens any address, the same way but without the question whether there is a browser.
    bool OpenAddress(const std::string& address);

    /// Whether the person at the desk has a browser. The first tells the operator when there is none.
    bool TheirBrowser();
    bool TheirBrowser2();
    bool IsInternetExplorerBrowser();
    /// The kind of browser, in the words of the feedback page.
    std::string BrowserType();

private:
    Ports ports_;
    std::string helpUrl_;
    std::function<void()> frmHelp_Show_;
};

}  // namespace korvane
