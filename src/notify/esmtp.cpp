// The conversation of clsEsmtp from its first step to its report. esmtp_login.cpp contains the logins, esmtp_wire.cpp sending and
// waiting.
#include "notify/esmtp.h"

#include <utility>

#include "base/text.h"
#include "notify/recipients.h"

namespace korvane {
namespace {

constexpr int kServiceReady = 220;
constexpr int kDone = 250;
constexpr int kWillForward = 251;
constexpr int kStartMailInput = 354;

constexpr std::string_view kNotPositive = "SMTP server did not reply positively to client's command";
constexpr std::string_view kRefusedMessage = "SMTP server refused to accept/relay email message";

// A server that does not know EHLO answers with one of these codes.
bool WantsHelo(int code) {
    return code == 500 || code == 502 || code == 554;
}

}  // namespace

clsEsmtp::clsEsmtp(const Ports& ports, TcpSocket& socket)
    : ports_(ports), sckInternet(socket), message_({ports.files, ports.clock, ports.events, ports.guids}, *this) {
    ListenToSocket();
}

clsEsmtp::~clsEsmtp() {
    sckInternet.SetHandlers({});
}

void clsEsmtp::Reset() {
    static_cast<MailProperties&>(*this) = MailProperties();
    recipients_.clear();
    strLastData_.clear();
    popUser_.clear();
    popPassword_.clear();
}

bool clsEsmtp::SendMail() {
    Prepare();
    if (!Trim(POPhost).empty()) LoginToPop();
    delivered_ = Connect() && SayHello() && Authenticate() && NameSender() && NameRecipients() && BeginData() && SendMessage() &&
                 EndData();
    if (delivered_) Quit();
    Hangup();
    if (!delivered_) Report();
    return delivered_;
}

void clsEsmtp::Prepare() {
    ErrorLog.clear();
    note_.clear();
    message_.Prepare(handlers_.ReadFileError);
    if (sckInternet.State() != SocketState::Closed) sckInternet.Close();
}

bool clsEsmtp::Connect() {
    phase_ = Phase::Smtp;
    OpenConnection(SmtpHost, smtpport);
    Raise(kConnecting);
    if (GetSmtpReply(kSmtpTries, true) != kServiceReady) {
        Complain(
            sckInternet.State() == SocketState::Connected
                ? "Connected to " + SmtpHost + " but didn't receive the expected 220 response. Received '" + strLastData_ + "'"
                : "Couldn't connect to " + SmtpHost + ". Are you sure this is the correct name for your server?  Try to ping it");
        return false;
    }
    Raise(kConnected);
    return true;
}

bool clsEsmtp::SayHello() {
    if (!SendLine("EHLO " + OwnAddress())) return End("Couldn't send EHLO ");
    const int code = GetSmtpReply(kSmtpTries, true);
    if (code == kDone) return true;
    if (WantsHelo(code)) return SayPlainHello();
    Complain(kNotPositive);
    return End("Expected 250. Didn't receive it.");
}

// Servers accept a bare IPv4 address; an IPv6 address must be a literal (RFC 5321, section 4.1.3), which has no zone.
std::string clsEsmtp::OwnAddress() const {
    const std::string address = sckInternet.LocalIP();
    return Holds(address, ":") ? "[IPv6:" + address.substr(0, address.find('%')) + "]" : address;
}

bool clsEsmtp::SayPlainHello() {
    if (!SendLine("HELO " + OwnAddress())) return End("Couldn't send fallback HELO");
    if (GetSmtpReply(kSmtpTries, true) == kDone) return true;
    Complain(kNotPositive);
    return End("Got 500,502, or 554 and expected 250. Didn't receive it.");
}

bool clsEsmtp::NameSender() {
    emailFromAddress = Trim(emailFromAddress);
    if (emailFromAddress.starts_with('<')) emailFromAddress.erase(0, 1);
    // Two characters are compared, so only an address that is just ">" loses it; users' mail rules rely on addresses in this
    // form.
    if (emailFromAddress == ">") emailFromAddress.clear();
    emailFromName = Trim(ReplaceAll(emailFromName, "\"", ""));
    if (emailFromName.empty()) emailFromName = emailFromAddress;

    if (Ask("MAIL FROM:<" + emailFromAddress + ">") == kDone) return true;
    Complain(kNotPositive);
    return End("Sent MAIL FROM... Expected 250. Didn't receive it.");
}

bool clsEsmtp::NameRecipients() {
    emailTo = ParseRecipients(emailTo, recipients_);
    for (const std::string& recipient : recipients_) {
        const int code = Ask("RCPT TO:" + recipient);
        if (code == kDone || code == kWillForward) continue;
        Complain(kNotPositive);
        return End("TO User: Send RCPT TO:... Expected 250 or 251. Didn't receive it.");
    }
    return true;
}

bool clsEsmtp::BeginData() {
    const int code = Ask("DATA");
    if (code != kStartMailInput && code != kDone) {
        Complain(kRefusedMessage);
        return false;
    }
    Raise(kSendingMail);
    return true;
}

bool clsEsmtp::SendMessage() {
    messageBytes_ = 0;
    const bool sent = message_.Send(sckInternet.LocalHostName(), [this](const std::string& piece) { return SendPiece(piece); });
    TraceSent(BytesOfMessage(messageBytes_));
    return sent;
}

bool clsEsmtp::EndData() {
    const bool ended = SendLine(".");  // a reply that came before the dot does not answer it, nor does a close after that reply
    if (GetSmtpReply(kSmtpTries, true) == kDone && ended) return true;
    Complain("EOM: " + std::string(kRefusedMessage));
    return false;
}

void clsEsmtp::Quit() {
    Raise(kMailSent);
    Ask("QUIT");
}

void clsEsmtp::Hangup() {
    Raise(kDisconnecting);
    sckInternet.Close();
}

void clsEsmtp::Report() {
    if (!lastReply_.empty()) {
        if (!lastCommand_.empty()) ErrorLog += "\r\nClient sent: " + lastCommand_ + "\r\n";
        ErrorLog += "Server replied: " + Left(lastReply_, kMostOfAReply);
    }
    ErrorLog += " " + note_;
}

bool clsEsmtp::End(std::string note) {
    note_ = std::move(note);
    return false;
}

void clsEsmtp::Complain(std::string_view problem) {
    ErrorLog.append(problem).append("\r\n");
}

void clsEsmtp::Raise(State state) {
    if (handlers_.StateChange) handlers_.StateChange(state);
}

}  // namespace korvane
