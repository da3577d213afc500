// Interprets replies of mail servers (RFC 5321, section 4.2; RFC 1939, section 3) by their first four characters.
#pragma once

#include <cstddef>
#include <string_view>

namespace korvane {

/// Longest part of a reply that is shown or logged, so that a server that floods the connection does not flood the log.
constexpr std::size_t kMostOfAReply = 2000;

enum class ReplyKind { Smtp, Pop, Unknown };

/// Returns which kind of server sends a reply that begins with these characters (at most four are given). The first line of a
/// multi-line reply is recognised only for 220 and 250.
ReplyKind KindOfReply(std::string_view firstFour);

/// Returns the number at the start of a reply, after spaces and line ends; 0 when there is none.
int ReplyCode(std::string_view firstFour);

/// The login mechanisms that the server offers.
struct AuthMechanisms {
    bool cramMD5 = false;
    bool login = false;
    bool plain = false;
    bool operator==(const AuthMechanisms&) const = default;
};

/// Adds the mechanisms in the lines of an EHLO reply (RFC 4954, section 3). The old form "AUTH=LOGIN" is ignored.
void ParseAuthMechanisms(std::string_view text, AuthMechanisms& mechanisms);

/// Returns whether a line of an EHLO reply offers to go on under TLS (RFC 3207).
bool OffersStartTls(std::string_view text);

/// Returns whether the last line of what arrived is complete and ends a reply, multi-line or not.
bool IsWholeReply(std::string_view arrived);

/// Returns the length of the reply, with its last CR LF: all whole lines that have arrived. 0: no line is complete yet.
std::size_t ReplyLength(std::string_view arrived);

}  // namespace korvane
