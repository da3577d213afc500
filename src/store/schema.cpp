#include "store/schema.h"

#include "base/text.h"

namespace korvane {
namespace {

using enum ColumnKind;

constexpr ColumnSchema kServers[] = {
    {"ID", Id},
    {"idCustomer", Whole},
    {"strGroup", Text},
    {"strDesc", Text},
    {"strAddress_IP", Text},
    {"strType", Text},
    {"strPort", Text},
    {"nTimeout", Int16},
    {"nTries", Int16},
    {"nTriesCur", Int16},
    {"nListFrequency", Int16},
    {"nIntervalSeconds", Whole},
    {"strExpectedText", Text},
    {"strRequestText", Text},
    {"strUserName", Text},
    {"strPassword", Text},
    {"bIsMonitoring", YesNo},
    {"bSendUpNotify", YesNo},
    {"bNotSendBody", YesNo},
    {"strDownTime1", Text},
    {"strDownTime2", Text},
    {"nDownDuration1", Int16},
    {"nDownDuration2", Int16},
    {"strCMD", Text},
    {"strCMDUP", Text},
    {"strEmailList1", Text},
    {"strEmailList2", Text},
    {"strEmailFrom", Text},
    {"strEmailText", Text},
    {"strEmailBody", Text},
    {"nFailScanText", Int32},
    {"strCurStatus", Text},
    {"strLastResponse", Text},
    {"nAveResponse", Double},
    {"nAveSession", Double},
    {"nTotalSession", Int32},
    {"nSuccess", Int32},
    {"nFail", Int32},
    {"nPercentUp", Double},
    {"dtNextCheck", DateTime},
    {"datelastcheck", DateTime},
    {"datelastfail", DateTime},
    {"datelastreset", DateTime},
};

constexpr ColumnSchema kFailures[] = {
    {"ID", Id},          {"IDParent", Id},    {"strGroup", Text},     {"strDesc", Text},     {"strAddress_IP", Text},
    {"strType", Text},   {"strPort", Text},   {"nTimeout", Int16},    {"nFailCount", Int16}, {"nFailMax", Int16},
    {"strAction", Text}, {"strReason", Text}, {"dateFail", DateTime},
};

constexpr ColumnSchema kResponse[] = {
    {"id", Id}, {"idParent", Id}, {"txtType", Text}, {"dtCur", DateTime}, {"nAveResponse", Double}, {"nAveSession", Double},
};

constexpr ColumnSchema kResponseFailText[] = {
    {"id", Id},
    {"idParent", Id},
    {"strFailText", Text},
    {"strFailCommand", Text},
};

constexpr TableSchema kTables[] = {
    {"Servers", kServers},
    {"Failures", kFailures},
    {"Response", kResponse},
    {"ResponseFailText", kResponseFailText},
};

}  // namespace

std::span<const TableSchema> DatabaseSchema() {
    return kTables;
}

std::optional<ColumnKind> KindOfColumn(std::string_view table, std::string_view column) {
    for (const TableSchema& schema : kTables) {
        if (!EqualsNoCase(schema.name, table)) continue;
        for (const ColumnSchema& each : schema.columns) {
            if (EqualsNoCase(each.name, column)) return each.kind;
        }
    }
    return std::nullopt;
}

}  // namespace korvane
