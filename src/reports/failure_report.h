// The failures of one server, newest first, as a page; and the trimming of those records, so that they never grow without limit.
#pragma once

#include <memory>
#include <string>

#include "platform/connection.h"
#include "reports/report_folder.h"

namespace korvane {

class FailureReport {
public:
    FailureReport(Store& store, ReportFolder& folder) : store_(store), folder_(folder) {}

    /// Writes "failure<id>.htm", which may have more rows than memory has room for, and trims. A failure is added to `strErr`; one
    /// of the page does not keep the records from being trimmed.
    void PublishFailureReport(const std::string& id, const std::string& idCustomer, const std::string& strGroup,
                              Connection& connection, std::string& strErr);

    /// A server with more than 50 records keeps its 40 newest; the page of this run still shows all of them. Throws Error.
    void Trim(const std::string& id, Connection& connection);

private:
    void Publish(const std::string& id, const std::string& idCustomer, const std::string& strGroup, Connection& connection);
    void TakeRows(const std::string& query, Connection& connection, const TakeText& take);
    std::unique_ptr<Recordset> RecordsOf(const std::string& id, Connection& connection);

    Store& store_;
    ReportFolder& folder_;
};

}  // namespace korvane
