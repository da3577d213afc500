#include "store/alert_path.h"

#include "base/ignore_errors.h"
#include "base/text.h"

namespace korvane {

std::string AlertPath::WarningOf(Recordset& entry) const {
    std::string warning;
    IgnoreErrors([&] {
        const auto isBlank = [&](const char* column) { return Trim(entry.Fields(column).Value().Text()).empty(); };
        if (!entry.Fields("bIsMonitoring").Value().Bool()) return;
        const std::string* server = settings_.Find("Server");
        const bool nobody = isBlank("strEmailList1") && isBlank("strEmailList2");
        if (nobody || server == nullptr || Trim(*server).empty())
            warning = "notifies nobody";
        else
            warning = Problem();
    });
    return warning;
}

std::string AlertPath::Problem() const {
    if (testFailed_) return "test mail failed";
    return proofOverdue_ && safeguards_.IsOn("ProveMail") ? "mail proof overdue" : "";
}

}  // namespace korvane
