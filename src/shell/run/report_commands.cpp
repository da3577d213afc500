#include "shell/run/report_commands.h"

#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/operator.h"
#include "store/database_files.h"

namespace korvane {
namespace {

/// Longest message, in characters: each group may have its own error.
constexpr std::size_t kMostOfAnError = 1000;

}  // namespace

std::string ReportCommands::PublishReports() {
    std::string strErr;
    ports_.reports.PublishReports(false, strErr);
    return strErr;
}

void ReportCommands::PublishReports(bool bQuiet) {
    std::string strErr;
    ports_.reports.PublishReports(bQuiet, strErr);
    if (strErr.empty()) return;
    const std::string text = "Reporting Error: " + strErr;
    ports_.status.setStatusMSG(text);
    ports_.person.ShowError(kMessageTitle, Left(text, kMostOfAnError));
}

void ReportCommands::DisplayReport(const std::string& idCustomer, const std::string& strGroup) {
    if (!ports_.pages.TheirBrowser2()) {
        ports_.person.ShowMessage(kMessageTitle,
                                  "We're sorry, but Korvane can't open up your browser to display the report "
                                  "because you have not chosen a default browser.");
        return;
    }
    const std::string page = ports_.reports.PageOf(idCustomer, strGroup);
    bool exists = false;
    IgnoreErrors([&] { exists = ports_.files.Exists(page); });
    if (!exists) PublishReports(true);
    ports_.pages.OpenAddress(page);
}

void ReportCommands::cmdReports_Click() {
    std::string strErr;
    const bool connected = IsDBConnectOK(ports_.store, ports_.files, dir_, strErr);
    ports_.person.ClearStatus();
    PublishReports(connected);
    DisplayReport("0", "");
}

}  // namespace korvane
