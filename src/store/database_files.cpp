#include "store/database_files.h"

#include <iomanip>
#include <sstream>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "store/schema.h"

namespace korvane {
namespace {

constexpr ReportTemplate kReportTemplates[] = {
    {"grouptmp.htm", "group"},
    {"summaryreporttmp.htm", "summary"},
    {"failurereporttmp.htm", "failure"},
    {"dailyreporttmp.htm", "daily report"},
};

std::string Quoted(const std::string& path) {
    std::ostringstream text;
    text << std::quoted(path);
    return text.str();
}

// Opens a query without results and begins a row that is then discarded: its fields show which columns exist.
void FindMissingColumns(Store& store, Connection& connection, const TableSchema& table, std::vector<std::string>& missing) {
    std::unique_ptr<Recordset> row;
    const bool hasTable = IgnoreErrors([&] {
        row = OpenRows(store, connection, "SELECT * from " + table.name + " where id < 0");
        row->AddNew();
    });
    if (!hasTable) return missing.push_back(table.name);
    for (const ColumnSchema& column : table.columns) {
        if (!IgnoreErrors([&] { row->Fields(column.name).Value(); })) missing.push_back(table.name + "." + column.name);
    }
}

}  // namespace

std::span<const ReportTemplate> ReportTemplates() {
    return kReportTemplates;
}

std::string DatabasePath(const std::string& dir) {
    return dir + "/" + std::string(kDatabaseFile);
}

std::string OdbcConnectionText(const std::string& dir) {
    return "DRIVER={SQLite};DBQ=" + Quoted(DatabasePath(dir)) + ";DefaultDir=" + Quoted(dir + "/") + ";UID=admin;PWD=;";
}

std::string OleDbConnectionText(const std::string& dir) {
    return "Provider=SQLite; Data Source=" + Quoted(DatabasePath(dir)) + ";Persist Security Info=False;";
}

std::unique_ptr<Connection> OpenDatabase(Store& store, const std::string& dir) {
    auto connection = store.NewConnection();
    connection->SetConnectionString(OleDbConnectionText(dir));
    connection->Open();
    return connection;
}

std::unique_ptr<Recordset> OpenRows(Store& store, Connection& connection, std::string_view query, CursorType cursor,
                                    LockType lock) {
    auto rows = store.NewRecordset();
    rows->Open(query, connection, cursor, lock);
    return rows;
}

bool IsDBConnectOK(Store& store, Files& files, const std::string& dir, std::string& errorText) {
    errorText.clear();
    try {
        if (!files.Exists(DatabasePath(dir))) {
            errorText = "The database file (" + DatabasePath(dir) + ")does not exist.";
            return false;
        }
        const auto connection = OpenDatabase(store, dir);  // this succeeds with a database of another program, too
        OpenRows(store, *connection, "SELECT * from servers where id < 0");
        return true;
    } catch (const Error& error) {
        errorText = std::to_string(error.Number()) + " Desc: " + error.what();
        return false;
    }
}

std::string WriteProblemOf(Store& store, const std::string& dir) {
    try {
        OpenDatabase(store, dir)->TryWriting();
        return "";
    } catch (const Error& error) {
        return error.what();
    }
}

void RemoveJournals(Files& files, const std::string& database) {
    for (const char* end : {"-journal", "-wal", "-shm"})
        files.Remove(database + end);
}

std::vector<std::string> MissingColumns(Store& store, const std::string& dir) {
    const auto connection = OpenDatabase(store, dir);
    std::vector<std::string> missing;
    for (const TableSchema& table : DatabaseSchema())
        FindMissingColumns(store, *connection, table, missing);
    return missing;
}

}  // namespace korvane
