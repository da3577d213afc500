#include "reports/page_text.h"

#include "base/text.h"

namespace korvane {
namespace {

/// The parts of `strAction` that this program writes as HTML. The tags alone would let a command or an address write a list, too.
constexpr std::string_view kOwnHtml[] = {
    "None.<ul><li>", "\r\n<li>",        "<li>Korvane shut down",        "<li>Server configured so",
    "<b>will</b>",   "<b>WILL NOT</b>", "<font color=red>FAILED</font>"};
constexpr std::string_view kEndOfList = "</ul>";

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            case '[':
                escaped += "&#91;";
                break;  // two of them begin a placeholder
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string PercentEncoded(std::string_view name) {
    constexpr std::string_view kStays = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (kStays.find(c) != std::string_view::npos)
            encoded += c;
        else
            encoded += {'%', kDigits[byte / 16], kDigits[byte % 16]};
    }
    return encoded;
}

}  // namespace

std::string PageText::Noted(const std::string& before, std::string after) const {
    if (after != before)
        safeguards_.Acted(kKey, "Text from outside has signs of HTML, links or queries, and stands in the pages as text.");
    return after;
}

std::string PageText::Text(const std::string& text) const {
    return on_ ? Noted(text, Escaped(text)) : text;
}

std::string PageText::Action(const std::string& action) const {
    if (!on_) return action;
    const bool hasList = action.ends_with(kEndOfList);
    std::string escaped = Escaped(std::string_view(action).substr(0, action.size() - (hasList ? kEndOfList.size() : 0)));
    for (const std::string_view own : kOwnHtml)
        escaped = ReplaceAll(escaped, Escaped(own), own);
    if (hasList) escaped += kEndOfList;
    return Noted(action, escaped);
}

std::string PageText::Link(const std::string& name) const {
    if (!on_) return name;
    return name.empty() ? "." : Noted(name, PercentEncoded(name));
}

std::string PageText::InQuery(const std::string& text) const {
    return on_ ? Noted(text, ReplaceAll(text, "'", "''")) : text;
}

}  // namespace korvane
