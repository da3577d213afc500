#include "shell/list/list_copy.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "base/error.h"
#include "base/text.h"
#include "notify/outbox_table.h"
#include "shell/list/entry_acts.h"
#include "store/database_files.h"
#include "store/entry_safeguards.h"
#include "store/last_checks.h"
#include "store/schema.h"

namespace korvane {
namespace {

constexpr std::size_t kRowsAtOnce = 100;
constexpr std::string_view kId = "ID";

struct ListTable {
    std::string name;
    std::vector<std::string> columns;
    std::vector<std::string> creates;  ///< statements; none: each list has the table
};

// The statement is "CREATE TABLE IF NOT EXISTS <name> (<column> <type>..., ...)".
ListTable TableOf(std::vector<std::string> statements) {
    const std::string& text = statements.front();
    const std::size_t begin = text.find('('), name = text.rfind(' ', begin - 2) + 1;
    ListTable table{text.substr(name, begin - 1 - name), {}, std::move(statements)};
    for (const std::string& column : Split(table.creates.front().substr(begin + 1), ','))
        table.columns.push_back(Split(Trim(column), ' ').front());
    return table;
}

std::vector<ListTable> ListTables() {
    std::vector<ListTable> all;
    for (const TableSchema& table : DatabaseSchema()) {
        all.push_back({table.name, {}, {}});
        for (const ColumnSchema& column : table.columns)
            all.back().columns.push_back(column.name);
    }
    all.push_back(TableOf(EntrySafeguards::Statements()));
    all.push_back(TableOf(LastChecks::CheckStatements()));
    all.push_back(TableOf(LastChecks::MailStatements()));
    all.push_back(TableOf(OutboxTable::Statements()));
    return all;
}

std::vector<ListTable> TablesIn(const ListPlace& place) {
    std::vector<ListTable> all = ListTables();
    std::erase_if(all, [&](const ListTable& table) { return !place.connection.HasTable(table.name); });
    return all;
}

std::int64_t RowsOf(const ListPlace& place, const std::string& table) {
    return OpenRows(place.store, place.connection, "SELECT count(*) AS nRows FROM " + table, CursorType::Static)
        ->Fields("nRows")
        .Value()
        .Int64();
}

std::string InsertOf(const ListTable& table, std::size_t rows) {
    std::string names, marks;
    for (const std::string& column : table.columns) {
        names += (names.empty() ? "" : ", ") + column;
        marks += marks.empty() ? "(?" : ", ?";
    }
    std::string text = "INSERT INTO " + table.name + " (" + names + ") VALUES ";
    for (std::size_t i = 0; i < rows; ++i)
        text += (i == 0 ? "" : ", ") + marks + ")";
    return text;
}

/// Some of the next rows of a table.
struct Rows {
    std::vector<Value> values;
    std::size_t count = 0;
    std::int64_t lastId = 0;
};

Rows ReadAfter(const ListPlace& from, const ListTable& table, std::int64_t id) {
    const auto source = OpenRows(
        from.store, from.connection,
        "SELECT * FROM " + table.name + " WHERE ID > " + std::to_string(id) + " ORDER BY ID LIMIT " + std::to_string(kRowsAtOnce),
        CursorType::Static);
    Rows rows;
    for (; !source->Eof(); source->MoveNext(), ++rows.count) {
        rows.lastId = source->Fields(kId).Value().Int64();
        for (const std::string& column : table.columns)
            rows.values.push_back(source->Fields(column).Value());
    }
    return rows;
}

CopiedTable CopyTable(const ListPlace& from, const ListPlace& to, const ListTable& table) {
    CopiedTable copied{table.name};
    for (const std::string& statement : table.creates)
        to.connection.Execute(statement);
    std::int64_t id = -std::numeric_limits<std::int64_t>::max();
    for (Rows rows; rows = ReadAfter(from, table, id), rows.count > 0; id = rows.lastId) {
        to.connection.Execute(InsertOf(table, rows.count), rows.values);
        copied.rows += static_cast<std::int64_t>(rows.count);
    }
    if (copied.rows > 0) to.connection.FollowIds(table.name);
    return copied;
}

}  // namespace

std::vector<CopiedTable> CountList(const ListPlace& place) {
    std::vector<CopiedTable> counts;
    for (const ListTable& table : TablesIn(place))
        counts.push_back({table.name, RowsOf(place, table.name)});
    return counts;
}

void CopyList(const ListPlace& from, const ListPlace& to, const std::function<void(const CopiedTable& table)>& copied) {
    if (!to.connection.TryTakeDuty("copy")) throw Error("Another copy is being written there.");
    to.connection.BeginTrans();
    for (const CopiedTable& table : CountList(to))
        if (table.rows > 0)
            throw Error("The target is not empty: its table " + table.name + " has " + std::to_string(table.rows) +
                        (table.rows == 1 ? " row." : " rows."));
    for (const ListTable& table : TablesIn(from)) {
        try {
            copied(CopyTable(from, to, table));
        } catch (const ServerAwayError&) {
            throw;
        } catch (const Error& error) {
            throw Error("Table " + table.name + ": " + error.what());
        }
    }
    to.connection.CommitTrans();
}

}  // namespace korvane
