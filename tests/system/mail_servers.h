// Real mail servers on the loopback that log people in, refuse and deliver, and what arrived as Python's email package reads it.
// All servers that take mail listen on one port and differ by their address, as the servers of a primary and a backup do.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "system/real_servers.h"

namespace korvane::test {

struct MailPart {
    std::string type;
    std::string filename;
    std::string payload;  ///< decoded
    bool operator==(const MailPart&) const = default;
};

struct ArrivedMail {
    std::string trace;    ///< the header lines that servers put before those of the mail: Return-Path, Delivered-To, Received
    std::string headers;  ///< from From on, with "\n" between them
    std::string senderName;
    std::string senderAddress;
    std::int64_t date = 0;        ///< seconds since 1970
    std::vector<MailPart> parts;  ///< those that hold something themselves, in order
    std::string defects;          ///< what the reader found wrong, with blanks between
};

/// The one login that all servers know.
constexpr const char* kUser = "operator";
constexpr const char* kPassword = "open sesame";

/// Nobody listens here.
constexpr const char* kClosed = "127.0.0.10";

/// dovecot: POP3 with an empty mailbox, logins for Postfix, and SMTP with all three mechanisms that hands mails on to `relayPort`
/// of Aiosmtpd::kOpen.
class LoginServer {
public:
    explicit LoginServer(int relayPort);

    const std::vector<int> ports = FreePorts(2, 26000);
    const int pop3 = ports[0];
    const int submission = ports[1];  ///< of 127.0.0.1

    std::string AuthSocket() const { return folder_.Path("auth"); }
    /// A table of Postfix that allows the address of whoever logged in last at POP3, and nobody after Forget.
    std::string LastClient() const { return folder_.Path("client"); }
    void Forget() const;
    /// A folder that its user may write into.
    std::string Mailboxes() const { return folder_.Path("boxes"); }

private:
    std::vector<std::string> Prepare(int relayPort) const;
    PrivateFolder folder_;
    Server server_;
};

/// Postfix, which starts only as root. It has the mailboxes operator@korvane.example and second@korvane.example; mail to
/// person@elsewhere.example is delivered here too, but that counts as relaying.
class Postfix {
public:
    static constexpr const char* kTrusting = "127.0.0.11";  ///< relays for everybody on this machine
    static constexpr const char* kAllLogins = "127.0.0.12";
    static constexpr const char* kCramMD5 = "127.0.0.13";
    static constexpr const char* kLogin = "127.0.0.14";
    static constexpr const char* kPlain = "127.0.0.15";
    static constexpr const char* kNoRelay = "127.0.0.16";
    static constexpr const char* kAfterPop = "127.0.0.17";  ///< relays for whoever has just logged in at POP3

    /// `logins` must outlive this.
    explicit Postfix(const LoginServer& logins);

    const int port = FreePorts(1, 30000)[0];

    /// What has arrived since the last time, once nothing is left in the queue.
    std::vector<ArrivedMail> TakeMails() const;

private:
    std::vector<std::string> Prepare() const;
    std::string Services() const;
    bool QueueIsEmpty() const;
    const LoginServer& logins_;
    PrivateFolder folder_;
    Server server_;
};

/// Python's aiosmtpd, which any user may start.
class Aiosmtpd {
public:
    static constexpr const char* kOpen = "127.0.0.21";
    static constexpr const char* kLogins = "127.0.0.22";  ///< LOGIN and PLAIN, and no mail without one of them; alone below
    static constexpr const char* kLogin = "127.0.0.23";
    static constexpr const char* kPlain = "127.0.0.24";
    static constexpr const char* kClosing = "127.0.0.25";   ///< refuses every sender
    static constexpr const char* kFull = "127.0.0.26";      ///< refuses every recipient
    static constexpr const char* kCritical = "127.0.0.27";  ///< refuses every message

    Aiosmtpd();

    const int port = FreePorts(1, 22000)[0];

    std::vector<ArrivedMail> TakeMails() const;

private:
    std::vector<std::string> Prepare() const;
    PrivateFolder folder_;
    Server server_;
};

}  // namespace korvane::test
