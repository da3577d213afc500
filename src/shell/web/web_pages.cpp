#include "shell/web/web_pages.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"
#include "shell/run/message_title.h"
#include "shell/web/web_addresses.h"
#include "store/settings.h"

namespace korvane {
namespace {

constexpr const char* kPageExtension = "htm";

struct PageOfCommand {
    std::string_view path;
    WebPage page;
    bool toldUniqueid = false;
};

constexpr PageOfCommand kPages[] = {
    {"/help.asp", WebPage::mnuHelpWeb},          {"/features.asp?id=", WebPage::mnuHelpFeatures, true},
    {"/terms.asp", WebPage::mnuTerms},           {"/default.asp?id=", WebPage::AboutLink, true},
    {"/help.asp#service", WebPage::ServiceHelp}, {"/help.asp#shutdown", WebPage::ShutdownHelp},
    {"/help.asp?q_id=62", WebPage::RulesHelp},
};

}  // namespace

std::string AddressOf(WebPage page, const std::string& uniqueid) {
    const auto* found = std::find_if(std::begin(kPages), std::end(kPages), [page](const auto& row) { return row.page == page; });
    return std::string(kWebsite) + std::string(found->path) + (found->toldUniqueid ? uniqueid : "");
}

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

}  // namespace korvane
