// Parses typed lists of recipients into two normal forms: one address after the other for the dispatcher, addresses in angle
// brackets for the SMTP conversation.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvane {

/// Turns "a@x, b@y  c@z" into "a@x;b@y;c@z": one ";" replaces each run of separators.
std::string NormaliseRecipients(std::string_view text);

/// Takes every word with an "@" as an address; words end at spaces, "," and ";". Returns the list for a header, with words kept
/// and addresses in angle brackets, and replaces `recipients` by the addresses in brackets. An empty list leaves them unchanged.
std::string ParseRecipients(std::string_view list, std::vector<std::string>& recipients);

}  // namespace korvane
