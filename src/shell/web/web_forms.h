// Texts that the operator sends to the website, as addresses that the browser opens: feedback to the program's makers, and
// recommendations to friends.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/events.h"

namespace korvane {

/// Shown by a feedback window that finds no browser.
inline constexpr std::string_view kFeedbackNeedsBrowser =
    "We're sorry, but the Send Feedback function needs to open your browser to work properly.  "
    "However, your computer is not configured for a default browser.";
inline constexpr std::string_view kFeedbackDisabled =
    "The Send Feedback function is disabled until you configure a default browser.";

/// An address to open, or a message for the operator instead; the other one is empty.
struct WebForm {
    std::string refusal;
    std::string address;
};

struct Feedback {
    std::string email;
    std::string comment;
    std::string version;      ///< "major.minor.revision" of this program
    std::string browserType;  ///< as returned by WebPages::BrowserType
};

struct TellAFriend {
    std::array<std::string, 3> emails;  ///< of friends; an empty one is not checked
    std::string fromEmail;
    std::string fromName;
    std::string message;
};

/// Both let the pump run while long texts are encoded. Line ends may be of any kind.
WebForm FeedbackForm(const Feedback& feedback, Events& events);
WebForm TellAFriendForm(const TellAFriend& form, Events& events);

}  // namespace korvane
