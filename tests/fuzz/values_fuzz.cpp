// Dates, numbers and texts as files and databases of others hold them.
#include <cmath>
#include <optional>
#include <string>

#include "base/datetime.h"
#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/value.h"
#include "fuzz/fuzz.h"

namespace korvane {
namespace {

template <class Read>
void AsMoment(std::string_view text, Read read) {
    const std::optional<DateTime> when = read(text);
    if (!when) return;
    Require(when->Year() >= 100 && when->Year() <= 9999, "a moment has a year");
    Require(ParseDateTime(when->Text()) == *when, "a date is read as it is written");
    Require(DateTime::FromStored(when->Stored()) == *when, "a date is stored as it is");
}

void AsNumber(std::string_view text) {
    try {
        const double number = ParseNumber(text);
        Require(ParseNumber(FormatGeneral(number)) == number, "a number is read as it is written");
        Require(std::abs(ParseNumber(FormatFixed(number, 2)) - number) <= 0.006 + std::abs(number) * 1e-13,
                "rounding to two decimals keeps the number");
    } catch (const Error&) {
    }
    const Value value(text);
    for (const auto read : {+[](const Value& v) { (void)v.Int16(); }, +[](const Value& v) { (void)v.Int32(); },
                            +[](const Value& v) { (void)v.Int64(); }, +[](const Value& v) { (void)v.Double(); },
                            +[](const Value& v) { (void)v.Bool(); }, +[](const Value& v) { (void)v.When(); }}) {
        try {
            read(value);
        } catch (const Error&) {
        }
    }
}

void AsText(std::string_view bytes) {
    const std::string text = ToUtf8(std::string(bytes));
    Require(ToUtf8(text) == text, "UTF-8 stays");
    const std::string left = Left(text, bytes.size() / 2);
    Require(text.starts_with(left) && ToUtf8(left) == left, "no character is cut in two");
    Require(Trim(Trim(text)) == Trim(text) && EqualsNoCase(ToLower(text), text), "trimming and case");
    std::string joined;
    for (const std::string& piece : Split(text, ','))
        joined += piece + ",";
    Require(joined == text + ",", "pieces are the whole text");
}

}  // namespace

void Fuzz(std::string_view input) {
    AsMoment(input, [](std::string_view text) -> std::optional<DateTime> {
        try {
            return ParseDateTime(text);
        } catch (const TypeMismatchError&) {
            return std::nullopt;
        }
    });
    AsMoment(input, &DateTime::FromStored);
    AsNumber(input);
    AsText(input);
}

}  // namespace korvane
