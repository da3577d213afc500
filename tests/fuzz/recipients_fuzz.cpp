// Lists of recipients as people type them, in both of their normal forms.
#include <algorithm>
#include <string>
#include <vector>

#include "base/text.h"
#include "fuzz/fuzz.h"
#include "notify/recipients.h"

namespace korvane {
namespace {

void CheckAddress(const std::string& address) {
    Require(address.size() >= 3 && address.starts_with('<') && address.ends_with('>'), "an address stands in brackets");
    Require(Holds(address, "@"), "an address has an @");
    Require(address.find_first_of(" ,;") == std::string::npos, "an address is one word");
}

// The number of words that hold an @.
std::ptrdiff_t Addresses(std::string_view list) {
    std::string words(list);
    std::replace_if(
        words.begin(), words.end(), [](char c) { return c == ',' || c == ';'; }, ' ');
    const std::vector<std::string> pieces = Split(words, ' ');
    return std::count_if(pieces.begin(), pieces.end(), [](const std::string& piece) { return Holds(piece, "@"); });
}

}  // namespace

void Fuzz(std::string_view input) {
    const std::string list = NormaliseRecipients(input);
    Require(list.find_first_of(" ,") == std::string::npos, "only semicolons stand between two recipients");
    Require(Addresses(list) == Addresses(input), "no recipient is lost or doubled");

    std::vector<std::string> recipients{"<of-an-earlier@list>"};
    const std::string header = ParseRecipients(input, recipients);
    if (header.empty()) return Require(recipients.size() == 1, "an empty list changes nothing");
    Require(static_cast<std::ptrdiff_t>(recipients.size()) == Addresses(input), "each word with an @ is a recipient");
    for (const std::string& address : recipients)
        CheckAddress(address);

    std::vector<std::string> again;
    Require(ParseRecipients(header, again) == header && again == recipients, "a list in its normal form stays as it is");
}

}  // namespace korvane
