// How the cycle checks one entry: by its type, and a page by its texts.
#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "engine/http_status.h"
#include "engine/monitor_cycle.h"
#include "engine/server_table.h"

namespace korvane {
namespace {

using std::chrono::seconds;

constexpr std::string_view kDefaultPingLimit = "1000";

}  // namespace

bool MonitorCycle::CheckRow(Tick& tick) {
    Recordset& rs = *tick.rs;
    ports_.events.DoEvents();
    Step("set ave response");
    if (rs.Fields("nAveResponse").Value().IsEmpty()) rs.Fields("nAveResponse") = 0.0;
    state_.nLastAverage = rs.Fields("nAveResponse").Value().Double();

    ports_.network.AskBeforeCheck();
    const CheckKind kind = CheckKindOf(ColumnText(rs, "strType"));
    const bool isUrl = kind == CheckKind::Http || kind == CheckKind::Https;
    const TimedCheckResult result =
        isUrl ? RequestUrl(rs, kind == CheckKind::Http ? "http" : "https") : PingOrTalk(rs, kind == CheckKind::Ping);
    ports_.keeper.Take(rs, result);
    state_.lastCheck = ports_.clock.UtcNow();
    tick.strReason = result.strReason;
    rs.Fields("strLastResponse") = WithoutControls(Left(result.response, kMostStoredCharacters));

    if (!result.strReason.empty()) {
        Step("call DoFailure");
        ports_.log.Info("1 calling DoFailure. strReason=" + result.strReason);
        tick.owed = ports_.accounting.DoFailure(rs, *tick.conn, result.response, result.strReason);
        return true;
    }
    if (isUrl && !PassesTextRules(tick, result.response)) return false;
    Step("dosuccess");
    tick.owed.refusal = ports_.accounting.DoSuccess(rs, *tick.conn, result.nResponseMs);
    ports_.events.DoEvents();
    return true;
}

TimedCheckResult MonitorCycle::RequestUrl(Recordset& rs, const std::string& scheme) {
    const std::string address = ColumnText(rs, "strAddress_IP");
    const std::string user = ColumnText(rs, "strUserName");
    const std::string proxy = ports_.settings.getKvSettingsColVal("ProxyName");
    if (!proxy.empty()) Say("Using Proxy Server: " + proxy);
    if (!user.empty()) Say("Basic Authentication UserName='" + user + "' Password=[not shown]");
    Say("Timeout [" + TimeoutOf(rs).Text() + " sec.] - Port[" + ColumnText(rs, "strPort") + "] getting '" + address +
        "'. Please wait...");
    ports_.person.SetProgress(0, 100);
    Step("get urldata2");
    if (rs.Fields("strPort").Value().IsEmpty()) rs.Fields("strPort") = "80";
    TimedCheckResult result = ports_.http.getURLData2({
        .strURL = scheme + "://" + address,
        .strUser = user,
        .strPassword = ColumnText(rs, "strPassword"),
        .nTimeout = seconds(TimeoutOf(rs).Int16()),
        .nPort = PortOf(rs),
        .goodStatuses = [&] { return GoodStatusesOf(rs.Fields("ID").Value().Int64()); },
        .measured = ports_.keeper.Wanted(),
    });
    Step("done getting urldata2");
    ports_.person.SetProgress(0, 100);
    if (!result.strReason.empty()) SayAndLog(ColumnText(rs, "strType") + " failure: " + result.strReason);
    return result;
}

// A store that refuses this read must not lose the outcome of the check.
std::string MonitorCycle::GoodStatusesOf(std::int64_t id) {
    std::string& statuses = goodStatuses_[id];
    if (!IgnoreErrors([&] { statuses = ports_.ofEntries.Read(id, kHttpStatusGood); }))
        ports_.safeguards.Acted(kHttpStatusFails,
                                "The good statuses of an entry can't be read; those that were read last count.");
    return statuses;
}

std::int32_t MonitorCycle::PortOf(Recordset& rs) const {
    const Value port = rs.Fields("strPort").Value();
    if (!ports_.badEntries.On()) return port.Int16();
    if (port.Int32() > kHighestPort) throw OverflowError();
    return port.Int32();
}

TimedCheckResult MonitorCycle::PingOrTalk(Recordset& rs, bool ping) {
    ports_.person.ShowProgress(ports_.person.WindowVisible());
    ports_.person.SetProgress(0, 100);
    const auto start = ports_.clock.GetTickCount();
    const CheckResult result = ping ? Ping(rs) : Talk(rs);
    const auto took = ports_.clock.GetTickCount() - start;
    ports_.person.ShowProgress(false);
    return {result, took};
}

CheckResult MonitorCycle::Ping(Recordset& rs) {
    if (rs.Fields("strExpectedText").Value().IsEmpty()) rs.Fields("strExpectedText") = kDefaultPingLimit;
    const std::string address = ColumnText(rs, "strAddress_IP");
    Step("dopingrequest");
    CheckResult result = ports_.ping.DoPingRequest(address, rs.Fields("strExpectedText").Value().Int16());
    if (!result.response.empty()) {
        Say(result.response);
    } else {
        const std::string failure = "Ping failed " + address + " " + result.strReason;
        Say(failure);
        ports_.log.Info(failure);
    }
    return result;
}

CheckResult MonitorCycle::Talk(Recordset& rs) {
    Step("DoTCPRequest s=strexpectedtext");
    const std::string expected = ColumnText(rs, "strExpectedText");
    CheckResult result = ports_.tcp.DoTCPRequest(ColumnText(rs, "strAddress_IP"), expected, seconds(TimeoutOf(rs).Int16()),
                                                 ColumnText(rs, "strPort"));
    if (!result.strReason.empty()) {
        Say("Failure: TCP Error: " + result.strReason);
        ports_.log.Info("DoTCPRequest failure = " + result.strReason);
    } else if (Holds(expected, ",")) {
        Say("Success: TCP Request/Response steps '" + expected + "' worked correctly.");
    } else if (!expected.empty()) {
        Say("Success: TCP Server Responded with '" + result.response + "'.");
    } else {
        Say("Success: TCP Server Connected.");
    }
    return result;
}

bool MonitorCycle::PassesTextRules(Tick& tick, const std::string& response) {
    Recordset& rs = *tick.rs;
    const Value scanned = rs.Fields("nFailScanText").Value();
    if (!scanned.IsBlank() && scanned.Int64() > 0) {
        Step("check if failure text");
        const UrlFailure failure = IsURLFailure(ports_.store, *tick.conn, response, ColumnText(rs, "id"));
        if (failure.bFailed) {
            tick.strReason =
                "Server Error: '" + failure.strFailText +
                "' found in the response.  You have set this value in the 'URL Scan Text' tab (text that indicates url "
                "failure) for this URL.";
            Say(tick.strReason);
            Step("dofailure2");
            ports_.log.Info("2 Calling DoFailure. Unexpected Text Returned. strReason=" + tick.strReason);
            tick.owed = ports_.accounting.DoFailure(rs, *tick.conn, response, tick.strReason);
            return false;
        }
    }
    const std::string expected = ColumnText(rs, "strExpectedText");
    if (expected.empty() || Holds(response, expected)) {
        Say(expected.empty() ? "Success: Response returned." : "Success: Found '" + expected + "' in the response...");
        return true;
    }
    // The reason stays empty: this message goes to the status line and the log, but neither to the `Failures` row nor to the
    // mail.
    const std::string message = "Failure: Didn't find '" + expected + "' in the response...";
    Say(message);
    Step("dofailure3");
    ports_.log.Info("3 calling DoFailure. " + message);
    tick.owed = ports_.accounting.DoFailure(rs, *tick.conn, response, tick.strReason);
    return false;
}

}  // namespace korvane
