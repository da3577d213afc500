#include "shell/entry/entry_test.h"

#include <cstdint>
#include <exception>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/operator.h"
#include "shell/entry/entry_save.h"
#include "shell/entry/entry_type.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::int16_t kWebPort = 80;  // default of an entry without a port

std::chrono::seconds TimeoutOf(const EntryFields& fields) {
    std::int16_t number = 0;
    IgnoreErrors([&] { number = Value(fields.nTimeout).Int16(); });
    return std::chrono::seconds(number);
}

// The cycle refuses a port that does not fit in 16 bits, unless a safeguard is on, and so does the test.
std::int32_t PagePort(const Desk& desk, const std::string& strPort) {
    if (Trim(strPort).empty()) return kWebPort;
    return desk.safeguards.IsOn("GuardBadEntries") ? Value(strPort).Int32() : Value(strPort).Int16();
}

/// Runs a check whose values may be no numbers.
CheckResult Check(const Desk& desk, const std::string& request, const std::function<CheckResult()>& check) {
    desk.conversation.setRequest(request);
    CheckResult result;
    try {
        result = check();
    } catch (const std::exception& error) {
        result.strReason = error.what();
    }
    desk.conversation.setResponse(result.response);
    return result;
}

CheckResult RequestPage(const Desk& desk, const EntryFields& fields) {
    const std::string url = ToLower(fields.strType) + "://" + fields.strAddress_IP;
    return Check(desk, "Port [" + fields.strPort + "] GET " + url, [&] {
        return desk.http.getURLData2({.strURL = url,
                                      .strUser = fields.strUserName,
                                      .strPassword = fields.strPassword,
                                      .nTimeout = TimeoutOf(fields),
                                      .nPort = PagePort(desk, fields.strPort),
                                      .goodStatuses = [&fields] { return fields.HTTPStatusGood; }});
    });
}

CheckResult Ping(const Desk& desk, const EntryFields& fields) {
    return Check(desk, "PING " + fields.strAddress_IP,
                 [&] { return desk.ping.DoPingRequest(fields.strAddress_IP, Value(fields.strExpectedText).Int16()); });
}

CheckResult Converse(const Desk& desk, const EntryFields& fields) {
    desk.conversation.setRequest("Port [" + fields.strPort + "] TCP/IP Connect " + fields.strAddress_IP);
    return desk.tcp.DoTCPRequest(fields.strAddress_IP, fields.strExpectedText, TimeoutOf(fields), fields.strPort);
}

std::string NameAndPort(const EntryFields& fields) {
    return "'" + fields.strAddress_IP + "' port(" + fields.strPort + ").";
}

std::string WithTimeout(const EntryFields& fields) {
    return NameAndPort(fields) + " timeout(" + fields.nTimeout + ") secs. ";
}

std::string FoundThoughItMeansFailure(const std::string& expected, const std::string& found) {
    return "Server Error: Although success text '" + expected + "' was found in the response, '" + found +
           "' was also found in the response (text to be considered a URL failure).  "
           "You have set this value in the 'Scan Text' tab (text that indicates server failure) for this server.";
}

std::string MeansFailure(const std::string& found) {
    return "Server Error: '" + found +
           "' was found in the response (text you want considered a failure).  "
           "You have set this value in the 'URL Scan Text' tab (text that indicates url failure) for this URL.";
}

TestVerdict JudgeExpectedText(const EntryFields& fields, const std::string& response, const UrlFailure& failure) {
    const std::string& expected = fields.strExpectedText;
    if (Holds(response, Trim(expected))) {
        if (failure.bFailed) return {true, FoundThoughItMeansFailure(expected, failure.strFailText)};
        return {false, "SUCCESS! " + WithTimeout(fields) + "\r\nThe string '" + expected + "' was found in the response: \r\n" +
                           response};
    }
    if (IsWebType(fields.strType)) {
        return {true, "Failure! " + fields.strType + " " + WithTimeout(fields) + "The text '" + expected +
                          "' was not found in the response."};
    }
    // The conversation has already checked the sequence: any response means that it passed.
    return {false, "Success! " + WithTimeout(fields) + "\r\n The string request/response sequence '" + expected +
                       "' was executed correctly with expected results. "};
}

}  // namespace

std::string TestBegins(const EntryFields& fields) {
    return "Doing " + fields.strType + " request to " + fields.strAddress_IP;
}

std::optional<CheckResult> RunEntryTest(const Desk& desk, const EntryFields& fields) {
    if (IsWebType(fields.strType)) return RequestPage(desk, fields);
    if (!IsPingType(fields.strType)) return Converse(desk, fields);
    if (IsValidIPAddress(fields.strAddress_IP)) return Ping(desk, fields);
    desk.person.ShowMessage(kMessageTitle, NotAnAddressMessage(fields.strAddress_IP));
    return std::nullopt;
}

TestVerdict JudgeEntryTest(const EntryFields& fields, const CheckResult& result, const std::function<UrlFailure()>& findFailure) {
    if (result.response.empty() || !result.strReason.empty()) {
        const std::string reason = result.strReason.empty() ? "No Response Returned" : result.strReason;
        return {true, "The Server Request failed. " + NameAndPort(fields) + "\r\nError Description:\r\n" + reason};
    }
    const UrlFailure failure = IsWebType(fields.strType) ? findFailure() : UrlFailure{};
    const bool expectsText = !Trim(fields.strExpectedText).empty() && !IsPingType(fields.strType);
    if (expectsText) return JudgeExpectedText(fields, result.response, failure);
    if (failure.bFailed) return {true, MeansFailure(failure.strFailText)};
    return {false, "SUCCESS! " + NameAndPort(fields) + " \r\n" + result.response};
}

UrlFailure FindUrlFailure(const Desk& desk, const std::string& response, const std::string& strID) {
    UrlFailure failure;
    IgnoreErrors([&] {
        const auto connection = OpenDatabase(desk.store, desk.dir);
        failure = IsURLFailure(desk.store, *connection, response, strID);
        connection->Close();
    });
    return failure;
}

std::string PortAdvice(const EntryFields& fields) {
    if (fields.strType == "HTTPS" && WholeOrZero(fields.strPort) == 80) {
        return "Your command might be failing because you have specified port 80 for an https request.  "
               "Normally, the standard port for SSL (https) is port 443.\r\n\r\nWhy don't you try port 443.";
    }
    if (fields.strType == "HTTP" && WholeOrZero(fields.strPort) == 443) {
        return "Your command might be failing because you have specified port 443 for an http request.  "
               "Normally, the standard port for standard http is port 80.\r\n\r\nWhy don't you try port 80?";
    }
    return "";
}

}  // namespace korvane
