// Columns of a row as the pages show them. A column contains what an operator typed or an old version left, so any may be blank,
// and one blank must not cost a whole group its page.
#pragma once

#include <string>
#include <string_view>

#include "platform/connection.h"

namespace korvane {

/// A blank is returned as the empty text.
inline std::string TextOf(Recordset& rs, std::string_view column) {
    return rs.Fields(column).Value().Text();
}

/// A blank is returned as 0. Throws Error for a text that is not a number.
inline double NumberOf(Recordset& rs, std::string_view column) {
    const Value value = rs.Fields(column).Value();
    return value.IsEmpty() ? 0 : value.Double();
}

}  // namespace korvane
