#include "store/entry_safeguards.h"

#include <memory>

#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kCreatesTable =
    "CREATE TABLE IF NOT EXISTS EntrySafeguards (ID INTEGER PRIMARY KEY, idParent INTEGER, strKey TEXT, strValue TEXT)";
/// The database itself removes the values of an entry, also while the safeguards are off or another tool deletes it: a new entry
/// with its ID must not inherit them.
constexpr std::string_view kForgetsDeleted =
    "CREATE TRIGGER IF NOT EXISTS EntrySafeguardsOfDeleted AFTER DELETE ON Servers BEGIN "
    "DELETE FROM EntrySafeguards WHERE idParent = OLD.ID; END";

std::unique_ptr<Connection> Opened(Store& store, const std::string& connectionString) {
    auto conn = store.NewConnection();
    conn->SetConnectionString(connectionString);
    conn->Open();
    return conn;
}

/// The table during one piece of work.
class Table {
public:
    Table(Store& store, Connection& conn) : conn_(conn), rs_(store.NewRecordset()) {}

    bool Exists() { return conn_.HasTable("EntrySafeguards"); }

    void Create() {
        for (const std::string& statement : EntrySafeguards::Statements())
            conn_.Execute(statement);
    }

    std::string Read(std::int64_t id, std::string_view key) {
        return Find(id, key) ? rs_->Fields("strValue").Value().Text() : "";
    }

    void Write(std::int64_t id, std::string_view key, const std::string& value) {
        const bool found = Find(id, key);
        if (value.empty()) {
            if (found) rs_->Delete();
            return;
        }
        if (!found) {
            rs_->AddNew();
            rs_->Fields("idParent") = id;
            rs_->Fields("strKey") = std::string(key);
        }
        rs_->Fields("strValue") = value;
        rs_->Update();
    }

private:
    /// Moves to the row of the key; returns false if there is none.
    bool Find(std::int64_t id, std::string_view key) {
        rs_->Open("SELECT * FROM EntrySafeguards WHERE idParent = " + std::to_string(id), conn_, CursorType::Keyset,
                  LockType::Optimistic);
        while (!rs_->Eof() && !EqualsNoCase(rs_->Fields("strKey").Value().Text(), key))
            rs_->MoveNext();
        return !rs_->Eof();
    }

    Connection& conn_;
    std::unique_ptr<Recordset> rs_;
};

}  // namespace

std::vector<std::string> EntrySafeguards::Statements() {
    return {std::string(kCreatesTable), std::string(kForgetsDeleted)};
}

std::string EntrySafeguards::Read(std::int64_t id, std::string_view key) const {
    const auto conn = Opened(store_, connectionString_);
    Table table(store_, *conn);
    return table.Exists() ? table.Read(id, key) : "";
}

void EntrySafeguards::Write(std::int64_t id, std::string_view key, const std::string& value) {
    const auto conn = Opened(store_, connectionString_);
    Table table(store_, *conn);
    if (!table.Exists()) {
        if (value.empty()) return;
        conn->BeginTrans();
        table.Create();
        conn->CommitTrans();
    }
    table.Write(id, key, value);
}

void EntrySafeguards::Write(Connection& connection, std::int64_t id, std::string_view key, const std::string& value) {
    Table table(store_, connection);
    if (!table.Exists()) {
        if (value.empty()) return;
        table.Create();
    }
    table.Write(id, key, value);
}

}  // namespace korvane
