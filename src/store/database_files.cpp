#include "store/database_files.h"

#include "base/error.h"
#include "base/text.h"
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
    if (path.find_first_of(";\"") == std::string::npos) return path;
    return "\"" + ReplaceAll(path, "\"", "\"\"") + "\"";
}

std::unique_ptr<Connection> OpenDatabase(Store& store, const std::string& dir) {
    auto connection = store.NewConnection();
    connection->SetConnectionString(OleDbConnectionText(dir));
    connection->Open();
    return connection;
}

// Opens a query without results and begins a row that is then discarded: its fields show which columns exist.
void FindMissingColumns(Store& store, Connection& connection, const TableSchema& table, std::vector<std::string>& missing) {
    const std::string name(table.name);
    const auto row = store.NewRecordset();
    try {
        row->Open("SELECT * from " + name + " where id < 0", connection, CursorType::Keyset, LockType::Optimistic);
        row->AddNew();
    } catch (const Error&) {
        missing.push_back(name);
        return;
    }
    for (const ColumnSchema& column : table.columns) {
        try {
            row->Fields(column.name).Value();
        } catch (const Error&) {
            missing.push_back(name + "." + std::string(column.name));
        }
    }
    row->Close();
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

bool IsDBConnectOK(Store& store, Files& files, const std::string& dir, std::string& errorText) {
    errorText.clear();
    try {
        if (!files.Exists(DatabasePath(dir))) {
            errorText = "The database file (" + DatabasePath(dir) + ")does not exist.";
            return false;
        }
        const auto connection = OpenDatabase(store, dir);
        const auto none = store.NewRecordset();  // a database of another program opens too
        none->Open("SELECT * from servers where id < 0", *connection, CursorType::Keyset, LockType::Optimistic);
        none->Close();
        connection->Close();
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
    connection->Close();
    return missing;
}

}  // namespace korvane
