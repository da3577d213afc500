// The two logins of clsEsmtp: at a POP server before the mail (RFC 1939), and at the SMTP server itself (RFC 4954).
#include "base/text.h"
#include "notify/encodings.h"
#include "notify/esmtp.h"

namespace korvane {
namespace {

constexpr int kAuthenticated = 235;
constexpr int kChallenge = 334;
constexpr int kLoginRefused = 535;

// "Username:" and "Password:".
constexpr std::string_view kAsksUser = "VXNlcm5hbWU6";
constexpr std::string_view kAsksPassword = "UGFzc3dvcmQ6";

constexpr std::string_view kLoginFailed = "Authenticating user on SMTP server failed";

// Returns whether the owner has corrected the login.
bool HasBetterLogin(const clsEsmtp::RequestLogin& request, std::string& user, std::string& password) {
    bool bCancel = true;
    if (request) request(user, password, bCancel);
    return !bCancel;
}

}  // namespace

// A failed POP login does not stop the mail: the SMTP server may accept it anyway.
void clsEsmtp::LoginToPop() {
    if (ConnectToPop()) {
        AuthorizePop();
        LeavePop();
    }
    if (sckInternet.State() != SocketState::Closed) sckInternet.Close();
    Raise(kPopDisconnected);
}

bool clsEsmtp::ConnectToPop() {
    const bool encrypted = security.encryption != Encryption::None;
    wire_.Open(POPhost, encrypted ? kPopTlsPort : popPort, ReplyKind::Pop);
    Raise(kPopConnecting);
    if (encrypted && !Encrypt(POPhost)) return false;
    if (!ExpectOk("Unable to connect to POP host for authorization")) return false;
    Raise(kPopConnected);
    popUser_ = UserID;
    popPassword_ = Password;
    return true;
}

void clsEsmtp::AuthorizePop() {
    bool again = true;
    while (again)
        again = !(SendPopUser() && SendPopPassword()) && HasBetterLogin(handlers_.RequestPOPLogin, popUser_, popPassword_);
}

bool clsEsmtp::SendPopUser() {
    SendLine("USER " + popUser_);
    Raise(kPopAuthorizing);
    return ExpectOk("Unable to authorize POP server, server refused user");
}

bool clsEsmtp::SendPopPassword() {
    SendSecret("PASS " + popPassword_);
    if (!ExpectOk("Unable to authorize POP server, server refused password")) return false;
    SendLine("STAT");
    wire_.PopReply();
    return true;
}

bool clsEsmtp::ExpectOk(std::string_view problem) {
    const bool ok = wire_.PopReply();
    if (!ok) Complain(problem);
    return ok;
}

void clsEsmtp::LeavePop() {
    Raise(kPopDisconnecting);
    SendLine("QUIT");
    if (sckInternet.State() == SocketState::Connected) wire_.PopReply();
}

// A refused login does not end the conversation: the answer to MAIL FROM decides.
bool clsEsmtp::Authenticate() {
    Attempt attempt = Attempt::StartAgain;
    while (attempt == Attempt::StartAgain)
        attempt = TryMechanisms();
    return attempt != Attempt::CannotSend;
}

clsEsmtp::Attempt clsEsmtp::TryMechanisms() {
    struct Mechanism {
        bool AuthMechanisms::*offered;
        Attempt (clsEsmtp::*attempt)();
    };
    static constexpr Mechanism kMechanisms[] = {{&AuthMechanisms::cramMD5, &clsEsmtp::TryCramMD5},
                                                {&AuthMechanisms::login, &clsEsmtp::TryLogin},
                                                {&AuthMechanisms::plain, &clsEsmtp::TryPlain}};
    for (const Mechanism& mechanism : kMechanisms) {
        if (!(wire_.Mechanisms().*mechanism.offered)) continue;
        Raise(kAuthorizing);
        const Attempt ended = (this->*mechanism.attempt)();
        if (ended != Attempt::NextMechanism) return ended;
    }
    return Attempt::Over;
}

// RFC 2195.
clsEsmtp::Attempt clsEsmtp::TryCramMD5() {
    if (!SendLine("AUTH CRAM-MD5")) {
        End("Couldn't send AUTH CRAM-MD5");
        return Attempt::CannotSend;
    }
    int code = wire_.SmtpReply();
    if (code == kChallenge) {
        const std::string digest = HmacMd5Hex(Password, Base64Decode(wire_.Challenge()));
        if (!SendSecret(Base64Encode(UserID + " " + digest))) return Attempt::CannotSend;
        code = wire_.SmtpReply();
    }
    return AfterAnswer(code, "authenticating user on SMTP server failed");
}

// Each of the two lines is sent only in answer to its own question.
clsEsmtp::Attempt clsEsmtp::TryLogin() {
    if (!SendLine("AUTH LOGIN")) return Attempt::CannotSend;
    int code = wire_.SmtpReply();
    if (code == kChallenge) {
        if (wire_.Challenge() == kAsksUser) SendSecret(Base64Encode(UserID));
        code = wire_.SmtpReply();
    }
    if (code == kChallenge && wire_.Challenge() == kAsksPassword) {
        SendSecret(Base64Encode(Password));
        code = wire_.SmtpReply();
    }
    const Attempt attempt = AfterAnswer(code, kLoginFailed);
    if (attempt == Attempt::StartAgain) Ask("*");
    return attempt;
}

// RFC 4616.
clsEsmtp::Attempt clsEsmtp::TryPlain() {
    if (!SendLine("AUTH PLAIN")) return Attempt::CannotSend;
    if (wire_.SmtpReply() != kChallenge) return Attempt::NextMechanism;
    const std::string nul(1, '\0');
    if (!SendSecret(Base64Encode(nul + UserID + nul + Password))) return Attempt::CannotSend;
    return AfterAnswer(wire_.SmtpReply(), kLoginFailed);
}

clsEsmtp::Attempt clsEsmtp::AfterAnswer(int code, std::string_view problem) {
    if (code == kAuthenticated) return Attempt::Over;
    if (code != kLoginRefused) return Attempt::NextMechanism;
    Complain(problem);
    return HasBetterLogin(handlers_.RequestESMTPLogin, UserID, Password) ? Attempt::StartAgain : Attempt::NextMechanism;
}

bool clsEsmtp::SendSecret(const std::string& line) {
    return Send(line + "\r\n", std::string(kNotShown));
}

}  // namespace korvane
