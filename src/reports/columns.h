// Columns of a row as the pages show them: the columns hold what an operator typed or an old version left, so any may be blank,
// and one blank must not cost a whole group its page.
#pragma once

#include <string>
#include <string_view>

#include "platform/connection.h"

namespace korvane {

/// Blank is the empty text.
inline std::string TextOf(Recordset& rs, std::string_view column) {
    return rs.Fields(column).Value().Text();
}

/// Blank is 0. Throws Error for a text that is no number.
inline double NumberOf(Recordset& rs, std::string_view column) {
    const Value value = rs.Fields(column).Value();
    return value.IsEmpty() ? 0 : value.Double();
}

}  // namespace korvane
