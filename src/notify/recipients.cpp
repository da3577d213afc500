#include "notify/recipients.h"

#include "base/text.h"

namespace korvane {
namespace {

std::string ReplaceUntilGone(std::string text, std::string_view from, std::string_view to) {
    while (Holds(text, from))
        text = ReplaceAll(text, from, to);
    return text;
}

std::string InBrackets(std::string address) {
    if (!address.starts_with('<')) address.insert(0, "<");
    if (!address.ends_with('>')) address += '>';
    return address;
}

}  // namespace

std::string NormaliseRecipients(std::string_view text) {
    std::string list = ReplaceAll(Trim(text), ",", ";");
    list = ReplaceUntilGone(std::move(list), "  ", " ");
    list = ReplaceUntilGone(std::move(list), "; ", ";");
    list = ReplaceUntilGone(std::move(list), ";;", ";");
    return Trim(ReplaceAll(list, " ", ";"));
}

std::string ParseRecipients(std::string_view list, std::vector<std::string>& recipients) {
    const std::string spaced = ReplaceAll(ReplaceAll(Trim(list), ",", " , "), ";", " ; ");
    if (spaced.empty()) return "";
    recipients.clear();
    std::string normalised;
    for (std::string& piece : Split(spaced, ' ')) {
        if (Holds(piece, "@")) {
            piece = InBrackets(std::move(piece));
            recipients.push_back(piece);
        }
        normalised += piece + " ";
    }
    normalised.pop_back();
    return ReplaceAll(ReplaceAll(normalised, " , ", ","), " ; ", ";");
}

}  // namespace korvane
