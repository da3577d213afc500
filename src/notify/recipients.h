// The texts in which people name recipients, and their two normal forms: one address after the other for the dispatcher,
// addresses in angle brackets for the SMTP conversation.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvane {

/// "a@x, b@y  c@z" becomes "a@x;b@y;c@z": one ";" between two of them, whatever stood there.
std::string NormaliseRecipients(std::string_view text);

/// Takes every word with an "@" as an address; words end at blanks, "," and ";". Returns the list as it goes into a header, words
/// kept and addresses in angle brackets, and refills `recipients` with the addresses in theirs. An empty list leaves them as they
/// are.
std::string ParseRecipients(std::string_view list, std::vector<std::string>& recipients);

}  // namespace korvane
