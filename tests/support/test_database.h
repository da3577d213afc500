// A database of a test's own: a temporary folder with a copy of the blank database, the real store on it, and short ways to put
// rows in and to look at them.
//
//     TestDatabase database;
//     const std::int64_t id = database.Add({.strDesc = "mail", .strAddress_IP = "10.0.0.1", .strType = "SMTP", .strPort = "25"});
//     ...
//     EXPECT_EQ(database.Server(id).at("nFail"), Value(1));
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "base/value.h"
#include "platform/connection.h"
#include "support/temporary_folder.h"

namespace korvane {

/// A row of `Servers` as an operator would have made it: the columns that tests care about. Value() stores a blank.
struct Entry {
    std::int64_t id = 0;  ///< 0: the next free one
    std::string strGroup = "Group1";
    std::string strDesc = "entry";
    std::string strAddress_IP = "10.0.0.1";
    std::string strType = "PING";
    std::string strPort = "ICMP";
    int nTimeout = 15;
    int nTries = 3;
    int nTriesCur = 0;
    int nIntervalSeconds = 60;
    std::string strExpectedText = "";
    std::string strUserName = "";
    std::string strPassword = "";
    bool bIsMonitoring = true;
    std::string strDownTime1 = "";
    int nDownDuration1 = 0;
    std::string strDownTime2 = "";
    int nDownDuration2 = 0;
    std::string strCMD = "";
    std::string strCMDUP = "";
    int nFailScanText = 0;
    Value strCurStatus = "UP";
    Value nAveResponse = 0.0;
    int nSuccess = 0;
    int nFail = 0;
    Value dtNextCheck = DateTime::Of(2000, 1, 1);  ///< long overdue; no query by date finds a blank one
};

using Row = std::map<std::string, Value, LessNoCase>;

class TestDatabase {
public:
    TestDatabase();
    /// The database that `store`, which must outlive this, finds in the folder.
    TestDatabase(std::string folder, Store& store) : path_(std::move(folder)), used_(store) {}
    TestDatabase(const TestDatabase&) = delete;
    TestDatabase& operator=(const TestDatabase&) = delete;

    /// Without a "/" at its end.
    const std::string& Folder() const { return path_; }
    std::string Path() const { return Folder() + "/kvdata2.mdb"; }
    /// The two forms that the program uses.
    std::string DriverString() const;
    std::string ProviderString() const;
    Store& TheStore() { return used_; }

    /// Adds the entry and gives its id.
    std::int64_t Add(const Entry& entry);
    /// Adds all in one go: the fast way to hundreds of them.
    void AddMany(const std::vector<Entry>& entries);
    /// Adds a row to any table, with its id among the columns.
    void AddRow(std::string_view table, const Row& row);
    /// Changes columns of the row with this id, as an editor window would.
    void Change(std::string_view table, std::int64_t id, const Row& columns);
    void Remove(std::string_view table, std::int64_t id);

    /// The rows of a table in order of id, or of any query on one table; they hold the columns of that table that were asked for.
    std::vector<Row> Rows(std::string_view table) { return Query("SELECT * FROM " + std::string(table) + " ORDER BY id"); }
    std::vector<Row> Query(const std::string& query);
    /// The row of `Servers` with this id. Throws Error when there is none.
    Row Server(std::int64_t id);
    int Count(std::string_view table, std::string_view where = "");

private:
    void With(const std::string& query, CursorType cursor, const std::function<void(Recordset&)>& work);
    std::int64_t IdFor(const Entry& entry);

    std::unique_ptr<TemporaryFolder> folder_;
    std::string path_;
    std::unique_ptr<Store> own_;
    Store& used_;
    std::int64_t lastId_ = 0;
};

}  // namespace korvane
