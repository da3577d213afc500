#include "shell/list/list_copy.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "notify/outbox_table.h"
#include "shell/list/entry_acts.h"
#include "store/database_files.h"
#include "store/entry_safeguards.h"
#include "store/last_checks.h"
#include "store/schema.h"

namespace korvane {
namespace {

constexpr std::size_t kRowsRead = 20'000;  // a server sorts the whole table for each read
constexpr std::size_t kRowsWritten = 100;
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

// A table of an older version lacks some.
ListTable WithColumnsIn(const ListPlace& place, ListTable table) {
    const auto row = OpenRows(place.store, place.connection, "SELECT * FROM " + table.name + " WHERE ID = -1");
    row->AddNew();
    std::erase_if(table.columns, [&](const std::string& column) { return !IgnoreErrors([&] { row->Fields(column).Value(); }); });
    return table;
}

std::string NextRows(const ListTable& table, std::int64_t after) {
    return "SELECT * FROM " + table.name + " WHERE ID > " + std::to_string(after) + " ORDER BY ID LIMIT " +
           std::to_string(kRowsRead);
}

CopiedTable CopyTable(const ListPlace& from, const ListPlace& to, const ListTable& table) {
    CopiedTable copied{table.name};
    for (const std::string& statement : table.creates)
        to.connection.Execute(statement);
    std::vector<Value> values;
    const auto write = [&] {
        if (!values.empty()) to.connection.Execute(InsertOf(table, values.size() / table.columns.size()), values);
        values.clear();
    };
    std::int64_t id = -std::numeric_limits<std::int64_t>::max(), before = id;
    do {
        before = id;
        const auto rows = OpenRows(from.store, from.connection, NextRows(table, id), CursorType::Static);
        for (; !rows->Eof(); rows->MoveNext(), ++copied.rows) {
            id = rows->Fields(kId).Value().Int64();
            for (const std::string& column : table.columns)
                values.push_back(rows->Fields(column).Value());
            if (values.size() == kRowsWritten * table.columns.size()) write();
        }
        write();
    } while (id != before);
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
            copied(CopyTable(from, to, WithColumnsIn(from, table)));
        } catch (const ServerAwayError&) {
            throw;
        } catch (const Error& error) {
            throw Error("Table " + table.name + ": " + error.what());
        }
    }
    to.connection.CommitTrans();
}

}  // namespace korvane
