#include "store/schema.h"

#include <map>
#include <sstream>

#include "base/text.h"
#include "store/kvempty_sql.h"

namespace korvane {
namespace {

std::vector<TableSchema> ReadSchema(const std::string& sql) {
    static const std::map<std::string_view, ColumnKind> kKinds = {
        {"SMALLINT", ColumnKind::Int16},    {"INT", ColumnKind::Int32}, {"INTEGER", ColumnKind::Whole},
        {"REAL", ColumnKind::Double},       {"TEXT", ColumnKind::Text}, {"BOOLEAN", ColumnKind::YesNo},
        {"DATETIME", ColumnKind::DateTime},
    };
    std::vector<TableSchema> tables;
    std::istringstream lines(sql);
    for (std::string line, first, second, third; std::getline(lines, line);) {
        std::istringstream(line) >> first >> second >> third;
        if (line.starts_with("CREATE TABLE ")) tables.push_back({third, {}});
        if (line.starts_with("    ")) tables.back().columns.push_back({first, kKinds.at(second.substr(0, second.find(',')))});
    }
    return tables;
}

}  // namespace

const std::vector<TableSchema>& DatabaseSchema() {
    static const std::vector<TableSchema> schema = ReadSchema(kKvemptySql);
    return schema;
}

std::string DatabaseStatements() {
    return kKvemptySql;
}

std::optional<ColumnKind> KindOfColumn(std::string_view table, std::string_view column) {
    for (const TableSchema& schema : DatabaseSchema()) {
        if (!EqualsNoCase(schema.name, table)) continue;
        for (const ColumnSchema& each : schema.columns) {
            if (EqualsNoCase(each.name, column)) return each.kind;
        }
    }
    return std::nullopt;
}

}  // namespace korvane
