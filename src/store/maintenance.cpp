#include "store/maintenance.h"

#include "base/error.h"
#include "store/database_files.h"

namespace korvane {
namespace {

const std::string kAllIds = "-1";

// An id becomes part of a query.
void RequireId(const std::string& id) {
    if (id.empty() || id.find_first_not_of("0123456789") != std::string::npos) throw Error("'" + id + "' is no ID.");
}

std::string Of(const std::string& query, std::string_view where, const std::string& id) {
    if (id == kAllIds) return query;
    RequireId(id);
    return query + std::string(where) + id;
}

}  // namespace

// The copy becomes the backup and the file is compacted in place, so that the database exists under its name at every moment, for
// a start after a crash and for other programs that have it open.
void Maintenance::CompactAndRepair(const std::string& file) {
    const std::string copy = dir_ + "/COMPACT" + std::string(kDatabaseFile);
    try {
        ports_.status.setStatusMSG("Compact and repair " + file + " to " + copy);
        const bool replace = ports_.rescue.MayReplaceBackup();
        ports_.store.Compact(file, copy, [&, backup = file + ".BAK"] {
            if (!replace) return;
            RemoveJournals(ports_.files, backup);
            ports_.files.Rename(copy, backup);
        });
        ports_.status.setStatusMSG("Done compacting and repairing database.");
    } catch (const std::exception& error) {
        Report("CompactAndRepair", error.what());
        ports_.rescue.AfterFailedCompaction(error);
    }
}

void Maintenance::ResetAllEventsToNow() {
    InTransaction("ResetAllEventsToNow", [&](Connection& connection) {
        ForEachRow(connection, "SELECT * FROM Servers where bIsMonitoring ", [now = ports_.clock.Now()](Recordset& row) {
            row.Fields("dtNextCheck") = now;
            row.Update();
        });
    });
}

void Maintenance::DeleteServerData(const std::string& id) {
    if (id.empty()) return ports_.log.WriteLog(kLogFatal, kLogError, "DeleteServerData: No ID Specified!");
    DeleteServersData({id});
}

void Maintenance::DeleteServersData(const std::vector<std::string>& ids) {
    InTransaction("DeleteServerData", [&](Connection& connection) {
        for (const std::string& id : ids) {
            RequireId(id);
            DeleteRows(connection, "SELECT * FROM Servers where ID=" + id);
            DeleteRows(connection, "SELECT * FROM Failures where IDParent=" + id);
            DeleteRows(connection, "SELECT * FROM Response where IDParent=" + id);
            DeleteRows(connection, "SELECT * FROM ResponseFailText where IDParent=" + id);
        }
    });
}

bool Maintenance::ResetStatData(const std::string& id, bool deleteFailures) {
    return InTransaction("ResetStatData", [&](Connection& connection) {
        ForEachRow(connection, Of("SELECT * from servers", " where id=", id), [now = ports_.clock.Now()](Recordset& row) {
            for (const std::string_view counter : {"nAveResponse", "nAveSession", "nSuccess", "nFail"})
                row.Fields(counter) = 0;
            row.Fields("nPercentUp") = 100;
            row.Fields("datelastreset") = now;
            row.Update();
        });
        if (deleteFailures) DeleteRows(connection, Of("SELECT * from failures", " where idparent=", id));
    });
}

bool Maintenance::ResetResponseData(const std::string& id) {
    return InTransaction("ResetResponseData", [&](Connection& connection) {
        DeleteRows(connection, Of("SELECT * from response", " where idparent = ", id));
    });
}

void Maintenance::ResetStatDataALL(bool deleteFailures) {
    if (ResetStatData(kAllIds, deleteFailures)) FinishReset();
}

void Maintenance::ResetResponseDataALL() {
    if (ResetResponseData(kAllIds)) FinishReset();
}

void Maintenance::FinishReset() {
    ports_.publish();
    ports_.status.setStatusMSG("Reset Complete");
}

bool Maintenance::InTransaction(std::string_view routine, const std::function<void(Connection&)>& work) {
    try {
        const auto connection = OpenDatabase(ports_.store, dir_);
        connection->BeginTrans();
        work(*connection);
        connection->CommitTrans();
        return true;
    } catch (const std::exception& error) {
        Report(routine, error.what());
        return false;
    }
}

void Maintenance::ForEachRow(Connection& connection, const std::string& query, const std::function<void(Recordset&)>& work) {
    for (const auto rows = OpenRows(ports_.store, connection, query); !rows->Eof(); rows->MoveNext())
        work(*rows);
}

void Maintenance::DeleteRows(Connection& connection, const std::string& query) {
    ForEachRow(connection, query, [](Recordset& row) { row.Delete(); });
}

void Maintenance::Report(std::string_view routine, const std::string& description) {
    const std::string text = std::string(routine) + ": " + description;
    ports_.status.setStatusMSG(text);
    ports_.log.WriteLog(kLogFatal, kLogError, text);
}

}  // namespace korvane
