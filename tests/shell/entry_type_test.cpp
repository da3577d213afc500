// What types of servers mean to the editor of an entry, and what is said while its inputs are typed.
#include "shell/entry/entry_type.h"

#include <gtest/gtest.h>

#include "shell/entry/entry_hints.h"
#include "shell/entry/entry_name.h"

namespace korvane {
namespace {

TEST(EntryType, TextsByTypeAndByWhatTheEntryHas) {
    struct Case {
        const char* type;
        EntryTypeTexts given;  // port, request and expected text
        bool typeChanged;
        const char* port;
        const char* request;
        const char* expected;
    };
    const Case cases[] = {
        {"HTTP", {"", "", "8080", "old", "Welcome"}, false, "8080", "GET / HTTP/1.0", "Welcome"},
        {"HTTP", {"", "", "8080", "old", ""}, true, "80", "GET / HTTP/1.0", ""},
        {"HTTPS", {"", "", "80", "", ""}, false, "80", "GET / HTTPS/1.0", ""},
        {"HTTPS", {"", "", "80", "", ""}, true, "443", "GET / HTTPS/1.0", ""},
        {"PING", {"", "", "80", "old", ""}, false, "ICMP", "", "1000"},
        {"PING", {"", "", "80", "old", "250"}, true, "ICMP", "", "250"},
        {"SMTP", {"", "", "80", "", ""}, true, "25", "", "220,QUIT,221"},
        {"POP", {"", "", "80", "", "+OK,NOOP,+OK"}, false, "109", "", "+OK,NOOP,+OK"},
        {"IMAP", {"", "", "143", "", ""}, false, "443", "", ""},
        {"DNS", {"", "", "53", "", "kept"}, false, "53", "", "kept"},
        {"Other Port", {"", "", "4711", "HELO", "hi"}, true, "4711", "HELO", "hi"},
        {"Other Port", {"", "", "", "", ""}, false, "", "", ""},
    };
    for (const Case& each : cases) {
        const auto table = InitServerTypes(each.given.port, each.given.request, each.given.expected, each.typeChanged);
        ASSERT_EQ(table.size(), 20U);
        const int index = IndexOfType(table, each.type);
        ASSERT_GE(index, 0) << each.type;
        const EntryTypeTexts& row = table[static_cast<std::size_t>(index)];
        EXPECT_EQ(row.port, each.port) << each.type;
        EXPECT_EQ(row.request, each.request) << each.type;
        EXPECT_EQ(row.expected, each.expected) << each.type;
    }
    const auto table = InitServerTypes("", "", "", false);
    EXPECT_EQ(IndexOfType(table, "http"), 0);
    EXPECT_EQ(table.back().prefix, "custom");
    EXPECT_EQ(IndexOfType(table, "HTTPX"), -1);
}

TEST(EntryType, WhatEachClassAllows) {
    EXPECT_TRUE(ScreenOfType("HTTPS").webPages);
    EXPECT_TRUE(ScreenOfType("HTTP").portEnabled);
    EXPECT_EQ(ScreenOfType("HTTP").addressLabel, "Web Page URL:");
    EXPECT_FALSE(ScreenOfType("PING").timeoutShown);
    EXPECT_EQ(ScreenOfType("PING").expectedLabel, "PING timeout in milliseconds:");
    EXPECT_TRUE(ScreenOfType("Other Port").requestEnabled);
    EXPECT_FALSE(ScreenOfType("FTP").portEnabled);
    EXPECT_EQ(ScreenOfType("FTP").expectedEnabled, std::nullopt);
    EXPECT_EQ(ScreenOfType("FTP").addressLabel, "Server Name or IP:");
}

TEST(EntryType, NamesLoseTheirSchemes) {
    struct Case {
        const char* typed;
        const char* whileTyping;
        const char* atSaving;
    };
    for (const Case& each :
         {Case{"www.example.com/a b", "www.example.com/a b", "www.example.com/a b"}, Case{"HTTP://x", "x", "HTTP://x"},
          Case{"Http://x", "x", "Http://x"}, Case{"https://x/?to=http://y", "x/?to=y", "x/?to=y"}, Case{"ftp://x ", "x", "x "},
          Case{"x/http://y", "x/http://y", "x/http://y"}, Case{"httpd.example", "httpd.example", "httpd.example"}}) {
        EXPECT_EQ(CleanTypedName(each.typed), each.whileTyping);
        const std::string saved = BeginsWithScheme(each.typed) ? WithoutSchemes(each.typed) : each.typed;
        EXPECT_EQ(saved, each.atSaving);
    }
    for (const char* bad : {"", "0", "-3", "abc", "0.5", "99999999999999999999999"})
        EXPECT_EQ(MendedTimeout(bad), "1") << bad;
    EXPECT_EQ(MendedTimeout("30"), std::nullopt);
}

TEST(EntryType, ExplanationsOfWhatIsTyped) {
    EntryFields fields;
    fields.strAddress_IP = "mail.example";
    fields.nTries = "3";
    fields.strType = "SMTP";
    fields.strExpectedText = "220,QUIT,221";
    EXPECT_EQ(
        ExplainExpectedText(fields),
        "The case sensitive request, response sequence must be as follows: Connect to 'mail.example'. Response '220' must be "
        "returned. Request 'QUIT' sent. Response '221' must be returned. If this fails 3 times in a row, it's considered a "
        "Server failure. ");
    fields.strType = "HTTP";
    EXPECT_EQ(
        ExplainExpectedText(fields),
        "The HTTP request to 'mail.example'must return the case sensitive response '220,QUIT,221'. If this fails 3 times in a "
        "row, it's considered a Server failure. ");
    fields.strType = "PING";
    fields.strExpectedText = "500";
    EXPECT_EQ(ExplainExpectedText(fields),
              "This ping request must return a response within 500 ms. If this fails 3 times in a row, it's considered a Server "
              "failure. ");
    EXPECT_EQ(
        ExplainDisplayName(fields),
        "Value is blank so now Korvane will display the Server Name 'mail.example' only. Blank out this field to have just the "
        "server name (mail.example)displayed instead.");
    EXPECT_EQ(IntervalInMinutes("90"), "Seconds.  (1.5 minutes).");
    EXPECT_EQ(IntervalInMinutes("soon"), "Seconds.");
}

}  // namespace
}  // namespace korvane
