#include "engine/tcp_checker.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/raised_flag.h"
#include "base/text.h"
#include "platform/wait.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kWaitStep = 250ms;
constexpr auto kReplyLimit = 21s;

/// Only this many bytes of an arrival count: an endless banner must not fill the log.
constexpr std::size_t kMostOfAnArrival = 8192;

// Never cuts a character in two.
std::string BeginOf(std::string text) {
    std::size_t end = std::min(text.size(), kMostOfAnArrival);
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    text.resize(end);
    return text;
}

}  // namespace

TcpChecker::TcpChecker(const Ports& ports) : ports_(ports) {
    ports_.socket.SetHandlers({
        .dataArrival = [this] { IgnoreErrors([this] { strRecvBuffer_ = BeginOf(ToUtf8(ports_.socket.GetData())); }); },
        .close = {},
        .error = {},
        .connect = [this] { connectedAt_ = ports_.clock.GetTickCount(); },
    });
}

CheckResult TcpChecker::DoTCPRequest(const std::string& strServer, const std::string& strExpected, std::chrono::seconds nTimeout,
                                     const std::string& strPort) {
    CheckResult result;
    ports_.person.SetWaitCursor(true);
    try {
        if (talking_ || ports_.socket.State() != SocketState::Closed) {
            ports_.socket.Close();
            ports_.person.SetWaitCursor(false);
            return {.response = "", .strReason = "Socket wasn't closed "};
        }
        const RaisedFlag talking(talking_);  // one conversation at a time, even if this one's socket is closed meanwhile
        strTCPTimeoutText_.clear();
        strRecvBuffer_.clear();
        ports_.socket.SetProtocol(SocketProtocol::Tcp);
        // The reason for every failure that does not set its own.
        result.strReason = "Could Not Connect to " + strServer + " Double check for typos. ";
        const auto start = ports_.clock.GetTickCount();
        const bool inTime = Connect(strServer, nTimeout, strPort, result.phases);
        if (inTime) {
            TalkOrExplain(strExpected, result);
        } else {
            ports_.status.setStatusMSG("Connection Timed out.  Failure!");
            result.strReason = "Connection Timeout Failure.  Failed to connect in a timely manner. ";
        }
        result.phases.whole = ports_.clock.GetTickCount() - start;
        ports_.socket.Close();
        if (strTCPTimeoutText_.empty()) {
            ports_.status.setStatusMSG("Done.");
        } else {
            result.response.clear();
            result.strReason += " " + strTCPTimeoutText_;
        }
    } catch (const std::exception& error) {
        const auto* described = dynamic_cast<const Error*>(&error);
        const bool noNetwork = described != nullptr && described->Number() == kSocketAddressNotAvailable;
        result = {.response = "", .strReason = noNetwork ? "Please connect to the internet first! " : error.what()};
        IgnoreErrors([&] { ports_.socket.Close(); });
    }
    ports_.person.SetWaitCursor(false);
    return result;
}

// Returns false when the time for it has run out.
bool TcpChecker::Connect(const std::string& strServer, std::chrono::seconds nTimeout, const std::string& strPort,
                         CheckPhases& phases) {
    TcpSocket& socket = ports_.socket;
    socket.SetRemoteHost(strServer);
    socket.SetRemotePort(CheckedInt32(ParseWhole(strPort)));
    socket.SetLocalPort(0);
    mark_ = ports_.clock.GetTickCount();
    connectedAt_.reset();
    socket.Connect();
    const bool looksUp = socket.State() == SocketState::ResolvingHost;
    ports_.status.setStatusMSG("Resolving.");

    // Time is counted in steps: a step that ends early because the state changed counts as a whole one.
    const auto limit = std::chrono::milliseconds(nTimeout) / 2;
    auto elapsed = 0ms;
    while (elapsed < limit && socket.State() == SocketState::ResolvingHost) {
        WaitFor(ports_.events, ports_.clock, kWaitStep, [&] { return socket.State() != SocketState::ResolvingHost; });
        // During a wait the socket may go through several states.
        const SocketState state = socket.State();
        const bool resolved =
            state == SocketState::HostResolved || state == SocketState::Connecting || state == SocketState::Connected;
        if (resolved) ports_.status.setStatusMSG(" Resolved.");
        elapsed += kWaitStep;
    }
    if (looksUp && socket.State() != SocketState::ResolvingHost) phases.name = SinceMark();
    if (elapsed < limit) ports_.status.setStatusMSG("Connecting to " + strServer + " port [" + strPort + "]");
    const auto underWay = [&] {
        return socket.State() == SocketState::Connecting || socket.State() == SocketState::HostResolved;
    };
    while (elapsed < limit && underWay()) {
        WaitFor(ports_.events, ports_.clock, kWaitStep, [&] { return !underWay(); });
        elapsed += kWaitStep;
    }
    if (connectedAt_) {
        phases.connect = std::max(*connectedAt_ - mark_, 0ms);  // both may have come in one turn
        mark_ = *connectedAt_;
    }
    return elapsed < limit;
}

CheckPhases::Duration TcpChecker::SinceMark() {
    const auto now = ports_.clock.GetTickCount();
    return now - std::exchange(mark_, now);
}

void TcpChecker::TalkOrExplain(const std::string& strExpected, CheckResult& result) {
    const SocketState state = ports_.socket.State();
    if (state == SocketState::Connected) return Converse(strExpected, result);
    if (state == SocketState::ResolvingHost) {
        result.strReason = "Could not resolve server name or IP.  Double check for typos. ";
    } else if (state == SocketState::Connecting) {
        result.strReason = "Server Connection Timeout (didn't respond in a timely manner).  Double check for typos. ";
    } else if (state == SocketState::Closing) {
        ports_.status.setStatusMSG("Closing.");
    } else if (state == SocketState::Error) {
        ports_.status.setStatusMSG("Failed!");
        ports_.status.setStatusMSG("Failed to connect.  The server Name or IP address may be incorrect.");
    }
}

void TcpChecker::Converse(const std::string& strExpected, CheckResult& result) {
    result.strReason.clear();
    if (strExpected.empty()) {
        const std::string said = WithoutControls(strRecvBuffer_);
        result.response = said.empty() ? "Server Connected." : said;
        ports_.conversation.setResponse(said.empty() ? "Connected (no response)." : said);
        return;
    }
    loginAnswers_ = 0;
    bool expects = true;  // elements alternate: one to wait for, one to send
    for (const std::string& element : Split(strExpected, ',')) {
        if (!expects) {
            SendElement(element);
        } else if (!ExpectElement(element, result)) {
            return;
        }
        expects = !expects;
    }
}

bool TcpChecker::ExpectElement(const std::string& element, CheckResult& result) {
    ports_.status.setStatusMSG("Waiting for '" + element + "'");
    const bool found = WaitForTCPText(element);
    result.phases.steps.push_back({element, SinceMark()});
    const std::string said = WithoutControls(strRecvBuffer_);
    if (found) {
        ports_.conversation.setResponse(said);
        result.response = said;
        return true;
    }
    result.strReason = "Error: " + said + " Expected " + element;
    ports_.conversation.setResponse(result.strReason);
    if (ports_.conversation.Visible()) result.response = result.strReason;
    return false;
}

void TcpChecker::SendElement(const std::string& element) {
    const bool answersLogin = loginAnswers_ > 0;
    loginAnswers_ = answersLogin ? loginAnswers_ - 1 : AnswersToLogin(element);
    const std::string shown = answersLogin && ports_.hidden != nullptr ? ports_.hidden->Secret(element) : element;
    ports_.status.setStatusMSG("Requesting '" + shown + "'");
    ports_.conversation.setRequest(shown);
    strRecvBuffer_.clear();
    mark_ = ports_.clock.GetTickCount();
    ports_.socket.SendData(element + "\r\n");
}

bool TcpChecker::WaitForTCPText(const std::string& strExpected) {
    const bool exact = ports_.safeguards != nullptr && ports_.safeguards->IsOn("GuardClock");
    const ReplyLimit limit(ports_.clock, kReplyLimit, exact);
    while (strRecvBuffer_.empty()) {
        if (limit.Over()) {
            strTCPTimeoutText_ = "Server error, timed out while waiting for a response." + strExpected;
            return false;
        }
        ports_.events.WaitForEvent(kWaitStep);
    }
    return Holds(strRecvBuffer_, strExpected);
}

}  // namespace korvane
