#include "reports/pipeline.h"

#include <exception>

#include "base/ignore_errors.h"
#include "base/raised_flag.h"
#include "base/text.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kGroupsHead =
    "<table width=90% border=0 cellpadding=2 cellspacing=1><tr><td bgcolor=#CCCCCC align=center><b>Group Names:  Click on a link "
    "to "
    "see reports for each server group (Company or Network)</b></td></tr>";

/// Failures from before the start get their page in the first publish if they are at most this old.
constexpr std::chrono::days kRecentAtStart{5};

std::string GroupRow(const Publication& publication, const std::string& strGroup) {
    return "\r\n<tr><td><a href=" + publication.outside.Link(strGroup) + "/summary.htm>Summary Report for " +
           publication.Shown(strGroup) + "</a></td></tr>";
}

}  // namespace

Reports::Reports(const Ports& ports, std::string dir)
    : ports_(ports),
      dir_(std::move(dir)),
      folder_(ports.files, ports.clock, ports.settings, dir_),
      figures_(ports_, folder_, dir_),
      lastPublish_(ports.clock.Now() - kRecentAtStart) {}

void Reports::PublishReports(bool bQuiet, std::string& strErr) {
    strErr.clear();
    if (publishing_) {
        strErr = "The reports are being published already.";
        return;
    }
    const RaisedFlag guard(publishing_);
    const WaitCursor cursor(ports_.person);
    try {
        PublishAll(bQuiet, strErr);
        lastPublish_ = ports_.clock.Now();
    } catch (const std::exception& error) {
        strErr = " Err - PublishReports: " + std::string(error.what()) + strErr;
        ports_.status.setStatusMSG("PublishReports Error: " + strErr);
    }
}

bool Publication::OrAdd(const char* routine, const std::function<void()>& work) const {
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        strErr += routine + std::string(error.what());
        return false;
    }
}

bool Publication::OrSay(const char* routine, const std::function<void()>& work) const {
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        status.setStatusMSG(routine + std::string(error.what()));
        return false;
    }
}

std::unique_ptr<Connection> Reports::Connect() {
    auto connection = OpenDatabase(ports_.store, dir_);
    return connection;
}

void Reports::PublishAll(bool bQuiet, std::string& strErr) {
    ports_.status.setStatusMSG("Connecting to Database...");
    const auto connection = Connect();
    const bool stores = ports_.duty == nullptr || ports_.duty->Take();
    const Publication publication{ports_, folder_, *connection, bQuiet, lastPublish_, strErr, stores};
    const auto rs = publication.Read("SELECT distinct idCustomer FROM Servers order by idCustomer");
    ports_.status.setStatusMSG("-->" + std::to_string(rs->RecordCount()) + " distinct customers returned.");
    if (rs->RecordCount() > 1) ports_.person.SetCustomerCount(rs->RecordCount());
    for (; !rs->Eof(); rs->MoveNext()) {
        ports_.events.DoEvents();
        const std::string idCustomer = TextOf(*rs, "idCustomer");
        ports_.status.setStatusMSG("   Reading Server Records " + idCustomer + "...");
        publication.OrAdd(" Err - PublishReportsPerCust: ", [&] { PublishReportsPerCust(publication, idCustomer); });
    }
    if (figures_.IsOn()) publication.OrAdd(" Err - PublishFigures: ", [&] { figures_.Write(*connection); });
}

std::unique_ptr<Recordset> Reports::GroupsOf(const std::string& idCustomer, Connection& connection) {
    return OpenRows(ports_.store, connection,
                    "SELECT distinct strGroup, idCustomer FROM Servers where idCustomer = " + idCustomer + " order by strGroup",
                    CursorType::Static, LockType::BatchOptimistic);
}

void Reports::PublishReportsPerCust(const Publication& publication, const std::string& idCustomer) {
    const auto rs = GroupsOf(idCustomer, publication.connection);
    const int groups = rs->RecordCount();
    ports_.status.setStatusMSG(std::to_string(groups) + " distinct server groups returned.");
    std::string table(kGroupsHead);
    for (; !rs->Eof(); rs->MoveNext()) {
        ports_.events.DoEvents();
        const std::string strGroup = TextOf(*rs, "strGroup");
        table += GroupRow(publication, strGroup);
        PublishSummaryReport(publication, strGroup);
    }
    rs->Close();
    table += "</table>";
    const std::string page = folder_.Merge(kGroupTemplate, {table, groups, ""});
    const std::string path = PageOf(idCustomer, "");
    folder_.CreateFolder(folder_.CustomerFolder(idCustomer));
    if (!publication.bQuiet) {
        ports_.events.DoEvents();
        ports_.status.setStatusMSG("Publishing Group Report " + path);
    }
    folder_.Write(path, page);
}

std::string Reports::PageOf(const std::string& idCustomer, const std::string& strGroup) {
    if (strGroup.empty()) return folder_.CustomerFolder(idCustomer) + "/groups.htm";
    std::string published = strGroup;
    IgnoreErrors([&] {
        const auto connection = Connect();
        for (const auto rs = GroupsOf(idCustomer, *connection); !rs->Eof(); rs->MoveNext()) {
            if (EqualsNoCase(TextOf(*rs, "strGroup"), strGroup)) published = TextOf(*rs, "strGroup");
        }
    });
    return folder_.CustomerFolder(idCustomer) + "/" + published + "/summary.htm";
}

}  // namespace korvane
