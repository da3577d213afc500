// Who looks on while a mail is sent: the conversation with the server, line by line, without passwords and without the message
// itself.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvane {

/// Called from inside a mailer's conversation: it must return at once, throw nothing and let no event through.
class MailTrace {
public:
    virtual ~MailTrace() = default;
    /// A line that the mailer has given to its socket, without the line end; or why it gave up.
    virtual void setMsg(const std::string& sent) = 0;
    /// A reply, without its last line end; it may have several lines, which end in CR LF.
    virtual void setReceiveMsg(const std::string& received) = 0;
};

/// What stands in the trace for a line with a password, or with anything made of one.
inline constexpr std::string_view kNotShown = "[not shown]";

/// What stands in the trace for the message.
inline std::string BytesOfMessage(std::size_t bytes) {
    return "(" + std::to_string(bytes) + " bytes of the message)";
}

}  // namespace korvane
