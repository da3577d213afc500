// Observes the conversation with the server while a mail is sent, line by line, without passwords and without the message itself.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvane {

/// Called from inside a mailer's conversation: it must return at once, throw nothing and deliver no events.
class MailTrace {
public:
    virtual ~MailTrace() = default;
    /// Receives a line that the mailer has given to its socket, without the line end, or the reason why it gave up.
    virtual void setMsg(const std::string& sent) = 0;
    /// Receives a reply without its last line end; it may have several lines, which end in CR LF.
    virtual void setReceiveMsg(const std::string& received) = 0;
};

/// Replaces, in the trace, a line that contains a password or anything derived from one.
inline constexpr std::string_view kNotShown = "[not shown]";

/// Replaces the message in the trace.
inline std::string BytesOfMessage(std::size_t bytes) {
    return "(" + std::to_string(bytes) + " bytes of the message)";
}

}  // namespace korvane
