#include "engine/check_result.h"

#include "base/text.h"
#include "engine/server_table.h"
#include "store/database_files.h"

namespace korvane {

UrlFailure IsURLFailure(Store& store, Connection& conn, const std::string& strResponse, const std::string& strID) {
    UrlFailure result;
    const auto rules = OpenRows(store, conn, query::FailTextsOf(strID), CursorType::Static);
    for (; !rules->Eof() && !result.bFailed; rules->MoveNext()) {
        const std::string text = ColumnText(*rules, "strFailText");
        if (Holds(strResponse, text)) result = {true, text, ColumnText(*rules, "strFailCommand")};
    }
    rules->Close();
    return result;
}

}  // namespace korvane
