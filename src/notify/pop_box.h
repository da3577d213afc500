// Takes one mail out of a mailbox by POP3 (RFC 1939), told apart by its subject.
#pragma once

#include <cstdint>
#include <string>

#include "notify/mail_wire.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/tcp_socket.h"

namespace korvane {

class PopBox {
public:
    struct Account {
        std::string host;
        std::int32_t port = 995;  ///< 995 is TLS, any other is in clear
        std::string authorities = {};
        std::string user;
        std::string password;
    };

    /// Nothing else may use the socket while this object lives.
    PopBox(TcpSocket& socket, const Clock& clock, Events& events);

    enum class Found { No, Deleted, Kept };

    /// Looks through the newest 200 mails and deletes the one whose subject begins with `subject`; the server may refuse that, or
    /// die before it confirms it. Throws Error with the reason why the mails could not be read. Waits through the event pump, up to
    /// 60 seconds for each reply and 5 minutes for all.
    Found Take(const Account& account, const std::string& subject);

private:
    Found Converse(const Account& account, const std::string& subject);
    int CountOfMails();
    std::string SubjectOf(int mail);
    bool IsOk(const std::string& line);
    void Require(const std::string& line, const std::string& what);
    std::string ReadLine();

    TcpSocket& socket_;
    const Clock& clock_;
    Events& events_;
    MailWire wire_;
    std::string arrived_;
    std::string reply_;
    std::chrono::milliseconds end_{0};
};

}  // namespace korvane
