#include "shell/setup/first_run.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <string_view>

#include "base/text.h"
#include "shell/entry/fresh_entry.h"
#include "store/database_files.h"

namespace korvane {
namespace {

// Names reserved for examples (RFC 2606).
constexpr std::string_view kSampleAddress = "someone@example.com";

constexpr std::string_view kFirstPage = "/default.htm";
constexpr std::string_view kSubject = "Server XXX Down.";

/// Each is inserted above the previous ones.
constexpr std::string_view kHints[] = {"5) Click the 'NOW' button (upper left) to begin monitoring right now!",
                                       "4) Click the 'ADD' button  (top row of buttons) to create a new server entry.",
                                       "3) Click the [X] in the upper right corner of the window to minimize Korvane.",
                                       "2) Double-Click the list entry to edit the server settings.",
                                       "1) Resize The Korvane Window. Next time you start it, it remembers the last size."};

WizardPage QuestionOnUrl() {
    return {.title = "Korvane Setup Question 1 of 3",
            .prompt =
                "Since this is the first time running Korvane, here are a few questions to get you started. \r\n\r\n"
                "What is the URL of page on your website (e.g. " +
                std::string(kSampleWebHost) + std::string(kFirstPage) + ")?",
            .defaultText = std::string(kSampleWebHost) + std::string(kFirstPage),
            .blankAnswerText = "Please type in a URL to get started."};
}

WizardPage QuestionOnEmail() {
    return {.title = "Korvane Setup Question 2 of 3",
            .prompt =
                "If the URL can't be reached, email will be sent to an individual.\r\n\r\n"
                "What Email address would you like to use for this?",
            .defaultText = std::string(kSampleAddress),
            .blankAnswerText = "Please type in an email address."};
}

WizardPage QuestionOnMailServer(const std::string& address) {
    const auto at = address.find('@');
    return {.title = "Korvane Setup Question 3 of 3",
            .prompt =
                "To get email sent to you, you need to specify the name of your mail server (SMTP).\r\n\r\n"
                "Don't worry if you don't know it now.  You can configure it later.  "
                "You can look at your browser or other email client to find the name of the SMTP server (do this now or later)."
                "\r\n\r\n"
                "What is the name of your mail server (SMTP mail)?",
            .defaultText = at == std::string::npos ? std::string(kSampleMailHost) : "mail." + address.substr(at + 1),
            .blankAnswerText = "Please type your SMTP server name."};
}

WizardPage ServiceInstalled(const std::string& serviceName) {
    return {.title = "Korvane Setup Info 1 of 3",
            .prompt = "The '" + serviceName +
                      "' automatic service was added to the Service manager "
                      "so Korvane restarts as a service when Windows restarts. "
                      "You can un-install the Korvane service by Right-Clicking on the Korvane Icon in your system tray and "
                      "unchecking the 'Install as Service' Choice.",
            .blankAnswerText = "Korvane configured as a Service.",
            .textboxVisible = false};
}

WizardPage MonitoringBegins(const std::string& address) {
    return {
        .title = "Korvane Setup Info 2 of 3",
        .prompt = "After clicking OK, Korvane will start to monitor the web server '" + address + "' (in about two minutes). ",
        .textboxVisible = false};
}

WizardPage GettingStarted() {
    return {.title = "Korvane Setup Info 3 of 3",
            .prompt =
                "To get started\r\n"
                "1) Resize Korvane to fit your screen \r\n"
                "2) Double-Click the entry in the list to edit it \r\n"
                "3) Click the NOW button to start monitoring right away.\r\n"
                "4) Click the [X] in the upper right hand corner to minimize Korvane.",
            .blankAnswerText = "Getting Started.",
            .textboxVisible = false};
}

void WriteDefaultEntry(Recordset& row, const std::string& id, DateTime now) {
    const ColumnValues own{{"id", id},
                           {"strGroup", "Popular_Sites"},
                           {"strEmailList1", kSampleAddress},
                           {"strEmailFrom", kSampleAddress},
                           {"strEmailText", kSubject},
                           {"nIntervalSeconds", 120}};
    for (const auto& [name, value] : FreshEntry(own, now))
        row.Fields(name) = value;
}

std::string AddressOf(const std::string& answer) {
    return ReplaceAll(ReplaceAll(ToLower(answer), "http://", ""), "https://", "");
}

// Removes these letters wherever they are: the result is only a name to distinguish entries, which the operator can change.
std::string NameOf(const std::string& address) {
    return ReplaceAll(ReplaceAll(ReplaceAll(address, ".", ""), "com", ""), "www", "");
}

class FirstRun {
public:
    FirstRun(const Desk& desk, const AskPage& ask) : desk_(desk), ask_(ask) {}

    /// Returns the operator's address, empty when there was no answer.
    std::string SetUp() {
        MakeEntry();
        AskForMailServer();
        if (desk_.service.IsWindows95()) StartWithTheDesktop();
        if (desk_.service.IsWindowsNT()) StartAsService();
        desk_.settings.Save();
        ask_(MonitoringBegins(strAddress_IP_));
        ask_(GettingStarted());
        for (const std::string_view hint : kHints)
            desk_.status.setStatusMSG(std::string(hint));
        return email_;
    }

private:
    // Returns the answer as typed or pasted, without what no address contains: spaces around it, and invisible characters that no
    // settings file stores.
    std::string Ask(const WizardPage& page) const {
        std::string answer = ask_(page);
        std::erase_if(answer, [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; });
        return Trim(answer);
    }

    void MakeEntry() {
        const std::string url = Ask(QuestionOnUrl());
        const auto conn = OpenDatabase(desk_.store, desk_.dir);
        const auto rs = OpenRows(desk_.store, *conn, "SELECT * from servers");
        if (rs->RecordCount() == 0) rs->AddNew();
        WriteDefaultEntry(*rs, desk_.ids.NewServerID(), desk_.clock.Now());
        WriteServer(*rs, url);
        rs->Update();
        WriteEmail(*rs, Ask(QuestionOnEmail()));
        rs->Update();
        rs->Close();
        conn->Close();
        desk_.person.RefreshURLList();
    }

    void WriteServer(Recordset& row, const std::string& url) {
        strAddress_IP_ = kSampleWebHost;
        const std::string address = AddressOf(url);
        if (address.empty()) return;  // "http://" alone is not a server either
        const std::string name = NameOf(address);
        strAddress_IP_ = address;
        row.Fields("strAddress_IP") = address;
        row.Fields("strDesc") = name;
        row.Fields("strEmailText") = ReplaceAll(kSubject, "XXX", name);
    }

    void WriteEmail(Recordset& row, const std::string& email) {
        if (email.empty()) return;
        email_ = email;
        row.Fields("strEmailList1") = email;
        row.Fields("strEmailFrom") = email;
    }

    void AskForMailServer() {
        const std::string server = Ask(QuestionOnMailServer(email_));
        if (!server.empty()) desk_.collection.setKvSettingsColValue("Server", server);
    }

    void StartWithTheDesktop() {
        desk_.service.AddOrRemoveGroupShortCut(true);
        desk_.service.CheckTrayStartup();
    }

    // The mark is set even if the installation failed: the operator finds it and unchecks it to try again.
    void StartAsService() {
        const std::string name = desk_.collection.getKvSettingsColVal("ServiceName");
        const bool installed = desk_.service.InstallService(name, true);
        if (installed) ask_(ServiceInstalled(name));
        desk_.collection.setKvSettingsColValue("Service", "True");
        desk_.service.CheckTrayNTService();
        if (installed) desk_.service.WarnIfInStartupGroup();
    }

    const Desk& desk_;
    const AskPage& ask_;
    std::string strAddress_IP_;
    std::string email_;  ///< empty: the question was not answered
};

}  // namespace

void SetUpFirstRun(const Desk& desk, const AskPage& ask,
                   const std::function<void(const std::string& address)>& setEmailOfMonitors) {
    try {
        setEmailOfMonitors(FirstRun(desk, ask).SetUp());
    } catch (const std::exception& error) {
        desk.log.WriteLog(kLogFatal, kLogError, "First-run setup ended early: " + std::string(error.what()));
    }
}

}  // namespace korvane
