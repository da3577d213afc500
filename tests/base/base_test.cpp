// Dates, numbers and texts: the forms that logs, queries and the operator rely on.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "base/datetime.h"
#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/value.h"

namespace korvane {
namespace {

TEST(DateTimeText, HasNoPaddingAndNoTimeAtMidnight) {
    struct Case {
        DateTime when;
        const char* text;
        const char* stored;
    };
    const Case cases[] = {
        {DateTime::Of(2026, 11, 21, 15, 4, 5), "11/21/2026 3:04:05 PM", "2026-11-21 15:04:05"},
        {DateTime::Of(2026, 1, 2), "1/2/2026", "2026-01-02 00:00:00"},
        {DateTime::Of(2026, 1, 2, 0, 0, 1), "1/2/2026 12:00:01 AM", "2026-01-02 00:00:01"},
        {DateTime::Of(2024, 2, 29, 12, 0, 0), "2/29/2024 12:00:00 PM", "2024-02-29 12:00:00"},
        {DateTime::Of(1969, 12, 31, 23, 59, 59), "12/31/1969 11:59:59 PM", "1969-12-31 23:59:59"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.when.Text(), c.text);
        EXPECT_EQ(c.when.Stored(), c.stored);
        EXPECT_EQ(DateTime::FromStored(c.stored), c.when);
        EXPECT_EQ(ParseDateTime(c.text), c.when);
    }
}

TEST(DateTimeText, MonthEndsAndLeapDaysFollowTheCalendar) {
    EXPECT_EQ((DateTime::Of(2024, 2, 28, 23, 59, 59) + std::chrono::seconds(1)).DateText(), "2/29/2024");
    EXPECT_EQ((DateTime::Of(2026, 2, 28, 23, 59, 59) + std::chrono::seconds(1)).DateText(), "3/1/2026");
    EXPECT_EQ((DateTime::Of(2027, 1, 1) - std::chrono::seconds(1)).Text(), "12/31/2026 11:59:59 PM");
    EXPECT_THROW(DateTime::Of(2026, 2, 29), Error);
    EXPECT_THROW(DateTime::Last() + std::chrono::seconds(1), OverflowError);
    EXPECT_THROW(DateTime() + std::chrono::seconds::max(), OverflowError);
    EXPECT_THROW(DateTime() - std::chrono::seconds::max(), OverflowError);
}

TEST(ParseDateTime, ReadsWhatPeopleTypeAndRefusesTheRest) {
    const DateTime dayZero = DateTime::Of(1899, 12, 30);
    const std::vector<std::pair<std::string, std::chrono::seconds>> times = {
        {"23:30", std::chrono::minutes(23 * 60 + 30)}, {"9:05:30 pm", std::chrono::seconds(21 * 3600 + 5 * 60 + 30)},
        {"12:00 AM", std::chrono::seconds(0)},         {"9 AM", std::chrono::hours(9)},
        {" 07:05am ", std::chrono::minutes(425)},
    };
    for (const auto& [text, time] : times)
        EXPECT_EQ(ParseDateTime(text), dayZero + time) << text;
    EXPECT_EQ(ParseDateTime("2026-11-21 23:30:00"), DateTime::Of(2026, 11, 21, 23, 30));
    for (const char* text :
         {"", "noon", "24:00", "13:00 PM", "9:60", "2/30/2026", "11/21/2026 x", "9", "1:2:3:4", "-1:00", "99999/1/1"}) {
        EXPECT_THROW(ParseDateTime(text), TypeMismatchError) << text;
    }
}

TEST(QueryDate, FailsAtExactlyMidnight) {
    EXPECT_EQ(QueryDate(DateTime::Of(2026, 3, 4, 5, 6, 7)), "3/4/2026 5:06:07 AM");
    EXPECT_THROW(QueryDate(DateTime::Of(2026, 3, 4)), Error);
}

TEST(Numbers, RoundHalfToEvenAndFormatHalfAway) {
    const std::vector<std::pair<double, std::int64_t>> rounded = {{0.5, 0},  {1.5, 2},   {2.5, 2},
                                                                  {-0.5, 0}, {-1.5, -2}, {2.4999, 2}};
    for (const auto& [number, whole] : rounded)
        EXPECT_EQ(RoundHalfEven(number), whole) << number;
    struct Case {
        double number;
        int decimals;
        const char* text;
    };
    const Case cases[] = {{2.675, 2, "2.68"},
                          {0.5, 0, "1"},
                          {-0.5, 0, "-1"},
                          {1.005, 2, "1.01"},
                          {0, 2, "0.00"},
                          {-0.001, 2, "0.00"},
                          {1234567.891, 2, "1234567.89"}};
    for (const Case& c : cases)
        EXPECT_EQ(FormatFixed(c.number, c.decimals), c.text);
    EXPECT_EQ(FormatGeneral(1500000), "1500000");
}

TEST(Numbers, LeaveTheirRangeAsErrors) {
    EXPECT_EQ(CheckedInt16(32767), 32767);
    EXPECT_THROW(CheckedInt16(32768), OverflowError);
    EXPECT_THROW(CheckedInt32(2147483648), OverflowError);
    EXPECT_THROW(RoundHalfEven(9.3e18), OverflowError);
    EXPECT_EQ(ParseWhole("9111211545123456789"), 9111211545123456789);
    EXPECT_EQ(ParseWhole(" +2.5 "), 2);
    for (const char* text : {"", "abc", "1x", "0x10", "+-1", "nan", "inf", "1,000"})
        EXPECT_THROW(ParseWhole(text), TypeMismatchError) << text;
}

TEST(Text, CutsAtCharactersAndReadsForeignBytes) {
    EXPECT_EQ(Left("gr\xC3\xBC\xC3\x9F", 3), "gr\xC3\xBC");
    EXPECT_EQ(Left("ab", 5), "ab");
    EXPECT_EQ(ToUtf8("gr\xFC\xDF"), "gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(ToUtf8("\xC3\xBC"), "\xC3\xBC");
    for (const char* bytes : {"\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"})
        EXPECT_NE(ToUtf8(bytes), bytes);
}

TEST(Text, TheEmptyTextIsFoundInAnyTextButTheEmptyOne) {
    EXPECT_TRUE(Holds("x", ""));
    EXPECT_FALSE(Holds("", ""));
    EXPECT_FALSE(Holds("welcome", "Welcome"));
    EXPECT_EQ(Split("220,,x", ','), (std::vector<std::string>{"220", "", "x"}));
}

TEST(ValueConversion, RaisesWhatCannotBeRead) {
    EXPECT_THROW(Value().Int64(), BlankError);
    EXPECT_THROW(Value("").Int16(), TypeMismatchError);
    EXPECT_THROW(Value("70000").Int16(), OverflowError);
    EXPECT_THROW(Value(DateTime()).Double(), TypeMismatchError);
    EXPECT_EQ(Value(2.5).Int32(), 2);
    EXPECT_TRUE(Value("yes").Bool());
    EXPECT_FALSE(Value().Bool());
    EXPECT_EQ(Value().Text(), "");
}

}  // namespace
}  // namespace korvane
