// The words in which the editor says how a test of a server went.
#include "shell/entry/entry_test.h"

#include <gtest/gtest.h>

#include "shell/entry/entry_commands.h"
#include "shell/program.h"
#include "shell/run/monitor_window.h"
#include "support/memory_files.h"
#include "support/test_database.h"

namespace korvane {
namespace {

EntryFields FieldsOf(const char* type, const char* port, const char* expected) {
    EntryFields fields;
    fields.strType = type;
    fields.strPort = port;
    fields.strExpectedText = expected;
    fields.strAddress_IP = "server";
    fields.nTimeout = "15";
    return fields;
}

TEST(EntryTest, VerdictsWordForWord) {
    struct Case {
        const char* type;
        const char* expected;
        CheckResult result;
        const char* failText;  // null: none is found
        TestVerdict verdict;
    };
    const Case cases[] = {
        {"HTTP",
         "ok",
         {"", ""},
         nullptr,
         {true, "The Server Request failed. 'server' port(80).\r\nError Description:\r\nNo Response Returned"}},
        {"FTP",
         "220",
         {"hi", "refused"},
         nullptr,
         {true, "The Server Request failed. 'server' port(80).\r\nError Description:\r\nrefused"}},
        {"HTTPS",
         " ok ",
         {"all ok", ""},
         "all",
         {true,
          "Server Error: Although success text ' ok ' was found in the response, 'all' was also found in the response (text to "
          "be considered a URL failure).  You have set this value in the 'Scan Text' tab (text that indicates server failure) "
          "for this server."}},
        {"HTTP",
         " ok ",
         {"all ok", ""},
         nullptr,
         {false, "SUCCESS! 'server' port(80). timeout(15) secs. \r\nThe string ' ok ' was found in the response: \r\nall ok"}},
        {"HTTP",
         "OK",
         {"all ok", ""},
         "all",
         {true, "Failure! HTTP 'server' port(80). timeout(15) secs. The text 'OK' was not found in the response."}},
        {"SMTP",
         "220,QUIT,221",
         {"221 bye", ""},
         "221",
         {false,
          "Success! 'server' port(80). timeout(15) secs. \r\n The string request/response sequence '220,QUIT,221' was executed "
          "correctly with expected results. "}},
        {"HTTP",
         " ",
         {"all ok", ""},
         "all",
         {true,
          "Server Error: 'all' was found in the response (text you want considered a failure).  You have set this value in the "
          "'URL Scan Text' tab (text that indicates url failure) for this URL."}},
        {"PING", "1000", {"Ping Success", ""}, "Ping", {false, "SUCCESS! 'server' port(80). \r\nPing Success"}},
    };
    for (const Case& each : cases) {
        const TestVerdict verdict = JudgeEntryTest(FieldsOf(each.type, "80", each.expected), each.result, [&] {
            return each.failText == nullptr ? UrlFailure{} : UrlFailure{true, each.failText, ""};
        });
        EXPECT_EQ(verdict.failed, each.verdict.failed) << each.verdict.text;
        EXPECT_EQ(verdict.text, each.verdict.text);
    }
}

struct Viewer : ConversationWindow {
    std::vector<std::string> lines;
    bool Visible() const override { return true; }
    void setRequest(const std::string& text) override { lines.push_back("> " + text); }
    void setResponse(const std::string& text) override { lines.push_back("< " + text); }
};

struct WithWindow : MonitorWindow {
    bool HasWindow() const override { return true; }
};

TEST(EntryTest, EachKindOfCheckShowsItsConversation) {
    TestDatabase database;
    Viewer viewer;
    WithWindow window;
    Program program(database.Folder(), KORVANE_DIST_DIR, "",
                    [&](Timers&) { return DesktopOfProgram{.window = &window, .conversation = &viewer}; });
    ASSERT_EQ(program.run.StartUp(), Run::Started::Running);
    program.net.Page("https://server").Answer("hello", std::chrono::milliseconds(5));
    program.net.Host("server").Port(25).Speak("220 hi\r\n").OnLine("QUIT", "221 bye\r\n");
    program.net.Host("10.0.0.1").Echo(std::chrono::milliseconds(7));
    const Desk desk = program.run.TheDesk();
    const auto run = [&](EntryFields fields, const char* name) {
        fields.strAddress_IP = name;
        fields.strUserName = "me";
        const auto result = RunEntryTest(desk, fields);
        return result ? result->response + "|" + result->strReason : "no test";
    };
    EXPECT_EQ(run(FieldsOf("HTTPS", "8443", ""), "server"), "hello|");
    EXPECT_EQ(program.net.Page("https://server").LastRequest().RemotePort, 8443);
    EXPECT_EQ(program.net.Page("https://server").LastRequest().UserName, "me");
    EXPECT_EQ(run(FieldsOf("HTTP", "70000", ""), "server"), "|Overflow");
    EXPECT_EQ(run(FieldsOf("SMTP", "25", "220,QUIT,221"), "server"), "221 bye\r\n|");
    EXPECT_EQ(run(FieldsOf("PING", "ICMP", "1000"), "10.0.0.1"), "Ping Success to 10.0.0.1. Took 7 ms. (<1000 ms).|");
    EXPECT_EQ(run(FieldsOf("PING", "ICMP", "1000"), "server"), "no test");
    EXPECT_EQ(viewer.lines,
              (std::vector<std::string>{"> Port [8443] GET https://server", "< hello", "> Port [70000] GET http://server", "< ",
                                        "> Port [25] TCP/IP Connect server", "< 220 hi\r\n", "> QUIT", "< 221 bye\r\n",
                                        "> PING 10.0.0.1", "< Ping Success to 10.0.0.1. Took 7 ms. (<1000 ms)."}));
}

TEST(EntryTest, AdviceOnPortsThatWereMixedUp) {
    EXPECT_EQ(
        PortAdvice(FieldsOf("HTTPS", "80", "")),
        "Your command might be failing because you have specified port 80 for an https request.  Normally, the standard port for "
        "SSL (https) is port 443.\r\n\r\nWhy don't you try port 443.");
    EXPECT_EQ(
        PortAdvice(FieldsOf("HTTP", "443", "")),
        "Your command might be failing because you have specified port 443 for an http request.  Normally, the standard port for "
        "standard http is port 80.\r\n\r\nWhy don't you try port 80?");
    EXPECT_EQ(PortAdvice(FieldsOf("HTTP", "80", "")), "");
    EXPECT_EQ(PortAdvice(FieldsOf("FTP", "443", "")), "");
}

TEST(EntryTest, FilesBecomeCommands) {
    MemoryFiles files;
    files.CreateFolder("/bin");
    files.Replace("/bin/tool", "");
    EXPECT_EQ(CommandOfFile(files, "/bin/tool"), "/bin/tool");
    EXPECT_EQ(CommandOfFile(files, "/bin/other"), "/bin/other.exe");
    EXPECT_EQ(CommandOfFile(files, "/my bin/other.bat"), "\"/my bin/other.bat\"");
}

}  // namespace
}  // namespace korvane
