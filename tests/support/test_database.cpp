#include "support/test_database.h"

#include <algorithm>
#include <filesystem>
#include <functional>

#include "base/error.h"
#include "platform/qt/sql_store.h"
#include "store/schema.h"
#include "support/qt_application.h"

namespace korvane {
namespace {

std::span<const ColumnSchema> ColumnsOf(std::string_view table) {
    for (const TableSchema& schema : DatabaseSchema()) {
        if (EqualsNoCase(schema.name, table)) return schema.columns;
    }
    return {};
}

std::string TableOf(const std::string& query) {
    const auto from = ToLower(query).find(" from ");
    if (from == std::string::npos) return "";
    const auto begin = query.find_first_not_of(' ', from + 6);
    return query.substr(begin, query.find(' ', begin) - begin);
}

Row AsRow(const Entry& entry, std::int64_t id) {
    return {{"ID", id},
            {"strGroup", entry.strGroup},
            {"strDesc", entry.strDesc},
            {"strAddress_IP", entry.strAddress_IP},
            {"strType", entry.strType},
            {"strPort", entry.strPort},
            {"nTimeout", entry.nTimeout},
            {"nTries", entry.nTries},
            {"nTriesCur", entry.nTriesCur},
            {"nIntervalSeconds", entry.nIntervalSeconds},
            {"strExpectedText", entry.strExpectedText},
            {"strUserName", entry.strUserName},
            {"strPassword", entry.strPassword},
            {"bIsMonitoring", entry.bIsMonitoring},
            {"strDownTime1", entry.strDownTime1},
            {"nDownDuration1", entry.nDownDuration1},
            {"strDownTime2", entry.strDownTime2},
            {"nDownDuration2", entry.nDownDuration2},
            {"strCMD", entry.strCMD},
            {"strCMDUP", entry.strCMDUP},
            {"nFailScanText", entry.nFailScanText},
            {"strCurStatus", entry.strCurStatus},
            {"nAveResponse", entry.nAveResponse},
            {"nSuccess", entry.nSuccess},
            {"nFail", entry.nFail},
            {"dtNextCheck", entry.dtNextCheck}};
}

void Assign(Recordset& rs, const Row& row) {
    for (const auto& [column, value] : row)
        rs.Fields(column) = value;
}

// The columns of the table that the result holds. The port has no list of them, but an unknown one throws.
std::vector<std::string> ColumnsIn(Recordset& rs, const std::string& table) {
    std::vector<std::string> columns;
    for (const ColumnSchema& column : ColumnsOf(table)) {
        try {
            rs.Fields(column.name).Value();
            columns.emplace_back(column.name);
        } catch (const Error&) {
            continue;
        }
    }
    return columns;
}

}  // namespace

TestDatabase::TestDatabase()
    : folder_(std::make_unique<TemporaryFolder>()),
      path_(folder_->Path()),
      own_(std::make_unique<QtSqlStore>(KindOfColumn)),
      used_(*own_) {
    NeedQtApplication();
    std::filesystem::copy_file(KORVANE_DIST_DIR "/kvempty.mdb", Path());
}

std::string TestDatabase::DriverString() const {
    return "DRIVER={SQLite};DBQ=" + Path() + ";DefaultDir=" + Folder() + "/;UID=admin;PWD=;";
}

std::string TestDatabase::ProviderString() const {
    return "Provider=SQLite; Data Source=" + Path() + ";Persist Security Info=False;";
}

void TestDatabase::With(const std::string& query, CursorType cursor, const std::function<void(Recordset&)>& work) {
    const auto connection = used_.NewConnection();
    connection->SetConnectionString(DriverString());
    connection->Open();
    const auto rs = used_.NewRecordset();
    rs->Open(query, *connection, cursor, LockType::Optimistic);
    work(*rs);
    rs->Close();
    connection->Close();
}

std::int64_t TestDatabase::Add(const Entry& entry) {
    const std::int64_t id = IdFor(entry);
    AddRow("Servers", AsRow(entry, id));
    return id;
}

void TestDatabase::AddMany(const std::vector<Entry>& entries) {
    With("SELECT * FROM Servers WHERE id < 0", CursorType::Keyset, [&](Recordset& rs) {
        for (const Entry& entry : entries) {
            rs.AddNew();
            Assign(rs, AsRow(entry, IdFor(entry)));
            rs.Update();
        }
    });
}

std::int64_t TestDatabase::IdFor(const Entry& entry) {
    const std::int64_t id = entry.id != 0 ? entry.id : lastId_ + 1;
    lastId_ = std::max(lastId_, id);
    return id;
}

void TestDatabase::AddRow(std::string_view table, const Row& row) {
    With("SELECT * FROM " + std::string(table) + " WHERE id < 0", CursorType::Keyset, [&](Recordset& rs) {
        rs.AddNew();
        Assign(rs, row);
        rs.Update();
    });
}

void TestDatabase::Change(std::string_view table, std::int64_t id, const Row& columns) {
    With("SELECT * FROM " + std::string(table) + " WHERE id = " + std::to_string(id), CursorType::Keyset, [&](Recordset& rs) {
        Assign(rs, columns);
        rs.Update();
    });
}

void TestDatabase::Remove(std::string_view table, std::int64_t id) {
    With("SELECT * FROM " + std::string(table) + " WHERE id = " + std::to_string(id), CursorType::Keyset,
         [](Recordset& rs) { rs.Delete(); });
}

std::vector<Row> TestDatabase::Query(const std::string& query) {
    std::vector<Row> rows;
    With(query, CursorType::Static, [&](Recordset& rs) {
        if (rs.Eof()) return;
        const std::vector<std::string> columns = ColumnsIn(rs, TableOf(query));
        for (; !rs.Eof(); rs.MoveNext()) {
            Row& row = rows.emplace_back();
            for (const std::string& column : columns)
                row.emplace(column, rs.Fields(column).Value());
        }
    });
    return rows;
}

Row TestDatabase::Server(std::int64_t id) {
    const std::vector<Row> rows = Query("SELECT * FROM Servers WHERE id = " + std::to_string(id));
    if (rows.empty()) throw Error("There is no entry " + std::to_string(id));
    return rows.front();
}

int TestDatabase::Count(std::string_view table, std::string_view where) {
    int count = 0;
    const std::string condition = where.empty() ? "" : " WHERE " + std::string(where);
    With("SELECT id FROM " + std::string(table) + condition, CursorType::Static,
         [&count](Recordset& rs) { count = rs.RecordCount(); });
    return count;
}

}  // namespace korvane
