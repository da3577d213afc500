#include "notify/mail_wire.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/wait.h"

namespace korvane {
namespace {

using std::chrono::milliseconds;

constexpr double kSilentSeconds = 60;  ///< limit for the socket while it sends
constexpr int kSmtpTries = 30;         ///< one second each
constexpr int kPopTries = 60;

constexpr std::chrono::seconds kEncryptionLimit{30};

/// Midnight raises no event, so a wait checks for it at this interval.
constexpr milliseconds kLookAgain{1000};

// Returns the time until `moment` on the day clock, and at least 1 ms, so that the caller's wait always ends.
milliseconds Until(double moment, double now) {
    return std::max(milliseconds(1), milliseconds(static_cast<std::int64_t>(std::ceil((moment - now) * 1000))));
}

}  // namespace

MailWire::MailWire(TcpSocket& socket, const Clock& clock, Events& events, MailTrace* trace, TcpSocket::Handlers handlers)
    : socket_(socket), clock_(clock), events_(events), trace_(trace), handlers_(std::move(handlers)) {
    TcpSocket::Handlers own = handlers_;
    own.error = [this](int number, const std::string& description) {
        failure_ = Or(description, "error " + std::to_string(number));
        if (handlers_.error) handlers_.error(number, description);
    };
    own.connect = [this] {
        if (handlers_.connect) handlers_.connect();
        if (encryptWhenConnected_) StartEncryption();
    };
    own.encrypted = [this] { encrypted_ = true; };
    socket_.SetHandlers(std::move(own));
}

void MailWire::Open(const std::string& host, std::int32_t port) {
    socket_.SetLocalPort(0);
    socket_.SetProtocol(SocketProtocol::Tcp);
    encryptWhenConnected_ = encrypted_ = false;
    failure_.clear();
    try {
        socket_.Connect(host, port);
    } catch (const std::exception& error) {
        failure_ = error.what();
        throw;
    }
}

std::string MailWire::Encrypt(const std::string& host, const std::string& authorities) {
    host_ = host;
    authorities_ = authorities;
    if (socket_.State() == SocketState::Connected) {
        StartEncryption();
    } else {
        encryptWhenConnected_ = true;
    }
    const auto ended = [this] { return socket_.State() == SocketState::Closing || socket_.State() == SocketState::Closed; };
    const bool decided = WaitFor(events_, clock_, kEncryptionLimit, [&] { return encrypted_ || !failure_.empty() || ended(); });
    if (encrypted_) return "";
    return "No encrypted connection to " + host + ": " +
           Or(failure_, decided ? "the server closed the connection" : "no answer within 30 seconds");
}

void MailWire::StartEncryption() {
    try {
        socket_.StartEncryption(host_, authorities_);
    } catch (const std::exception& error) {
        failure_ = error.what();
    }
}

void MailWire::Send(std::string_view bytes, const std::string& shown) {
    socket_.SendData(bytes);
    if (!shown.empty()) ShowSent(shown);
}

void MailWire::ShowSent(const std::string& shown) {
    if (trace_ != nullptr) trace_->setMsg(shown);
}

void MailWire::ShowReceived(std::string_view reply) {
    if (trace_ != nullptr) trace_->setReceiveMsg(Left(reply, kMostOfAReply));
}

EsmtpWire::EsmtpWire(TcpSocket& socket, const Clock& clock, Events& events, MailTrace* trace, SocketError socketError)
    : MailWire(socket, clock, events, trace,
               {
                   .dataArrival = [this] { DataArrival(); },
                   .close = [this] { SocketClosed(); },
                   .error =
                       [this, tell = std::move(socketError)](int number, const std::string& description) {
                           sent_ = Sent::Nothing;
                           arrived_ = Arrived::Other;
                           tell(number, description);
                       },
                   .connect =
                       [this] {
                           sent_ = Sent::Nothing;
                           arrived_ = Arrived::Nothing;
                       },
                   .sendProgress = [this](std::size_t, std::size_t) { sent_ = Sent::Part; },
                   .sendComplete = [this] { sent_ = Sent::All; },
               }) {}

void EsmtpWire::Open(const std::string& host, std::int32_t port, ReplyKind kind) {
    kind_ = kind;
    arrived_ = Arrived::Nothing;
    if (!IgnoreErrors([&] { MailWire::Open(host, port); })) arrived_ = Arrived::Other;
}

std::string EsmtpWire::Encrypt(const std::string& host, const std::string& authorities) {
    arrived_ = Arrived::Nothing;
    mechanisms_ = {};
    offersStartTls_ = false;
    return MailWire::Encrypt(host, authorities);
}

std::string_view EsmtpWire::Send(std::string_view text, const std::string& shown) {
    sent_ = Sent::Nothing;
    if (socket_.State() != SocketState::Connected) return "Remote host disconnected";
    if (!IgnoreErrors([&] { MailWire::Send(text, shown); })) return "Error sending data to remote host";
    lastCommand_ = shown == kNotShown ? kNotShown : text.substr(0, text.find('\r'));
    WaitUntilSent();
    return "";
}

void EsmtpWire::WaitUntilSent() {
    double start = clock_.Timer();
    while (sent_ != Sent::All) {
        const double now = clock_.Timer();
        if (sent_ == Sent::Part || now < start) start = now;  // there was progress, or midnight has passed
        sent_ = Sent::Nothing;
        if (now - start > kSilentSeconds) return;
        events_.WaitForEvent(std::min(Until(start + kSilentSeconds, now), kLookAgain));
    }
}

int EsmtpWire::SmtpReply() {
    int greeting = 0;
    bool multiLine = false;
    for (int tries = kSmtpTries; TakeReply(tries);) {
        if (const auto code = CodeOfReply(multiLine, greeting)) return *code;
    }
    return greeting;
}

bool EsmtpWire::PopReply() {
    int tries = kPopTries;
    return TakeReply(tries) && lastReply_.starts_with('+');
}

// Each try takes up to a second. Returns false when none is left, and when something arrived that is no reply.
bool EsmtpWire::TakeReply(int& tries) {
    while (tries-- > 0) {
        const Arrived arrived = WaitForArrival();
        if (arrived == Arrived::Reply && TakeWholeLines()) return true;
        if (arrived != Arrived::Other) continue;
        const std::string words = ToUtf8(socket_.PeekData(kMostOfAReply));
        if (!words.empty()) ShowReceived(words);
        return false;
    }
    return false;
}

EsmtpWire::Arrived EsmtpWire::WaitForArrival() {
    double limit = 1;
    double start = clock_.Timer();
    for (double now = start; arrived_ == Arrived::Nothing && start + limit > now; now = clock_.Timer()) {
        events_.WaitForEvent(Until(start + limit, now));
        const double after = clock_.Timer();
        if (start - after > 2 * limit) {  // midnight has passed
            limit = 0;
            start = after;
        }
    }
    return std::exchange(arrived_, Arrived::Nothing);
}

// An incomplete line stays in the socket.
bool EsmtpWire::TakeWholeLines() {
    const std::size_t length = ReplyLength(socket_.PeekData());
    if (length == 0) return false;
    taken_ = socket_.GetData(length);
    lastReply_ = ToUtf8(taken_.substr(0, length - 2));
    ShowReceived(lastReply_);
    return true;
}

// Returns nothing when more of the reply is still to come.
std::optional<int> EsmtpWire::CodeOfReply(bool& multiLine, int& greeting) {
    const std::string first = lastReply_.substr(0, 4);
    if (first == "250-") {
        multiLine = true;
        ReadOffers();
        if (!Holds(lastReply_, "\r\n250 ")) return std::nullopt;
    } else if (first == "250 " || first == "\r250") {
        if (multiLine) ReadOffers();
    } else if (first == "220-") {
        greeting = ReplyCode(first);
        return std::nullopt;
    } else if (first == "334 " || first == "\r334") {
        challenge_ = taken_.substr(4, taken_.size() - 6);
    }
    return ReplyCode(first);
}

void EsmtpWire::ReadOffers() {
    ParseAuthMechanisms(lastReply_, mechanisms_);
    offersStartTls_ = offersStartTls_ || korvane::OffersStartTls(lastReply_);
}

// Data that was sent or received before the server closed still counts: a server may refuse mail, or say goodbye, and close
// immediately afterwards.
void EsmtpWire::SocketClosed() {
    kind_ = ReplyKind::Unknown;
    if (sent_ != Sent::All) sent_ = Sent::Nothing;
    if (arrived_ == Arrived::Other) arrived_ = Arrived::Nothing;
}

// Usually the rest of a reply is there already, and sometimes the end of the connection after it, so the kind of server is the
// one from before the events.
void EsmtpWire::DataArrival() {
    const ReplyKind expected = kind_;
    events_.DoEvents();
    lastData_ = ToUtf8(socket_.PeekData(4));
    const ReplyKind kind = KindOfReply(lastData_);
    arrived_ = kind == expected && kind != ReplyKind::Unknown ? Arrived::Reply : Arrived::Other;
}

}  // namespace korvane
