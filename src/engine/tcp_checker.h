// Connects to a host and port and plays a short scripted conversation: the check of every server type but HTTP, HTTPS and PING.
//
// The script is one text with elements between commas, no quoting. Elements at even places are texts to wait for, elements at odd
// places lines to send: "220,QUIT,221" waits for "220", sends QUIT, waits for "221". A blank script is content with the
// connection.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "engine/check_result.h"
#include "engine/collaborators.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/operator.h"
#include "platform/tcp_socket.h"
#include "store/status_log.h"

namespace korvane {

class TcpChecker {
public:
    struct Ports {
        TcpSocket& socket;  ///< the one socket of all TCP checks; the checker takes its events
        Events& events;
        const Clock& clock;
        Operator& person;
        StatusLog& status;
        ConversationWindow& conversation;
    };

    explicit TcpChecker(const Ports& ports);

    /// Waits through the event pump: half of `nTimeout` to resolve and connect together, then just over 20 seconds for each
    /// reply. A second conversation while one is running fails with a reason.
    CheckResult DoTCPRequest(const std::string& strServer, const std::string& strExpected, std::chrono::seconds nTimeout,
                             const std::string& strPort);

    /// Whether the next thing the server says holds the text, upper and lower case told apart. The first arrival decides.
    bool WaitForTCPText(const std::string& strExpected);

private:
    enum class Connecting { Done, OutOfTime };
    Connecting Connect(const std::string& strServer, std::chrono::seconds nTimeout, const std::string& strPort);
    void TalkOrExplain(Connecting connecting, const std::string& strExpected, CheckResult& result);
    void Converse(const std::string& strExpected, CheckResult& result);
    bool ExpectElement(const std::string& element, CheckResult& result);
    void SendElement(const std::string& element);

    Ports ports_;
    std::string strRecvBuffer_;  ///< the most recent arrival as it came, not the sum of all
    bool talking_ = false;
    bool bTCPTimedOut_ = false;
    std::string strTCPTimeoutText_;
};

}  // namespace korvane
