#include "platform/qt/sql_columns.h"

#include <QtSql/QSqlField>
#include <QtSql/QSqlRecord>
#include <utility>

#include "base/text.h"
#include "platform/qt/sql_text.h"

namespace korvane {
namespace {

// The driver returns columns without one of these declared types as texts, whatever they contain.
std::optional<ColumnKind> DeclaredKind(const QSqlField& field) {
    switch (field.metaType().id()) {
        case QMetaType::Bool:
            return ColumnKind::YesNo;
        case QMetaType::Int:
        case QMetaType::LongLong:
            return ColumnKind::Whole;
        case QMetaType::Double:
            return ColumnKind::Double;
        default:
            return std::nullopt;
    }
}

constexpr char LowerChar(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

Error NoSuchColumnError(std::string_view name, const std::string& where) {
    return Error("Item cannot be found in the collection corresponding to the requested name or ordinal: '" + std::string(name) +
                 "' in " + where + ".");
}

SqlColumns::SqlColumns(const QSqlRecord& record, const std::string& table, const ColumnKindOf& kindOf) {
    for (int i = 0; i < record.count(); ++i) {
        const QSqlField field = record.field(i);
        std::string name = field.name().toStdString();
        const std::string origin = table.empty() ? field.tableName().toStdString() : table;
        const auto known = kindOf(origin, name);
        byName_.emplace(name, columns_.size());
        list_ += (i == 0 ? "" : ",") + QuotedName(name);
        columns_.push_back({std::move(name), known ? known : DeclaredKind(field)});
    }
}

std::optional<std::size_t> SqlColumns::Find(std::string_view name) const {
    const auto found = byName_.find(name);
    if (found == byName_.end()) return std::nullopt;
    return found->second;
}

std::size_t SqlColumns::HashNoCase::operator()(std::string_view name) const {
    std::size_t hash = 14695981039346656037U;  // FNV-1a
    for (const char c : name)
        hash = (hash ^ static_cast<unsigned char>(LowerChar(c))) * 1099511628211U;
    return hash;
}

bool SqlColumns::EqualNoCase::operator()(std::string_view a, std::string_view b) const {
    return EqualsNoCase(a, b);
}

}  // namespace korvane
