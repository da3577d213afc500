// The two logins of clsEsmtp: at a POP server before the mail (RFC 1939), and at the SMTP server itself (RFC 4954).
#include "base/text.h"
#include "notify/base64.h"
#include "notify/esmtp.h"
#include "notify/md5.h"

namespace korvane {
namespace {

constexpr int kAuthenticated = 235;
constexpr int kChallenge = 334;
constexpr int kLoginRefused = 535;

// "Username:" and "Password:".
constexpr std::string_view kAsksUser = "VXNlcm5hbWU6";
constexpr std::string_view kAsksPassword = "UGFzc3dvcmQ6";

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
    phase_ = Phase::Pop;
    OpenConnection(POPhost, popPort);
    Raise(kPopConnecting);
    if (!GetPopReply(kPopTries, true)) {
        Complain("Unable to connect to POP host for authorization");
        return false;
    }
    Raise(kPopConnected);
    popUser_ = UserID;
    popPassword_ = Password;
    return true;
}

void clsEsmtp::AuthorizePop() {
    bool again = true;
    while (again)
        again = (!SendPopUser() || !SendPopPassword()) && HasBetterPopLogin();
}

bool clsEsmtp::SendPopUser() {
    SendLine("USER " + popUser_);
    Raise(kPopAuthorizing);
    if (GetPopReply(kPopTries, true)) return true;
    Complain("Unable to authorize POP server, server refused user");
    return false;
}

bool clsEsmtp::SendPopPassword() {
    if (AskPop("PASS " + popPassword_, Shown::Not)) {
        AskPop("STAT");
        return true;
    }
    Complain("Unable to authorize POP server, server refused password");
    return false;
}

bool clsEsmtp::HasBetterPopLogin() {
    bool bCancel = true;
    if (handlers_.RequestPOPLogin) handlers_.RequestPOPLogin(popUser_, popPassword_, bCancel);
    return !bCancel;
}

void clsEsmtp::LeavePop() {
    Raise(kPopDisconnecting);
    SendLine("QUIT");
    if (sckInternet.State() == SocketState::Connected) GetPopReply(kPopTries, true);
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
        if (!(mechanisms_.*mechanism.offered)) continue;
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
    int code = GetSmtpReply(kSmtpTries, true);
    if (code == kChallenge) {
        const std::string digest = HmacMd5Hex(Password, Base64Decode(challenge_));
        if (!SendLine(Base64Encode(UserID + " " + digest), Shown::Not)) return Attempt::CannotSend;
        code = GetSmtpReply(kSmtpTries, true);
    }
    if (code == kAuthenticated) return Attempt::Over;
    if (code != kLoginRefused) return Attempt::NextMechanism;
    return HasBetterLogin("authenticating user on SMTP server failed") ? Attempt::StartAgain : Attempt::NextMechanism;
}

// Each of the two lines is sent only in answer to its own question.
clsEsmtp::Attempt clsEsmtp::TryLogin() {
    if (!SendLine("AUTH LOGIN")) return Attempt::CannotSend;
    int code = GetSmtpReply(kSmtpTries, true);
    if (code == kChallenge) {
        if (challenge_ == kAsksUser) SendLine(Base64Encode(UserID), Shown::Not);
        code = GetSmtpReply(kSmtpTries, true);
        if (code == kChallenge && challenge_ == kAsksPassword) code = Ask(Base64Encode(Password), Shown::Not);
    }
    if (code == kAuthenticated) return Attempt::Over;
    if (code != kLoginRefused) return Attempt::NextMechanism;
    if (!HasBetterLogin("Authenticating user on SMTP server failed")) return Attempt::NextMechanism;
    Ask("*");
    return Attempt::StartAgain;
}

// RFC 4616.
clsEsmtp::Attempt clsEsmtp::TryPlain() {
    if (!SendLine("AUTH PLAIN")) return Attempt::CannotSend;
    if (GetSmtpReply(kSmtpTries, true) != kChallenge) return Attempt::Over;
    const std::string nul(1, '\0');
    if (!SendLine(Base64Encode(nul + UserID + nul + Password), Shown::Not)) return Attempt::CannotSend;
    if (GetSmtpReply(kSmtpTries, true) != kLoginRefused) return Attempt::Over;
    return HasBetterLogin("Authenticating user on SMTP server failed") ? Attempt::StartAgain : Attempt::Over;
}

bool clsEsmtp::HasBetterLogin(std::string_view problem) {
    Complain(problem);
    bool bCancel = true;
    if (handlers_.RequestESMTPLogin) handlers_.RequestESMTPLogin(UserID, Password, bCancel);
    return !bCancel;
}

}  // namespace korvane
