// Safeguard OwnNetwork: an entry is not blamed for a failed check while this machine's own network is down, which it is when none
// of the addresses of the setting answers. Such a check is not counted, and nobody gets a mail or a command for it; its row says
// so. One mail tells when the network is back.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "notify/dispatcher.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/icmp_echo.h"
#include "platform/tcp_socket.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

class OwnNetwork {
public:
    struct Ports {
        IcmpEcho& echo;
        TcpSocket& socket;  ///< of its own
        const Clock& clock;
        Events& events;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        Safeguards& safeguards;
        std::function<SendOutcome(const Notification& mail)> send;  ///< through the outbox, the primary mail server or the backup
    };

    explicit OwnNetwork(const Ports& ports) : ports_(ports) {}

    /// Called before each check: asks the addresses one after the other until one answers, a second for each. A dotted address
    /// is asked by an echo, which delivers no events; a name, or any address while echoes are not allowed, by TCP connections to
    /// the ports 80, 443 and 53, of which a refused one is an answer, too. Sends the mail when the network is back.
    void AskBeforeCheck();

    /// Called after a failed check with its row: returns whether the network was down before it or is down now. Then the row has
    /// the status "own network down" and is due after the global retry time, or after its interval if that is shorter, and is
    /// updated. Store errors are passed to the caller.
    bool Excuses(Recordset& rs, const std::string& strReason);

private:
    struct Outage {
        DateTime since;
        std::chrono::milliseconds start;  ///< in terms of the clock's tick count
        std::size_t checks = 0;
        std::string strFrom;
        std::set<std::string, LessNoCase> people;
    };

    bool IsDown(const std::vector<std::string>& hosts);
    bool Answers(const std::string& host);
    bool Connects(const std::string& host, std::int32_t port);
    void Note(Recordset& rs);
    void Write(Recordset& rs, const std::string& strReason) const;
    void TellItIsBack();

    Ports ports_;
    bool downBefore_ = false;
    std::optional<Outage> outage_;
};

}  // namespace korvane
