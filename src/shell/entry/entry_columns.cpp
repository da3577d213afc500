#include "shell/entry/entry_columns.h"

#include <cstdint>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvane {
namespace {

using Fields = EntryFields;

constexpr std::string_view kDefaultPort = "80";
constexpr std::string_view kNameMark = "XXX";  // in a mail subject: replaced by the server name

bool IsFilled(const std::string& text) {
    return !Trim(text).empty();
}

bool IsAboveZero(const std::string& text) {
    double number = 0;
    IgnoreErrors([&] { number = ParseNumber(text); });
    return number > 0;
}

std::string TrimmedName(const Fields& fields) {
    return Trim(fields.strDesc);
}

// The group becomes the name of a report folder.
std::string GroupOf(const Fields& fields) {
    std::string group = ReplaceAll(Trim(fields.strGroup), " ", "_");
    for (const std::string_view sign : {".", ",", ";"})
        group = ReplaceAll(group, sign, "");
    return group;
}

std::string SubjectOf(const Fields& fields) {
    return ReplaceAll(fields.strEmailText, kNameMark, fields.strAddress_IP);
}

std::string TrimmedExpectedText(const Fields& fields) {
    return Trim(fields.strExpectedText);
}

std::string PortOf(const Fields& fields) {
    std::int64_t number = 0;
    IgnoreErrors([&] { number = ParseWhole(fields.strPort); });
    return number < 1 ? std::string(kDefaultPort) : fields.strPort;
}

constexpr EntryColumn kColumns[] = {
    {.column = "strDownTime1", .text = &Fields::strDownTime1, .wanted = IsFilled},
    {.column = "strDownTime2", .text = &Fields::strDownTime2, .wanted = IsFilled},
    {.column = "nDownDuration1", .text = &Fields::nDownDuration1, .wanted = IsAboveZero},
    {.column = "nDownDuration2", .text = &Fields::nDownDuration2, .wanted = IsAboveZero},
    {.column = "nIntervalSeconds", .text = &Fields::nIntervalSeconds},
    {.column = "strAddress_IP", .text = &Fields::strAddress_IP},
    {.column = "strDesc", .text = &Fields::strDesc, .stored = TrimmedName},
    {.column = "strGroup", .text = &Fields::strGroup, .stored = GroupOf},
    {.column = "strEmailList1", .text = &Fields::strEmailList1},
    {.column = "strEmailList2", .text = &Fields::strEmailList2},
    {.column = "strEmailFrom", .text = &Fields::strEmailFrom},
    {.column = "nTries", .text = &Fields::nTries},
    {.column = "strEmailText", .text = &Fields::strEmailText, .stored = SubjectOf},
    {.column = "strEmailBody", .text = &Fields::strEmailBody},
    {.column = "bIsMonitoring", .mark = &Fields::bIsMonitoring},
    {.column = "bNotSendBody", .mark = &Fields::bNotSendBody},
    {.column = "bSendUpNotify", .mark = &Fields::bSendUpNotify},
    {.column = "strCMDUP", .text = &Fields::strCMDUP},
    {.column = "strCMD", .text = &Fields::strCMD},
    {.column = "strUserName", .text = &Fields::strUserName},
    {.column = "strPassword", .text = &Fields::strPassword},
    {.column = "strExpectedText", .text = &Fields::strExpectedText, .stored = TrimmedExpectedText},
    {.column = "nTimeout", .text = &Fields::nTimeout},
    {.column = "strType", .text = &Fields::strType, .wanted = IsFilled},
    {.column = "strPort", .text = &Fields::strPort, .stored = PortOf},
    {.column = "strRequestText", .text = &Fields::strRequestText},
};

}  // namespace

std::span<const EntryColumn> EntryColumns() {
    return kColumns;
}

}  // namespace korvane
