// A mail of the outbox on its way through one server, in a child process of this program. The parent passes the mail and the
// settings as one text; the child answers with a line for each recipient, at once, and ends.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "notify/dispatcher.h"

namespace korvane {

/// The word on the child's command line.
constexpr const char* kSendMail = "--send-mail";

struct MailErrand {
    std::map<std::string, std::string> settings;  ///< those that mail depends on, with passwords
    MailServer server = MailServer::Primary;
    Notification mail;                    ///< `strTo1` stands in for a missing sender
    std::vector<std::string> recipients;  ///< to whom it goes now
    std::string messageId;

    /// Adds the settings.
    static MailErrand With(const SettingsCollection& settings);
    std::string Text() const;
    /// Throws Error unless the text is whole.
    static MailErrand Parse(std::string_view text);
};

/// A line of the child.
struct MailAnswer {
    std::size_t recipient = 0;  ///< its place in the errand
    bool taken = false;
    bool greeted = false;  ///< the server spoke with us, so a refusal concerns the mail
    std::string words;     ///< the receipt, or the reason; one line

    std::string Line() const;
    /// Returns nothing for any other line.
    static std::optional<MailAnswer> Parse(const std::string& line);
};

struct ErrandPorts {
    TcpSocket& sckesmtp;
    TcpSocket& plainSocket;
    const Clock& clock;
    Events& events;
    Files& files;
    GuidSource& guids;
};

/// What the child does: waits as the mailers do. Ends at the first recipient for whom the server did not even greet, or was silent
/// for too long; the others then get no line. Throws Error for a text that is no errand.
void RunMailErrand(const std::string& text, const ErrandPorts& ports, const std::function<void(const std::string& line)>& print);

/// An attempt that failed only after this time counts as a time-out.
constexpr std::chrono::seconds kSilentServer{20};

}  // namespace korvane
