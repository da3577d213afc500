#include "platform/qt/sql_columns.h"

#include <QtCore/QDateTime>
#include <QtCore/QVariant>
#include <QtSql/QSqlField>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlRecord>
#include <cmath>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "platform/qt/sql_text.h"

namespace korvane {
namespace {

double Finite(double number) {
    if (!std::isfinite(number)) throw OverflowError();
    return number;
}

Value FromWhole(std::int64_t number, std::optional<ColumnKind> kind) {
    if (kind == ColumnKind::YesNo) return Value(number != 0);
    if (kind == ColumnKind::Double) return Value(static_cast<double>(number));
    if (kind == ColumnKind::Text || kind == ColumnKind::DateTime) return Value(std::to_string(number));
    return Value(number);
}

Value FromText(std::string text, std::optional<ColumnKind> kind) {
    if (kind != ColumnKind::DateTime) return Value(std::move(text));
    if (text.empty()) return Value();
    if (const auto when = DateTime::FromStored(text)) return Value(*when);
    return Value(std::move(text));
}

}  // namespace

Value SqlColumn::ForFile(const Value& value) const {
    if (value.IsBlank() || !kind) return value;
    switch (*kind) {
        case ColumnKind::Text:
            return Value(value.Text());
        case ColumnKind::Whole:
            return Value(value.Int64());
        case ColumnKind::Int16:
            return Value(std::int64_t{value.Int16()});
        case ColumnKind::Int32:
            return Value(std::int64_t{value.Int32()});
        case ColumnKind::Double:
            return Value(Finite(value.Double()));
        case ColumnKind::YesNo:
            if (value.IsEmpty()) throw TypeMismatchError();
            return Value(value.Bool());
        case ColumnKind::DateTime:
            return value.IsEmpty() ? Value() : Value(value.When());
    }
    return value;
}

Value SqlColumn::FromFile(const QVariant& stored) const {
    if (stored.isNull()) return Value();
    switch (stored.metaType().id()) {
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:  // so the driver of the server reads a number without a sign
            return FromWhole(stored.toLongLong(), kind);
        case QMetaType::Bool:
            return FromWhole(stored.toBool() ? 1 : 0, kind);
        case QMetaType::QDateTime:
            return FromText(stored.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")).toStdString(), kind);
        case QMetaType::Double:
            if (kind == ColumnKind::YesNo) return Value(stored.toDouble() != 0);
            return Value(stored.toDouble());
        case QMetaType::QByteArray:
            return FromText(ToUtf8(stored.toByteArray().toStdString()), kind);
        default:
            return FromText(stored.toString().toStdString(), kind);
    }
}

QVariant ToBind(const Value& value) {
    if (const auto* yes = std::get_if<bool>(&value.Get())) return QVariant(*yes);
    if (const auto* whole = std::get_if<std::int64_t>(&value.Get())) return QVariant(static_cast<qlonglong>(*whole));
    if (const auto* number = std::get_if<double>(&value.Get())) return QVariant(*number);
    if (const auto* text = std::get_if<std::string>(&value.Get())) return QVariant(QString::fromStdString(*text));
    if (const auto* when = std::get_if<DateTime>(&value.Get())) return QVariant(QString::fromStdString(when->Stored()));
    return QVariant();
}

SqlColumns::SqlColumns(const QSqlRecord& record, const std::string& table, const ColumnKindOf& kindOf) {
    for (int i = 0; i < record.count(); ++i) {
        const QSqlField field = record.field(i);
        std::string name = field.name().toStdString();
        const auto kind = kindOf(table.empty() ? field.tableName().toStdString() : table, name);
        std::string selected = QuotedName(name);
        columns_.push_back({std::move(name), kind, std::move(selected)});
    }
    MakeList();
}

SqlColumns::SqlColumns(std::vector<SqlColumn> columns) : columns_(std::move(columns)) {
    MakeList();
}

void SqlColumns::MakeList() {
    for (const SqlColumn& column : columns_)
        list_ += (list_.empty() ? "" : ",") + column.selected;
}

std::optional<std::size_t> SqlColumns::Find(std::string_view name) const {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const std::string& each = columns_[i].name;
        if (each.size() == name.size() && EqualsNoCase(each, name)) return i;  // most lengths differ, which takes no call
    }
    return std::nullopt;
}

std::vector<QVariant> SqlColumns::ValuesIn(const QSqlQuery& query) const {
    std::vector<QVariant> values;
    values.reserve(columns_.size());
    for (std::size_t i = 0; i < columns_.size(); ++i)
        values.push_back(query.value(static_cast<int>(i)));
    return values;
}

}  // namespace korvane
