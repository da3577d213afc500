#include "store/entry_safeguards.h"

#include <memory>

#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kLooksForTable =
    "SELECT count(*) AS n FROM sqlite_master WHERE type = 'table' AND name = 'EntrySafeguards'";
constexpr std::string_view kCreatesTable =
    "CREATE TABLE IF NOT EXISTS EntrySafeguards (ID INTEGER PRIMARY KEY, idParent INTEGER, strKey TEXT, strValue TEXT)";
/// The database itself removes the values of an entry, also while the safeguards are off or another tool deletes it: a new entry
/// with its ID must not inherit them.
constexpr std::string_view kForgetsDeleted =
    "CREATE TRIGGER IF NOT EXISTS EntrySafeguardsOfDeleted AFTER DELETE ON Servers BEGIN "
    "DELETE FROM EntrySafeguards WHERE idParent = OLD.ID; END";

/// The open store for one piece of work.
struct Work {
    Work(Store& store, const std::string& connectionString) : conn(store.NewConnection()), rs(store.NewRecordset()) {
        conn->SetConnectionString(connectionString);
        conn->Open();
    }
    ~Work() {
        rs->Close();
        conn->Close();
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    bool HasTable() {
        rs->Open(kLooksForTable, *conn, CursorType::Static, LockType::Optimistic);
        const bool there = rs->Fields("n").Value().Int64() > 0;
        rs->Close();
        return there;
    }

    void OpenRows(std::int64_t id) {
        rs->Open("SELECT * FROM EntrySafeguards WHERE idParent = " + std::to_string(id), *conn, CursorType::Keyset,
                 LockType::Optimistic);
    }

    /// Moves to the row of the key; returns false if there is none.
    bool Find(std::string_view key) {
        while (!rs->Eof() && !EqualsNoCase(rs->Fields("strKey").Value().Text(), key))
            rs->MoveNext();
        return !rs->Eof();
    }

    std::unique_ptr<Connection> conn;
    std::unique_ptr<Recordset> rs;
};

}  // namespace

std::string EntrySafeguards::Read(std::int64_t id, std::string_view key) const {
    Work work(store_, connectionString_);
    if (!work.HasTable()) return "";
    work.OpenRows(id);
    return work.Find(key) ? work.rs->Fields("strValue").Value().Text() : "";
}

void EntrySafeguards::Write(std::int64_t id, std::string_view key, const std::string& value) {
    Work work(store_, connectionString_);
    if (!work.HasTable()) {
        if (value.empty()) return;
        work.conn->BeginTrans();
        work.conn->Execute(kCreatesTable);
        work.conn->Execute(kForgetsDeleted);
        work.conn->CommitTrans();
    }
    work.OpenRows(id);
    const bool found = work.Find(key);
    if (value.empty()) {
        if (found) work.rs->Delete();
        return;
    }
    if (!found) {
        work.rs->AddNew();
        work.rs->Fields("idParent") = id;
        work.rs->Fields("strKey") = std::string(key);
    }
    work.rs->Fields("strValue") = value;
    work.rs->Update();
}

}  // namespace korvane
