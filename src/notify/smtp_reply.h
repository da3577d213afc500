// The replies of mail servers (RFC 5321, section 4.2; RFC 1939, section 3), as the conversation reads them: by their first
// four characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvane {

/// Characters of a reply that people are told; a server that floods the connection must not flood the log.
constexpr std::size_t kMostOfAReply = 2000;

enum class ReplyKind { Smtp, Pop, Unknown };

/// Whose reply begins with these characters (at most four are given). A first line of several is known only for 220 and 250.
ReplyKind KindOfReply(std::string_view firstFour);

/// The number that a reply begins with, after blanks and line ends; 0 when there is none.
int ReplyCode(std::string_view firstFour);

/// What the server offers to log in with.
struct AuthMechanisms {
    bool cramMD5 = false;
    bool login = false;
    bool plain = false;
    bool operator==(const AuthMechanisms&) const = default;
};

/// Adds what the lines of an EHLO reply offer (RFC 4954, section 3). The old form "AUTH=LOGIN" offers nothing.
void ParseAuthMechanisms(std::string_view text, AuthMechanisms& mechanisms);

/// Bytes through the last CR LF are a reply, which may have several lines.
struct WholeReply {
    std::size_t length = 0;  ///< with its CR LF; 0: no line has ended yet
    std::string text;        ///< without its last CR LF
};
WholeReply FindReply(std::string_view arrived);

/// Whether one of the lines after the first is "<code> ...", the last of its reply, as opposed to "<code>-...".
bool HoldsLastLine(std::string_view text, std::string_view code);

}  // namespace korvane
