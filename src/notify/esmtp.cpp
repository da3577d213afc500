// The conversation of clsEsmtp from its first step to its report. esmtp_login.cpp contains the logins.
#include "notify/esmtp.h"

#include <algorithm>

#include "base/text.h"

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
    : sckInternet(socket),
      wire_(socket, ports.clock, ports.events, ports.trace,
            [this](int number, const std::string& description) {
                if (handlers_.WinsockError) handlers_.WinsockError(number, description);
            }),
      message_({ports.files, ports.clock, ports.events, ports.guids}, *this) {}

void clsEsmtp::Reset() {
    static_cast<MailProperties&>(*this) = MailProperties();
    wire_.ForgetLastData();
    recipients_.clear();
    popUser_.clear();
    popPassword_.clear();
}

bool clsEsmtp::SendMail() {
    Prepare();
    if (!Trim(POPhost).empty()) LoginToPop();
    const bool delivered = Connect() && SayHello() && StartTls() && Authenticate() && NameSender() && NameRecipients() &&
                           BeginData() && SendMessage() && EndData();
    if (delivered) Quit();
    Hangup();
    if (!delivered) Report();
    return delivered;
}

bool clsEsmtp::TryConnection() {
    ErrorLog.clear();
    if (sckInternet.State() != SocketState::Closed) sckInternet.Close();
    const bool reached = Connect() && SayHello() && StartTls();
    if (reached) Ask("QUIT");
    Hangup();
    return reached;
}

void clsEsmtp::Prepare() {
    ErrorLog.clear();
    note_.clear();
    message_.Prepare(handlers_.ReadFileError);
    if (sckInternet.State() != SocketState::Closed) sckInternet.Close();
}

bool clsEsmtp::Connect() {
    wire_.Open(SmtpHost, smtpport, ReplyKind::Smtp);
    Raise(kConnecting);
    if (security.encryption == Encryption::Tls && !Encrypt(SmtpHost)) return false;
    if (wire_.SmtpReply() != kServiceReady) {
        Complain(
            sckInternet.State() == SocketState::Connected
                ? "Connected to " + SmtpHost + " but didn't receive the expected 220 response. Received '" + strLastData() + "'"
                : "Couldn't connect to " + SmtpHost + ". Are you sure this is the correct name for your server?  Try to ping it");
        return false;
    }
    Raise(kConnected);
    return true;
}

bool clsEsmtp::SayHello() {
    if (!SendLine("EHLO " + OwnAddress())) return End("Couldn't send EHLO ");
    const int code = wire_.SmtpReply();
    if (WantsHelo(code)) return SayPlainHello();
    return Expect({kDone}, code, kNotPositive, "Expected 250. Didn't receive it.");
}

bool clsEsmtp::SayPlainHello() {
    if (!SendLine("HELO " + OwnAddress())) return End("Couldn't send fallback HELO");
    return Expect({kDone}, wire_.SmtpReply(), kNotPositive, "Got 500,502, or 554 and expected 250. Didn't receive it.");
}

// What the server offered in clear no longer counts, so it is asked again.
bool clsEsmtp::StartTls() {
    if (security.encryption != Encryption::StartTls) return true;
    if (!wire_.OffersStartTls()) {
        Complain(kNoStartTls);
        return false;
    }
    if (!Expect({kServiceReady}, Ask("STARTTLS"), kRefusedStartTls)) return false;
    return Encrypt(SmtpHost) && SayHello();
}

bool clsEsmtp::Encrypt(const std::string& host) {
    const std::string problem = wire_.Encrypt(host, security.authorities);
    if (!problem.empty()) Complain(problem);
    return problem.empty();
}

// Servers accept a bare IPv4 address; an IPv6 address must be a literal (RFC 5321, section 4.1.3), which has no zone.
std::string clsEsmtp::OwnAddress() const {
    const std::string address = sckInternet.LocalIP();
    return Holds(address, ":") ? "[IPv6:" + address.substr(0, address.find('%')) + "]" : address;
}

bool clsEsmtp::NameSender() {
    greeted_ = true;
    emailFromAddress = Trim(emailFromAddress);
    if (emailFromAddress.starts_with('<')) emailFromAddress.erase(0, 1);
    // Two characters are compared, so only an address that is just ">" loses it; users' mail rules rely on addresses in this
    // form.
    if (emailFromAddress == ">") emailFromAddress.clear();
    emailFromName = Or(Trim(ReplaceAll(emailFromName, "\"", "")), emailFromAddress);
    return Expect({kDone}, Ask("MAIL FROM:<" + emailFromAddress + ">"), kNotPositive,
                  "Sent MAIL FROM... Expected 250. Didn't receive it.");
}

bool clsEsmtp::NameRecipients() {
    emailTo = ParseRecipients(emailTo, recipients_);
    return std::all_of(recipients_.begin(), recipients_.end(), [this](const std::string& recipient) {
        return Expect({kDone, kWillForward}, Ask("RCPT TO:" + recipient), kNotPositive,
                      "TO User: Send RCPT TO:... Expected 250 or 251. Didn't receive it.");
    });
}

bool clsEsmtp::BeginData() {
    if (!Expect({kStartMailInput, kDone}, Ask("DATA"), kRefusedMessage)) return false;
    Raise(kSendingMail);
    return true;
}

// The trace shows only the size of the message.
bool clsEsmtp::SendMessage() {
    std::size_t bytes = 0;
    const bool sent = message_.Send(sckInternet.LocalHostName(), [&](const std::string& piece) {
        bytes += piece.size();
        return Send(piece, "");
    });
    wire_.ShowSent(BytesOfMessage(bytes));
    return sent;
}

bool clsEsmtp::EndData() {
    const bool ended = SendLine(".");  // a reply that came before the dot does not answer it, nor does a close after that reply
    const int code = wire_.SmtpReply();
    if (ended && code == kDone) receipt_ = wire_.LastReply();
    return Expect({kDone}, ended ? code : 0, "EOM: " + std::string(kRefusedMessage));
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
    if (!wire_.LastReply().empty()) {
        if (!wire_.LastCommand().empty()) ErrorLog += "\r\nClient sent: " + wire_.LastCommand() + "\r\n";
        ErrorLog += "Server replied: " + Left(wire_.LastReply(), kMostOfAReply);
    }
    ErrorLog += " " + note_;
}

bool clsEsmtp::Send(std::string_view text, const std::string& shown) {
    const std::string_view problem = wire_.Send(text, shown);
    if (!problem.empty()) Complain(problem);
    return problem.empty();
}

int clsEsmtp::Ask(const std::string& line) {
    SendLine(line);
    return wire_.SmtpReply();
}

bool clsEsmtp::Expect(std::initializer_list<int> good, int code, std::string_view problem, std::string_view note) {
    if (std::find(good.begin(), good.end(), code) != good.end()) return true;
    Complain(problem);
    return End(note);
}

bool clsEsmtp::End(std::string_view note) {
    note_ = note;
    return false;
}

void clsEsmtp::Complain(std::string_view problem) {
    ErrorLog.append(problem).append("\r\n");
}

void clsEsmtp::Raise(State state) {
    if (handlers_.StateChange) handlers_.StateChange(state);
}

}  // namespace korvane
