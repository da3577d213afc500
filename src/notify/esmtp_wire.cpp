// How clsEsmtp sends a line and waits for the server's reply, through the socket's events and the two flags that they set.
#include <algorithm>
#include <cmath>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "notify/esmtp.h"

namespace korvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Midnight raises no event, so a wait checks for it at this interval.
constexpr milliseconds kLookAgain{1000};

// Returns the time until `moment` on the day clock, and at least 1 ms, so that the caller's wait always ends.
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

// A connection that cannot even be attempted is detected by the wait for the greeting, like any other failure.
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

// Returns true even if the socket has not sent the text in time or broke meanwhile: the wait for the reply then detects the
// problem.
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
    lastCommand_ = shown == kNotShown ? kNotShown : text.substr(0, lineEnd);  // for the report of a failure
    if (!shown.empty()) TraceSent(shown);
    WaitUntilSent(kSilence);
    return true;
}

void clsEsmtp::WaitUntilSent(seconds timeout) {
    const auto limit = static_cast<double>(timeout.count());
    double start = ports_.clock.Timer();
    while (sendFlag_ != kSendComplete) {
        const double now = ports_.clock.Timer();
        if (sendFlag_ == kSendProgress || now < start) start = now;  // there was progress, or midnight has passed
        if (sendFlag_ == kSendProgress) sendFlag_ = kSendPending;
        if (now - start > limit) return;
        ports_.events.WaitForEvent(std::min(Until(start + limit, now), kLookAgain));
    }
}

// The trace shows only the size of the message, after it was sent.
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

// Makes one try, which takes a second.
clsEsmtp::Look clsEsmtp::LookForReply(ReplyFlag expected, bool sent) {
    if (!sent && sckInternet.State() != SocketState::Connected) {
        Complain("Remote host disconnected");
        return Look::Vain;
    }
    const Waited waited = WaitForReply(expected, seconds(1));
    if (waited.expected) return TakeReply() ? Look::Taken : Look::NotYet;
    if (waited.flag == kNoReply) return Look::NotYet;
    if (ports_.trace != nullptr) TraceReceived(ToUtf8(sckInternet.PeekData(kMostOfAReply)));  // the server's words that were no
                                                                                              // reply
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

// Takes whole lines only; an incomplete line stays in the socket.
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

// Returns the code when this reply is the answer, or nothing when more of it is still to come.
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

// Data that was sent or received before the server closed still counts: a server may refuse mail, or say goodbye, and close
// immediately afterwards.
void clsEsmtp::SocketClosed() {
    phase_ = Phase::Closed;
    if (sendFlag_ != kSendComplete) sendFlag_ = kSendPending;
    if (replyFlag_ == kReplyError) replyFlag_ = kNoReply;
}

// Usually the rest of a reply is there already, and sometimes the end of the connection after it, so the phase is the previous
// one.
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
