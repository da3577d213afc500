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
        else if (testFailed_)
            warning = "test mail failed";
    });
    return warning;
}

}  // namespace korvane
