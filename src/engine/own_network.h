// Safeguard OwnNetwork: an entry is not blamed for a failed check while this machine's own network is down, which it is when none
// of the addresses of the setting answers. Such a check is not counted, and nobody gets a mail or a command for it; its row says
// so. One mail tells when the network is back, also after a restart.
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
        IcmpEcho& echo;     ///< of its own: its handle stays open
        TcpSocket& socket;  ///< of its own
        const Clock& clock;
        Events& events;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        Safeguards& safeguards;
        std::function<SendOutcome(const Notification& mail)> send;  ///< through the outbox, the primary mail server or the backup
        Store& store;
        std::string connectionString;  ///< of the database
    };

    explicit OwnNetwork(const Ports& ports) : ports_(ports) {}

    /// Called before each check: asks the addresses. All dotted ones are sent an echo, which is not waited for unless the network
    /// is known to be down. A name, or any address while echoes are not allowed, can only be asked by TCP connections to the ports
    /// 80, 443 and 53, a second for each, of which a refused one is an answer, too; so where there are such ones, an echo is
    /// waited for, and then they are asked one after the other until one answers. Sends the mail when the network is back.
    void AskBeforeCheck();

    /// Called after a failed check with its row: returns whether no address answered the question before it within a second, or
    /// none answers now. Waits up to a second for the echoes to either, without events. If it returns true, the row has
    /// the status "own network down" and is due after the global retry time, or after its interval if that is shorter, and is
    /// updated. Store errors are passed to the caller.
    bool Excuses(Recordset& rs, const std::string& strReason);

private:
    struct Outage {
        DateTime since;
        std::chrono::milliseconds start;  ///< in terms of the clock's tick count
        std::size_t checks = 0;
        bool recalled = false;  ///< it began in an earlier run, whose checks are not known
        std::string strFrom;
        std::set<std::string, LessNoCase> people;
    };

    std::vector<std::string> SendEchoes(const std::vector<std::string>& hosts);
    bool IsAnswered(const std::vector<std::string>& others);
    bool Connects(const std::string& host, std::int32_t port);
    void Recall();
    void Note(Recordset& rs);
    void Write(Recordset& rs, const std::string& strReason) const;
    void NoteItIsOver();
    void TellItIsBack();

    Ports ports_;
    bool isOpen_ = false;             ///< the handle for echoes
    std::optional<bool> downBefore_;  ///< the check; nothing: the answers to the echoes were not read yet
    std::optional<Outage> outage_;
    bool recalled_ = false;
};

}  // namespace korvane
