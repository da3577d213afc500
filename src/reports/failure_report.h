// The page with the failures of one server, newest first, and the trimming of those records, so that they never grow without
// limit.
#pragma once

#include <memory>
#include <string>

#include "platform/connection.h"
#include "reports/report_folder.h"

namespace korvane {

class FailureReport {
public:
    FailureReport(Store& store, ReportFolder& folder) : store_(store), folder_(folder) {}

    /// Writes "failure<id>.htm", which may have more rows than fit in memory, and trims the records. An error is added to
    /// `strErr`; an error of the page does not prevent the trimming.
    void PublishFailureReport(const std::string& id, const std::string& idCustomer, const std::string& strGroup,
                              Connection& connection, std::string& strErr);

    /// If a server has more than 50 records, keeps its 40 newest; the page of this run still shows all of them. Throws Error.
    void Trim(const std::string& id, Connection& connection);

private:
    void Publish(const std::string& id, const std::string& idCustomer, const std::string& strGroup, Connection& connection);
    void TakeRows(const std::string& query, Connection& connection, const TakeText& take);
    std::unique_ptr<Recordset> RecordsOf(const std::string& id, Connection& connection);

    Store& store_;
    ReportFolder& folder_;
};

}  // namespace korvane
