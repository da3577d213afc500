// A database of a test's own: a temporary folder with a copy of the empty database, the real store on it, and short ways to put
// rows in and to look at them.
//
//     TestDatabase database;
//     const std::int64_t id = database.Add({.strDesc = "mail", .strAddress_IP = "10.0.0.1", .strType = "SMTP", .strPort = "25"});
//     ...
//     EXPECT_EQ(database.Server(id).at("nFail"), Value(1));
#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "base/value.h"
#include "platform/connection.h"
#include "platform/qt/sql_store.h"
#include "store/schema.h"
#include "support/qt_application.h"
#include "support/temporary_folder.h"

namespace korvane {

using Row = std::map<std::string, Value, LessNoCase>;

/// Columns("nTries strCMD", 2, "mend") is {{"nTries", 2}, {"strCMD", "mend"}}.
template <class... Values>
Row Columns(const std::string& names, const Values&... values) {
    Row row;
    std::size_t at = 0;
    const std::vector<std::string> all = Split(names, ' ');
    (row.emplace(all.at(at++), values), ...);
    return row;
}

/// A row of `Servers` as an operator would have made it: the columns that tests care about. Value() stores a blank.
struct Entry {
    std::int64_t id = 0;  ///< 0: the next free one
    std::string strGroup = "Group1", strDesc = "entry", strAddress_IP = "10.0.0.1", strType = "PING", strPort = "ICMP";
    int nTimeout = 15, nTries = 3, nTriesCur = 0, nIntervalSeconds = 60;
    std::string strExpectedText = "", strUserName = "", strPassword = "";
    bool bIsMonitoring = true;
    std::string strDownTime1 = "";
    int nDownDuration1 = 0;
    std::string strDownTime2 = "";
    int nDownDuration2 = 0;
    std::string strCMD = "", strCMDUP = "";
    int nFailScanText = 0;
    Value strCurStatus = "UP", nAveResponse = 0.0;
    int nSuccess = 0, nFail = 0;
    Value dtNextCheck = DateTime::Of(2000, 1, 1);  ///< long overdue; no query by date finds a blank one

    Row AsRow() const {
        return Columns(
            "ID strGroup strDesc strAddress_IP strType strPort nTimeout nTries nTriesCur nIntervalSeconds strExpectedText "
            "strUserName strPassword bIsMonitoring strDownTime1 nDownDuration1 strDownTime2 nDownDuration2 strCMD strCMDUP "
            "nFailScanText strCurStatus nAveResponse nSuccess nFail dtNextCheck",
            id, strGroup, strDesc, strAddress_IP, strType, strPort, nTimeout, nTries, nTriesCur, nIntervalSeconds,
            strExpectedText, strUserName, strPassword, bIsMonitoring, strDownTime1, nDownDuration1, strDownTime2, nDownDuration2,
            strCMD, strCMDUP, nFailScanText, strCurStatus, nAveResponse, nSuccess, nFail, dtNextCheck);
    }
};

class TestDatabase {
public:
    TestDatabase() : folder_(new TemporaryFolder), path_(folder_->Path()), own_(new QtSqlStore(KindOfColumn)), used_(*own_) {
        NeedQtApplication();
        std::filesystem::copy_file(KORVANE_DIST_DIR "/kvempty.mdb", Path());
    }
    /// The database that `store`, which must outlive this, finds in the folder.
    TestDatabase(std::string folder, Store& store) : path_(std::move(folder)), used_(store) {}

    /// Without a "/" at its end.
    const std::string& Folder() const { return path_; }
    std::string Path() const { return Folder() + "/kvdata2.mdb"; }
    std::string DriverString() const { return "DRIVER={SQLite};DBQ=" + Path() + ";DefaultDir=" + Folder() + "/;UID=admin;PWD=;"; }
    Store& TheStore() { return used_; }
    /// A new connection that is open.
    std::unique_ptr<Connection> Connected() {
        auto connection = used_.NewConnection();
        connection->SetConnectionString(DriverString());
        connection->Open();
        return connection;
    }

    /// Adds the entry and gives its id.
    std::int64_t Add(const Entry& entry) { return AddMany({entry}); }
    /// Adds all in one go, the fast way to hundreds of them, and gives the last id.
    std::int64_t AddMany(std::vector<Entry> entries) {
        std::vector<Row> rows;
        for (Entry& entry : entries) {
            if (entry.id == 0) entry.id = lastId_ + 1;
            lastId_ = std::max(lastId_, entry.id);
            rows.push_back(entry.AsRow());
        }
        AddRows("Servers", rows);
        return entries.back().id;
    }
    /// Adds a row to any table, with its id among the columns.
    void AddRow(std::string_view table, const Row& row) { AddRows(table, {row}); }
    /// Changes columns of the row with this id, as an editor window would.
    void Change(std::string_view table, std::int64_t id, const Row& columns) {
        With(RowOf(table, id), CursorType::Keyset, [&](Recordset& rs) { Assign(rs, columns); });
    }
    void Remove(std::string_view table, std::int64_t id) {
        With(RowOf(table, id), CursorType::Keyset, [](Recordset& rs) { rs.Delete(); });
    }

    /// The rows of a table in order of id, or of any query on one table; they hold the columns of that table that were asked for.
    std::vector<Row> Rows(std::string_view table) { return Query("SELECT * FROM " + std::string(table) + " ORDER BY id"); }
    std::vector<Row> Query(const std::string& query) {
        std::vector<Row> rows;
        With(query, CursorType::Static, [&](Recordset& rs) {
            for (const auto columns = ColumnsIn(rs, query); !rs.Eof(); rs.MoveNext()) {
                Row& row = rows.emplace_back();
                for (const std::string& column : columns)
                    row.emplace(column, rs.Fields(column).Value());
            }
        });
        return rows;
    }
    /// The row of `Servers` with this id. Throws Error when there is none.
    Row Server(std::int64_t id) {
        const std::vector<Row> rows = Query(RowOf("Servers", id));
        if (rows.empty()) throw Error("There is no entry " + std::to_string(id));
        return rows.front();
    }
    int Count(std::string_view table, std::string_view where = "true") {
        int count = 0;
        With("SELECT id FROM " + std::string(table) + " WHERE " + std::string(where), CursorType::Static,
             [&](Recordset& rs) { count = rs.RecordCount(); });
        return count;
    }

private:
    static std::string RowOf(std::string_view table, std::int64_t id) {
        return "SELECT * FROM " + std::string(table) + " WHERE id = " + std::to_string(id);
    }
    // The columns of the table of the query that its result holds. The port has no list of them, but an unknown one throws.
    static std::vector<std::string> ColumnsIn(Recordset& rs, const std::string& query) {
        const std::vector<std::string> words = Split(query, ' ');
        const auto from = std::find_if(words.begin(), words.end(), [](const auto& word) { return EqualsNoCase(word, "from"); });
        std::vector<std::string> columns;
        for (const TableSchema& table : DatabaseSchema()) {
            if (rs.Eof() || !EqualsNoCase(table.name, *std::next(from))) continue;
            for (const ColumnSchema& column : table.columns)
                if (IgnoreErrors([&] { rs.Fields(column.name).Value(); })) columns.emplace_back(column.name);
        }
        return columns;
    }
    static void Assign(Recordset& rs, const Row& row) {
        for (const auto& [column, value] : row)
            rs.Fields(column) = value;
        rs.Update();
    }
    void AddRows(std::string_view table, const std::vector<Row>& rows) {
        With(RowOf(table, -1), CursorType::Keyset, [&](Recordset& rs) {
            for (const Row& row : rows) {
                rs.AddNew();
                Assign(rs, row);
            }
        });
    }
    void With(const std::string& query, CursorType cursor, const std::function<void(Recordset&)>& work) {
        const auto connection = Connected();
        const auto rs = used_.NewRecordset();
        rs->Open(query, *connection, cursor, LockType::Optimistic);
        work(*rs);
    }

    std::unique_ptr<TemporaryFolder> folder_;
    std::string path_;
    std::unique_ptr<Store> own_;
    Store& used_;
    std::int64_t lastId_ = 0;
};

}  // namespace korvane
