#include "engine/http_requester.h"

#include <algorithm>
#include <optional>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/http_status.h"
#include "platform/wait.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kSettleLimit = 6000ms;  // wait for an earlier request on the same slot
constexpr auto kHiccupLimit = 500ms;   // an empty answer faster than this is requested again
constexpr int kMostAttempts = 11;
constexpr std::string_view kNoResponse = "No Response Returned.";
constexpr std::string_view kBinaryAnswer = "Binary Data Returned";

constexpr std::string_view kSameHostRedirects = "SameHostRedirects";

constexpr double kFullAtAverages = 1.2;
constexpr int kBarMaximum = 100;

}  // namespace

void RequestProgress::Begin() {
    nProgressTicks_.push_back(0);
    const bool watched = ports_.person.WindowVisible();
    ports_.TimerProgress.SetEnabled(watched);
    if (watched) ports_.person.SetWaitCursor(true);
}

void RequestProgress::End() {
    nProgressTicks_.pop_back();
    if (!nProgressTicks_.empty()) return;
    ports_.TimerProgress.SetEnabled(false);
    ports_.person.SetWaitCursor(false);
    ports_.person.SetProgress(0, kBarMaximum);
}

void RequestProgress::Resume() {
    if (!nProgressTicks_.empty()) ports_.TimerProgress.SetEnabled(true);
}

void RequestProgress::TimerProgress_Timer() {
    const double averageSeconds = ports_.state.nLastAverage > 0 ? ports_.state.nLastAverage / 1000.0 : 1.0;
    ports_.person.SetProgressTip("Waiting for response. Average has been " + FormatFixed(averageSeconds, 2) + " seconds...");
    ports_.events.DoEvents();
    for (std::int32_t& ticks : nProgressTicks_)
        ++ticks;
    const std::int32_t shown = nProgressTicks_.empty() ? 0 : nProgressTicks_.back();
    const auto elapsed = static_cast<double>(shown * ports_.TimerProgress.Interval().count());
    const double share = elapsed / (averageSeconds * 1000.0 * kFullAtAverages);
    ports_.person.SetProgress(static_cast<int>(std::min(share, 1.0) * kBarMaximum), kBarMaximum);
}

bool UseProxy(const SettingsCollection& settings, Inet::Request& request) {
    const std::string proxy = settings.getKvSettingsColVal("ProxyName");
    if (proxy.empty()) return false;
    request.AccessType = InetAccess::NamedProxy;
    request.Proxy = proxy + ":" + settings.getKvSettingsColVal("ProxyPort");
    return true;
}

void HttpRequester::LoadInets(const std::function<std::unique_ptr<Inet>()>& newInet) {
    for (auto& inet : inets_)
        inet = newInet();
}

void HttpRequester::CloseInets() {
    for (const auto& inet : inets_) {
        if (inet) IgnoreErrors([&] { inet->Cancel(); });
    }
}

int HttpRequester::getOpenInetIndex() {
    for (int i = 0; i < kSlots; ++i) {
        Inet& inet = *inets_[static_cast<std::size_t>(i)];
        if (!inet.StillExecuting()) return i;
        IgnoreErrors([&] { inet.Cancel(); });
    }
    return 0;
}

TimedCheckResult HttpRequester::getURLData2(const Request& request) {
    if (!inets_[0]) return {{.response = "", .strReason = "Reason 'No transfer object'"}, 0ms};
    Inet& slot = *inets_[static_cast<std::size_t>(getOpenInetIndex())];
    const bool statusCounts = request.goodStatuses && ports_.safeguards.IsOn(kHttpStatusFails);
    TimedCheckResult result = Fetch(slot, TransferOf(request), statusCounts ? 1 : kMostAttempts, request.measured);
    const int status = slot.ResponseCode();
    IgnoreErrors([&] { slot.Cancel(); });
    if (statusCounts) JudgeStatus(request, status, result);
    return result;
}

// A page that an entry calls good may be empty: pages of that kind often are.
void HttpRequester::JudgeStatus(const Request& request, int status, CheckResult& result) {
    constexpr int kFirstBad = 400;
    const bool answered = result.strReason.empty() || result.strReason == kNoResponse;
    const bool doubtful = status >= kFirstBad || !result.strReason.empty();
    if (!answered || !doubtful) return;
    if (NamesStatus(request.goodStatuses(), status)) {
        result.strReason.clear();
        if (result.response.empty()) result.response = "HTTP status " + std::to_string(status);
    } else if (status >= kFirstBad) {
        result.strReason = StatusReason(status);
        ports_.safeguards.Acted(kHttpStatusFails, result.strReason);
    }
}

Inet::Request HttpRequester::TransferOf(const Request& request) const {
    Inet::Request transfer;
    transfer.URL = request.strURL;
    transfer.UserName = request.strUser;
    if (!request.strUser.empty()) transfer.Password = request.strPassword;
    transfer.RequestTimeout = request.nTimeout;
    if (request.goodStatuses && ports_.safeguards.IsOn(kSameHostRedirects)) transfer.Redirects = InetRedirects::SameHost;
    const bool ownPort = request.nPort != 80 && request.nPort != 443;
    if (!UseProxy(ports_.settings, transfer) && ownPort) transfer.RemotePort = request.nPort;
    return transfer;
}

TimedCheckResult HttpRequester::Fetch(Inet& slot, Inet::Request transfer, int attempts, bool measured) {
    const RequestProgress::Request running(ports_.progress);
    WaitFor(ports_.events, ports_.clock, kSettleLimit, [&] { return !slot.StillExecuting(); });
    TimedCheckResult result;
    if (measured) transfer.phases = &result.phases;
    std::optional<std::string> error;  // it counts even when a later attempt gets an answer
    for (int n = 0; n < attempts && result.response.empty() && result.nResponseMs < kHiccupLimit; ++n) {
        const auto start = ports_.clock.GetTickCount();
        try {
            result.response = slot.OpenURL(transfer);
        } catch (const OtherHostError& refused) {
            error = refused.what();
            ports_.safeguards.Acted(kSameHostRedirects, *error);
            attempts = 0;  // another request would be redirected, too
        } catch (const std::exception& failure) {
            error = failure.what();
        }
        result.nResponseMs = ports_.clock.GetTickCount() - start;
    }
    if (error && Holds(ToLower(*error), "type mismatch")) {
        result.response = kBinaryAnswer;
    } else if (error) {
        result.response.clear();
        result.strReason = "Reason '" + *error + "'";
    } else if (result.response.empty()) {
        result.strReason = kNoResponse;
    }
    return result;
}

}  // namespace korvane
