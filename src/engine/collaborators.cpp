#include "engine/collaborators.h"

namespace korvane {

std::string NoFailureActions::DoFailureStateStuff(Connection&, Recordset& rs, const std::string&) {
    log_.Info("frmMonitor:DoFailureStateStuff: " + rs.Fields("strDesc").Value().Text() +
              " went down. No notification, traceroute or command: this version has none.");
    return "None.";
}

void NoFailureActions::DoUpAgainStuff(Recordset& rs) {
    log_.Info("frmMonitor:DoUpAgainStuff: " + rs.Fields("strDesc").Value().Text() +
              " is up again. No notification or command: this version has none.");
}

std::string NoReports::PublishReports() {
    return "This version does not publish reports.";
}

}  // namespace korvane
