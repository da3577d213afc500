#include "platform/qt/sql_values.h"

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <cmath>

#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

double Finite(double number) {
    if (!std::isfinite(number)) throw OverflowError();
    return number;
}

Value FromWhole(qlonglong whole, std::optional<ColumnKind> kind) {
    const auto number = static_cast<std::int64_t>(whole);
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

Value ForColumn(const Value& value, std::optional<ColumnKind> kind) {
    if (value.IsBlank() || !kind) return value;
    switch (*kind) {
        case ColumnKind::Text:
            return Value(value.Text());
        case ColumnKind::Id:
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

QVariant ToBind(const Value& value) {
    const auto text = [](std::string_view utf8) {
        return QVariant(QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())));
    };
    if (const auto* yes = std::get_if<bool>(&value.Get())) return QVariant(*yes ? 1 : 0);
    if (const auto* whole = std::get_if<std::int64_t>(&value.Get())) return QVariant(static_cast<qlonglong>(*whole));
    if (const auto* number = std::get_if<double>(&value.Get())) return QVariant(*number);
    if (const auto* string = std::get_if<std::string>(&value.Get())) return text(*string);
    if (const auto* when = std::get_if<DateTime>(&value.Get())) return text(when->Stored());
    return QVariant();
}

Value FromStored(const QVariant& stored, std::optional<ColumnKind> kind) {
    if (stored.isNull()) return Value();
    switch (stored.metaType().id()) {
        case QMetaType::Int:
        case QMetaType::LongLong:
            return FromWhole(stored.toLongLong(), kind);
        case QMetaType::Double:
            if (kind == ColumnKind::YesNo) return Value(stored.toDouble() != 0);
            return Value(stored.toDouble());
        case QMetaType::QByteArray:
            return FromText(ToUtf8(stored.toByteArray().toStdString()), kind);
        default:
            return FromText(stored.toString().toStdString(), kind);
    }
}

}  // namespace korvane
