#include "shell/web/web_forms.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/text.h"
#include "notify/mail_message.h"
#include "shell/web/web_pages.h"

namespace korvane {
namespace {

constexpr const char* kProduct = "Korvane";

constexpr std::string_view kEncoded = "%, /~:$&";
constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::size_t kBetweenEvents = 256;  ///< bytes

using Values = std::vector<std::pair<std::string_view, std::string>>;

// The encoding that the pages of the website expect; every other byte stays. Long texts let the pump run in between.
std::string URLEncodeText(std::string_view text, Events& events) {
    const std::string lines = ReplaceAll(text, "\r\n", "DA");  // the website's form of a line end
    std::string encoded;
    for (std::size_t at = 0; at < lines.size(); ++at) {
        if (at % kBetweenEvents == 0) events.DoEvents();
        const char c = lines[at];
        if (kEncoded.find(c) == std::string_view::npos) {
            encoded += c;
        } else {
            encoded += {'%', kDigits[static_cast<std::size_t>(c) / 16], kDigits[static_cast<std::size_t>(c) % 16]};
        }
    }
    return encoded;
}

std::string AddressWith(std::string_view page, const Values& values, Events& events) {
    std::string address(page);
    char separator = '?';
    for (const auto& [key, value] : values) {
        address += separator;
        address += key;
        address += '=';
        address += URLEncodeText(WithMailLineEnds(value), events);
        separator = '&';
    }
    return address;
}

bool IsBlank(const std::string& text) {
    return TrimAll(text).empty();
}

bool IsValid(const std::string& email) {
    const auto at = email.find('@');
    return at != std::string::npos && email.find('.', at) != std::string::npos;
}

std::string RefusalOf(const TellAFriend& form) {
    if (IsBlank(form.message))
        return "Please enter a message that can be sent to your friends, then click the 'Send' button  Thank you.";
    if (std::all_of(form.emails.begin(), form.emails.end(), IsBlank))
        return "Please supply one or more of your friends email addresses. Then click the 'Send' button  Thank you.";
    for (const std::string& email : form.emails) {
        if (IsBlank(email) || IsValid(email)) continue;
        return "The email address you supplied '" + email +
               "' does not appear to be valid. "
               "Please supply one or more valid email addresses, then click the 'Send' button  Thank you.";
    }
    return "";
}

}  // namespace

WebForm FeedbackForm(const Feedback& feedback, Events& events) {
    if (IsBlank(feedback.comment))
        return {.refusal = "Please enter a comment or question, then click Send Comment.  Thank you.", .address = ""};
    const std::string body = feedback.comment + "\r\nV" + feedback.version + feedback.browserType;
    const Values values = {{"prod", kProduct}, {"email", feedback.email}, {"body", body}};
    return {.refusal = "", .address = AddressWith(kFeedbackAddress, values, events)};
}

WebForm TellAFriendForm(const TellAFriend& form, Events& events) {
    std::string refusal = RefusalOf(form);
    if (!refusal.empty()) return {.refusal = std::move(refusal), .address = ""};
    const Values values = {{"prod", kProduct},         {"email1", form.emails[0]},    {"email2", form.emails[1]},
                           {"email3", form.emails[2]}, {"fromemail", form.fromEmail}, {"fromname", form.fromName},
                           {"body", form.message}};
    return {.refusal = "", .address = AddressWith(kTellAFriendAddress, values, events)};
}

}  // namespace korvane
