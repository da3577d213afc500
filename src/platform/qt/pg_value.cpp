#include "platform/qt/pg_value.h"

#include <QtCore/QVariant>
#include <cmath>

#include "platform/qt/pg_text.h"

namespace korvane {

std::string PgValue(const QVariant& value) {
    if (value.isNull()) return "NULL";
    switch (value.metaType().id()) {
        case QMetaType::Bool:
            return value.toBool() ? "TRUE" : "FALSE";
        case QMetaType::Int:
        case QMetaType::LongLong:
            return value.toString().toStdString();
        case QMetaType::Double:
            if (std::isfinite(value.toDouble())) return value.toString().toStdString();
            return PgLiteral(value.toString().toStdString());
        default:
            return PgLiteral(value.toString().toStdString());
    }
}

}  // namespace korvane
