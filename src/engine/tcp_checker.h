// Connects to a host and port and performs a short scripted conversation: the check of every server type but HTTP, HTTPS and
// PING.
//
// The script is one text with elements between commas, no quoting. Elements alternate, beginning with a text to wait for:
// "220,QUIT,221" waits for "220", sends QUIT, waits for "221". An empty script only needs the connection.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "engine/check_result.h"
#include "engine/collaborators.h"
#include "notify/hidden_passwords.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/operator.h"
#include "platform/tcp_socket.h"
#include "store/safeguards.h"
#include "store/status_log.h"

namespace korvane {

class TcpChecker {
public:
    struct Ports {
        TcpSocket& socket;  ///< the single socket of all TCP checks; the checker receives its events
        Events& events;
        const Clock& clock;
        Operator& person;
        StatusLog& status;
        ConversationWindow& conversation;
        const HiddenPasswords* hidden = nullptr;  ///< for answers to a login, which are no commands; null: all are shown
        const Safeguards* safeguards = nullptr;   ///< GuardClock: a change of the clock does not prolong the wait for a reply
    };

    explicit TcpChecker(const Ports& ports);

    /// Waits through the event pump: half of `nTimeout` to resolve and connect together, then just over 20 seconds for each
    /// reply. A second conversation while one is running fails with a reason.
    CheckResult DoTCPRequest(const std::string& strServer, const std::string& strExpected, std::chrono::seconds nTimeout,
                             const std::string& strPort);

    /// Returns whether the server's next data contains the text, case-sensitively. The first arrival decides.
    bool WaitForTCPText(const std::string& strExpected);

private:
    bool Connect(const std::string& strServer, std::chrono::seconds nTimeout, const std::string& strPort, CheckPhases& phases);
    void TalkOrExplain(const std::string& strExpected, CheckResult& result);
    void Converse(const std::string& strExpected, CheckResult& result);
    bool ExpectElement(const std::string& element, CheckResult& result);
    void SendElement(const std::string& element);

    /// Returns the time since the mark, which becomes now.
    CheckPhases::Duration SinceMark();

    Ports ports_;
    std::chrono::milliseconds mark_{0};  ///< tick count of the end of the last phase
    std::optional<std::chrono::milliseconds> connectedAt_;
    std::string strRecvBuffer_;  ///< the latest arrival alone, unchanged
    int loginAnswers_ = 0;       ///< elements to be sent next that answer a login
    bool talking_ = false;
    std::string strTCPTimeoutText_;  ///< empty: no reply was late
};

}  // namespace korvane
