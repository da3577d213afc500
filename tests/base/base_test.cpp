// Dates, numbers and texts: the forms that logs, queries and the operator rely on.
#include <gtest/gtest.h>

#include "base/datetime.h"
#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/value.h"

namespace korvane::base_test {

using std::chrono::seconds;

TEST(DateTimes, AreWrittenStoredAndReadAgain) {
    const std::tuple<DateTime, std::string, std::string> cases[] = {
        {DateTime::Of(2026, 11, 21, 15, 4, 5), "11/21/2026 3:04:05 PM", "2026-11-21 15:04:05"},
        {DateTime::Of(2026, 1, 2), "1/2/2026", "2026-01-02 00:00:00"},
        {DateTime::Of(2026, 1, 2, 0, 0, 1), "1/2/2026 12:00:01 AM", "2026-01-02 00:00:01"},
        {DateTime::Of(1969, 12, 31, 23, 59, 59), "12/31/1969 11:59:59 PM", "1969-12-31 23:59:59"},
        {DateTime::Of(2024, 2, 28, 23, 59, 59) + seconds(43201), "2/29/2024 12:00:00 PM", "2024-02-29 12:00:00"},
        {DateTime::Of(2026, 2, 28, 23, 59, 59) + seconds(1), "3/1/2026", "2026-03-01 00:00:00"},
        {DateTime::Of(2027, 1, 1) - seconds(1), "12/31/2026 11:59:59 PM", "2026-12-31 23:59:59"},
    };
    for (const auto& [when, text, stored] : cases) {
        EXPECT_EQ(when.Text() + when.Stored(), text + stored);
        EXPECT_EQ(DateTime::FromStored(stored), when);
        EXPECT_EQ(ParseDateTime(text), when);
        EXPECT_EQ(ParseDateTime(stored), when);
    }
    EXPECT_THROW(DateTime::Of(2026, 2, 29), Error);
    EXPECT_THROW(DateTime::Last() + seconds(1), OverflowError);
    EXPECT_THROW(DateTime() + seconds::max(), OverflowError);
    EXPECT_THROW(DateTime() - seconds::max(), OverflowError);
    EXPECT_EQ(QueryDate(DateTime::Of(2026, 3, 4, 5, 6, 7)), "3/4/2026 5:06:07 AM");
    EXPECT_THROW(QueryDate(DateTime::Of(2026, 3, 4)), Error) << "at exactly midnight";
}

TEST(DateTimes, AreReadAsPeopleTypeTimes) {
    const std::pair<const char*, int> times[] = {{"23:30", 84600},    {"9:05:30 pm", 75930}, {"12:00 AM", 0},
                                                 {"12:30 AM", 1800},  {"12:30 pm", 45000},   {"9 AM", 32400},
                                                 {" 07:05am ", 25500}};
    for (const auto& [text, time] : times)
        EXPECT_EQ(ParseDateTime(text), DateTime::Of(1899, 12, 30) + seconds(time)) << text;
    for (const char* text :
         {"", "noon", "24:00", "13:00 PM", "9:60", "2/30/2026", "11/21/2026 x", "9", "1:2:3:4", "-1:00", "99999/1/1"})
        EXPECT_THROW(ParseDateTime(text), TypeMismatchError) << text;
}

TEST(Numbers, RoundHalfToEvenAndAreWrittenHalfAway) {
    const std::pair<double, int> rounded[] = {{0.5, 0}, {1.5, 2}, {2.5, 2}, {-0.5, 0}, {-1.5, -2}, {2.4999, 2}};
    for (const auto& [number, whole] : rounded)
        EXPECT_EQ(RoundHalfEven(number), whole) << number;
    std::string written;
    for (const auto& [number, decimals] :
         {std::pair{2.675, 2}, {1.005, 2}, {-0.001, 2}, {1234567.891, 2}, {0.5, 0}, {-0.5, 0}, {999.5, 0}, {-100., 0}})
        written += FormatFixed(number, decimals) + " " + FormatGrouped(number, decimals) + " ";
    EXPECT_EQ(written, "2.68 2.68 1.01 1.01 0.00 0.00 1234567.89 1,234,567.89 1 1 -1 -1 1000 1,000 -100 -100 ");
    EXPECT_EQ(FormatGeneral(1500000), "1500000");
    EXPECT_THROW(CheckedInt16(32768), OverflowError);
    EXPECT_THROW(CheckedInt32(2147483648), OverflowError);
    EXPECT_THROW(RoundHalfEven(9.3e18), OverflowError);
    EXPECT_EQ(ParseWhole("9111211545123456789"), 9111211545123456789);
    EXPECT_EQ(ParseWhole(" +2.5 "), 2);
    for (const char* text : {"", "abc", "1x", "0x10", "+-1", "nan", "inf", "1,000"})
        EXPECT_THROW(ParseWhole(text), TypeMismatchError) << text;
}

TEST(Texts, AreCutAtCharactersAndReadFromForeignBytes) {
    EXPECT_EQ(Left("gr\xC3\xBC\xC3\x9F", 3) + Left("ab", 5),
              "gr\xC3\xBC"
              "ab");
    EXPECT_EQ(ToUtf8("gr\xFC\xDF") + ToUtf8("\xC3\xBC"), "gr\xC3\xBC\xC3\x9F\xC3\xBC");
    for (const char* bytes : {"\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"})
        EXPECT_NE(ToUtf8(bytes), bytes);
    EXPECT_TRUE(Holds("x", "") && !Holds("", "") && !Holds("welcome", "Welcome"));
    EXPECT_EQ(Split("220,,x", ','), (std::vector<std::string>{"220", "", "x"}));
    EXPECT_TRUE(!LessNoCase()("bALLInDB", "bAllInDB") && LessNoCase()("A", "b") && LessNoCase()("a", "B"));
}

TEST(Values, RaiseWhatCannotBeRead) {
    EXPECT_THROW(Value().Int64(), BlankError);
    EXPECT_THROW(Value(DateTime()).Double(), TypeMismatchError);
    EXPECT_THROW(Value("70000").Int16(), OverflowError);
    EXPECT_EQ(Value(2.5).Text() + Value(true).Text() + Value().Text(), "2.5True");
    EXPECT_TRUE(Value(2.5).Int32() == 2 && Value("yes").Bool() && !Value().Bool());
}

}  // namespace korvane::base_test
