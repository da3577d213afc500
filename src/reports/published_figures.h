// The figures of the entries for other programs, beside the pages in the report folder: "metrics.prom", in the text exposition format
// 0.0.4 that node exporters collect, and "status.json" (RFC 8259). Only while the setting Figures is "True".
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "base/datetime.h"
#include "platform/connection.h"
#include "reports/pages.h"
#include "reports/report_folder.h"

namespace korvane {

class PublishedFigures {
public:
    /// `dir` is the folder of the database. All referenced objects must outlive this.
    PublishedFigures(const ReportPorts& ports, ReportFolder& folder, std::string dir)
        : ports_(ports), folder_(folder), dir_(std::move(dir)) {}

    bool IsOn() const;

    /// Writes both files, each as a whole, from one query. Throws Error.
    void Write(Connection& connection);

    /// Called after each turn of the working loop. Writes both files when a minute has passed since they were written last.
    /// `lastCheck` is the UTC time of the loop's last finished check. A problem is shown in the status line once. Throws nothing.
    void NoteTurn(std::optional<DateTime> lastCheck);

private:
    std::string Problem();

    const ReportPorts& ports_;
    ReportFolder& folder_;
    std::string dir_;
    std::optional<DateTime> lastTurn_;                  ///< in UTC
    std::optional<DateTime> lastCheck_;                 ///< in UTC
    std::optional<std::chrono::milliseconds> written_;  ///< tick count of the clock
    std::string toldProblem_;
};

}  // namespace korvane
