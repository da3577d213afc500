#include "engine/text_rules.h"

#include "base/text.h"
#include "engine/server_table.h"

namespace korvane {

UrlFailure IsURLFailure(Store& store, Connection& conn, const std::string& strResponse, const std::string& strID) {
    UrlFailure result;
    const auto rules = store.NewRecordset();
    for (rules->Open(query::FailTextsOf(strID), conn, CursorType::Static, LockType::Optimistic); !rules->Eof();
         rules->MoveNext()) {
        const std::string text = rules->Fields("strFailText").Value().Text();
        if (!Holds(strResponse, text)) continue;
        result = {true, text, rules->Fields("strFailCommand").Value().Text()};
        break;
    }
    rules->Close();
    return result;
}

}  // namespace korvane
