// How clsEsmtp sends a line and waits for what the server says, through the socket's events and two flags that they set.
#include <algorithm>
#include <cmath>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "notify/esmtp.h"

namespace korvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Midnight is no event: a wait looks for it this often.
constexpr milliseconds kLookAgain{1000};

// Until `moment` on the clock of the day, and never nothing, so that a wait comes to its end.
milliseconds Until(double moment, double now) {
    return std::max(milliseconds(1), milliseconds(static_cast<std::int64_t>(std::ceil((moment - now) * 1000))));
}

}  // namespace

void clsEsmtp::ListenToSocket() {
    sckInternet.SetHandlers({
        .dataArrival = [this] { DataArrival(); },
        .close = [this] { SocketClosed(); },
        .error =
            [this](int number, const std::string& description) {
                sendFlag_ = kSendError;
                replyFlag_ = kReplyError;
                if (handlers_.WinsockError) handlers_.WinsockError(number, description);
            },
        .connect =
            [this] {
                sendFlag_ = kSendPending;
                replyFlag_ = kNoReply;
            },
        .sendProgress = [this](std::size_t, std::size_t) { sendFlag_ = kSendProgress; },
        .sendComplete = [this] { sendFlag_ = kSendComplete; },
    });
}

// A connection that cannot even be tried is found by the wait for the greeting, like any other that fails.
void clsEsmtp::OpenConnection(const std::string& host, std::int32_t port) {
    replyFlag_ = kNoReply;
    const bool tried = IgnoreErrors([&] {
        sckInternet.SetRemoteHost(host);
        sckInternet.SetRemotePort(port);
        sckInternet.SetLocalPort(0);
        sckInternet.SetProtocol(SocketProtocol::Tcp);
        sckInternet.Connect();
    });
    if (!tried) replyFlag_ = kReplyError;
}

// True also when the socket has not got rid of the text in time or broke meanwhile: the wait for the reply is what finds the
// trouble.
bool clsEsmtp::SendCommand(std::string_view text, const std::string& shown) {
    sendFlag_ = kSendPending;
    if (sckInternet.State() != SocketState::Connected) {
        Complain("Remote host disconnected");
        return false;
    }
    if (!IgnoreErrors([&] { sckInternet.SendData(text); })) {
        Complain("Error sending data to remote host");
        return false;
    }
    const std::size_t lineEnd = text.find('\r');
    if (lineEnd == std::string_view::npos) lastReply_.clear();
    lastCommand_ = shown == kNotShown ? kNotShown : text.substr(0, lineEnd);  // the report of a failure tells it
    if (!shown.empty()) TraceSent(shown);
    WaitUntilSent(kSilence);
    return true;
}

void clsEsmtp::WaitUntilSent(seconds timeout) {
    const auto limit = static_cast<double>(timeout.count());
    double start = ports_.clock.Timer();
    while (sendFlag_ != kSendComplete) {
        const double now = ports_.clock.Timer();
        if (sendFlag_ == kSendProgress || now < start) start = now;  // it goes on; or midnight has passed
        if (sendFlag_ == kSendProgress) sendFlag_ = kSendPending;
        if (now - start > limit) return;
        ports_.events.WaitForEvent(std::min(Until(start + limit, now), kLookAgain));
    }
}

// Of the message the trace shows its size alone, once it is through.
bool clsEsmtp::SendPiece(const std::string& piece) {
    messageBytes_ += piece.size();
    return SendCommand(piece, "");
}

bool clsEsmtp::SendLine(const std::string& line, Shown shown) {
    return SendCommand(line + "\r\n", shown == Shown::Not ? std::string(kNotShown) : line);
}

int clsEsmtp::Ask(const std::string& line, Shown shown) {
    SendLine(line, shown);
    return GetSmtpReply(kSmtpTries, true);
}

bool clsEsmtp::AskPop(const std::string& line, Shown shown) {
    SendLine(line, shown);
    return GetPopReply(kPopTries, true);
}

int clsEsmtp::GetSmtpReply(int tries, bool sent) {
    int code = 0;
    bool multiLine = false;
    for (int i = 0; i < tries; ++i) {
        const Look look = LookForReply(kSmtpReply, sent);
        if (look == Look::Vain) return code;
        if (look == Look::NotYet) continue;
        if (const auto final = ReadSmtpReply(multiLine, code)) return *final;
    }
    return code;
}

bool clsEsmtp::GetPopReply(int tries, bool sent) {
    for (int i = 0; i < tries; ++i) {
        const Look look = LookForReply(kPopReply, sent);
        if (look != Look::NotYet) return look == Look::Taken && lastReply_.starts_with('+');
    }
    return false;
}

// One try of a second.
clsEsmtp::Look clsEsmtp::LookForReply(ReplyFlag expected, bool sent) {
    if (!sent && sckInternet.State() != SocketState::Connected) {
        Complain("Remote host disconnected");
        return Look::Vain;
    }
    const Waited waited = WaitForReply(expected, seconds(1));
    if (waited.expected) return TakeReply() ? Look::Taken : Look::NotYet;
    if (waited.flag == kNoReply) return Look::NotYet;
    if (ports_.trace != nullptr) TraceReceived(ToUtf8(sckInternet.PeekData(kMostOfAReply)));  // what the server said in vain
    return Look::Vain;
}

clsEsmtp::Waited clsEsmtp::WaitForReply(ReplyFlag expected, seconds limit) {
    double t0 = ports_.clock.Timer();
    for (double now = t0; replyFlag_ == kNoReply && t0 + static_cast<double>(limit.count()) > now; now = ports_.clock.Timer()) {
        ports_.events.WaitForEvent(Until(t0 + static_cast<double>(limit.count()), now));
        const double after = ports_.clock.Timer();
        if (t0 - after > 2 * static_cast<double>(limit.count())) {  // midnight has passed
            limit /= 2;
            t0 = after;
        }
    }
    const Waited waited{replyFlag_, replyFlag_ == expected};
    replyFlag_ = kNoReply;
    return waited;
}

// Whole lines only; what has no line end yet stays with the socket.
bool clsEsmtp::TakeReply() {
    const WholeReply reply = FindReply(sckInternet.PeekData());
    if (reply.length == 0) return false;
    taken_ = sckInternet.GetData(reply.length);
    lastReply_ = ToUtf8(reply.text);
    TraceReceived(lastReply_);
    return true;
}

void clsEsmtp::TraceSent(const std::string& shown) {
    if (ports_.trace != nullptr) ports_.trace->setMsg(shown);
}

void clsEsmtp::TraceReceived(const std::string& reply) {
    if (ports_.trace != nullptr && !reply.empty()) ports_.trace->setReceiveMsg(Left(reply, kMostOfAReply));
}

// The code when this reply is the answer; nothing when more of it is to come.
std::optional<int> clsEsmtp::ReadSmtpReply(bool& multiLine, int& code) {
    const std::string first = lastReply_.substr(0, 4);
    if (first == "250-") {
        multiLine = true;
        ParseAuthMechanisms(lastReply_, mechanisms_);
        if (!HoldsLastLine(lastReply_, "250")) return std::nullopt;
    } else if (first == "250 " || first == "\r250") {
        if (multiLine) ParseAuthMechanisms(lastReply_, mechanisms_);
    } else if (first == "220-") {
        code = ReplyCode(first.substr(0, 3));
        return std::nullopt;
    } else if (first == "334 " || first == "\r334") {
        challenge_ = taken_.substr(4, taken_.size() - 6);
    }
    return ReplyCode(first);
}

// What was sent or said before the server closed counts all the same: a server says why it wants no mail, or goodbye, and
// closes in one breath.
void clsEsmtp::SocketClosed() {
    phase_ = Phase::Closed;
    if (sendFlag_ != kSendComplete) sendFlag_ = kSendPending;
    if (replyFlag_ == kReplyError) replyFlag_ = kNoReply;
}

// The rest of a reply is mostly there already, and sometimes the end of the connection behind it; so the phase is the one before.
void clsEsmtp::DataArrival() {
    const Phase phase = phase_;
    ports_.events.DoEvents();
    strLastData_ = ToUtf8(sckInternet.PeekData(4));
    switch (KindOfReply(strLastData_)) {
        case ReplyKind::Smtp:
            replyFlag_ = phase == Phase::Smtp ? kSmtpReply : kReplyError;
            break;
        case ReplyKind::Pop:
            replyFlag_ = phase == Phase::Pop ? kPopReply : kReplyError;
            break;
        case ReplyKind::Unknown:
            replyFlag_ = kReplyError;
            break;
    }
}

}  // namespace korvane
