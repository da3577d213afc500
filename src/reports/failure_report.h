// The failures of one server, newest first, as a page; and the trimming of those records, so that they never grow without limit.
#pragma once

#include <string>

#include "platform/connection.h"
#include "reports/report_folder.h"

namespace korvane {

class FailureReport {
public:
    FailureReport(Store& store, ReportFolder& folder) : store_(store), folder_(folder) {}

    /// Writes "failure<id>.htm". A server with more than 50 records keeps its 40 newest; the page of this run still shows all of
    /// them. A failure ends the routine and is added to `strErr`.
    void PublishFailureReport(const std::string& id, const std::string& idCustomer, const std::string& strGroup,
                              Connection& connection, std::string& strErr);

private:
    void Publish(const std::string& id, const std::string& idCustomer, const std::string& strGroup, Connection& connection);
    void Trim(const std::string& query, Connection& connection);

    Store& store_;
    ReportFolder& folder_;
};

}  // namespace korvane
