#include "engine/http_requester.h"

#include <optional>
#include <utility>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/wait.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kSettleLimit = 6000ms;  // wait for an earlier request on the same slot
constexpr auto kHiccupLimit = 500ms;   // an empty answer faster than this is requested again
constexpr int kMostAttempts = 11;
constexpr std::string_view kBinaryAnswer = "Binary Data Returned";

}  // namespace

/// The outcome of all attempts. An error stays pending even when a later attempt gets an answer.
struct HttpRequester::Attempts {
    std::string response;
    std::optional<std::string> pendingError;
    std::chrono::milliseconds lastTook{0};
};

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
    Attempts attempts = FetchWatched(slot, TransferOf(request));

    TimedCheckResult result;
    result.nResponseMs = attempts.lastTook;
    if (attempts.pendingError && Holds(ToLower(*attempts.pendingError), "type mismatch")) {
        result.response = kBinaryAnswer;
    } else if (attempts.pendingError) {
        result.strReason = "Reason '" + *attempts.pendingError + "'";
    } else {
        result.response = std::move(attempts.response);  // it may be many megabytes
        if (result.response.empty()) result.strReason = "No Response Returned.";
    }
    IgnoreErrors([&] { slot.Cancel(); });
    return result;
}

Inet::Request HttpRequester::TransferOf(const Request& request) const {
    Inet::Request transfer;
    transfer.URL = request.strURL;
    transfer.UserName = request.strUser;
    if (!request.strUser.empty()) transfer.Password = request.strPassword;
    transfer.RequestTimeout = request.nTimeout;
    const std::string proxy = ports_.settings.getKvSettingsColVal("ProxyName");
    if (!proxy.empty()) {
        transfer.AccessType = InetAccess::NamedProxy;
        transfer.Proxy = proxy + ":" + ports_.settings.getKvSettingsColVal("ProxyPort");
    } else if (request.nPort != 80 && request.nPort != 443) {
        transfer.RemotePort = request.nPort;
    }
    return transfer;
}

void HttpRequester::LetEarlierRequestSettle(const Inet& slot) {
    WaitFor(ports_.events, ports_.clock, kSettleLimit, [&] { return !slot.StillExecuting(); });
}

HttpRequester::Attempts HttpRequester::FetchWatched(Inet& slot, const Inet::Request& transfer) {
    const RequestProgress::Request running(ports_.progress);
    LetEarlierRequestSettle(slot);
    return Fetch(slot, transfer);
}

HttpRequester::Attempts HttpRequester::Fetch(Inet& slot, const Inet::Request& transfer) {
    Attempts attempts;
    for (int n = 0; n < kMostAttempts && attempts.response.empty() && attempts.lastTook < kHiccupLimit; ++n) {
        const auto start = ports_.clock.GetTickCount();
        try {
            attempts.response = slot.OpenURL(transfer);
        } catch (const std::exception& error) {
            attempts.pendingError = error.what();
        }
        attempts.lastTook = ports_.clock.GetTickCount() - start;
    }
    return attempts;
}

}  // namespace korvane
