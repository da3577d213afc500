#include "engine/ping_checker.h"

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

const std::string kEchoData(32, 'A');
constexpr int kTimeToLive = 255;
constexpr auto kEchoWait = 2000ms;

}  // namespace

CheckResult PingChecker::DoPingRequest(const std::string& strServer, std::int16_t nLimitMs) {
    ports_.person.SetWaitCursor(true);
    const auto start = ports_.clock.GetTickCount();
    ports_.status.setStatusMSG("Pinging " + strServer);
    std::string pingReason;
    int code = kPingTimeout;
    IgnoreErrors([&] { code = PingHost(strServer, pingReason); });
    const auto ms = (ports_.clock.GetTickCount() - start).count();

    CheckResult result;
    if (code != kPingNoHandle && code != kPingNotAnAddress) result.phases.whole = std::chrono::milliseconds(ms);
    if (ms <= nLimitMs && code >= 0 && pingReason.empty()) {
        result.response =
            "Ping Success to " + strServer + ". Took " + std::to_string(ms) + " ms. (<" + std::to_string(nLimitMs) + " ms).";
    } else {
        const std::string tooLong = ms > nLimitMs ? " -Took too long : (" + std::to_string(ms) + " ms)" : "";
        result.strReason = "Ping Failure to " + strServer + ". " + tooLong + " " + pingReason;
    }
    ports_.person.SetWaitCursor(false);
    return result;
}

int PingChecker::PingHost(const std::string& strServer, std::string& strReason) {
    const auto address = ports_.echo.InetAddr(strServer);
    if (!address) {
        strReason = " " + strServer + " is not a valid IP address.";
        return kPingNotAnAddress;
    }
    std::string whyNot;
    if (!ports_.echo.IcmpCreateFile(whyNot)) {
        strReason = "Unable to create handle to ICMP:  PING may not be supported for Windows 95 users.";
        LogWhatToAllow(whyNot);
        return kPingNoHandle;
    }
    const EchoReply reply = ports_.echo.IcmpSendEcho(*address, kEchoData, kTimeToLive, kEchoWait);
    ports_.echo.IcmpCloseHandle();
    if (!reply.answered) strReason = "Ping Timeout";
    // Without an answer the status is also 0: only the reason distinguishes the two.
    if (reply.status == 0) return static_cast<int>(reply.roundTripTime.count());
    strReason = "Ping Failure (Host did not reply or could not be reached).";
    return kPingBadReply;
}

void PingChecker::LogWhatToAllow(const std::string& whyNot) {
    if (whyNot == loggedWhyNot_) return;  // log it once, not at every ping
    loggedWhyNot_ = whyNot;
    ports_.log.WriteLog(kLogOrdinary, kLogError, "PingHost: " + whyNot);
}

bool IsValidIPAddress(std::string_view text) {
    const auto parts = Split(text, '.');
    if (parts.size() != 4) return false;
    for (const std::string& part : parts) {
        double number = -1;
        IgnoreErrors([&] { number = ParseNumber(part); });
        if (number < 0 || number > 255) return false;
    }
    return true;
}

}  // namespace korvane
