// What the operator writes to the website, as addresses that the browser opens: feedback to its makers, and word of the program
// to friends.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/events.h"

namespace korvane {

/// For a feedback window that finds no browser.
inline constexpr std::string_view kFeedbackNeedsBrowser =
    "We're sorry, but the Send Feedback function needs to open your browser to work properly.  "
    "However, your computer is not configured for a default browser.";
inline constexpr std::string_view kFeedbackDisabled =
    "The Send Feedback function is disabled until you configure a default browser.";

/// An address to open, or what to tell the operator instead; the other one is blank.
struct WebForm {
    std::string refusal;
    std::string address;
};

struct Feedback {
    std::string email;
    std::string comment;
    std::string version;      ///< "major.minor.revision" of this program
    std::string browserType;  ///< as WebPages::BrowserType says it
};

struct TellAFriend {
    std::array<std::string, 3> emails;  ///< of friends; a blank one is left out of the checks
    std::string fromEmail;
    std::string fromName;
    std::string message;
};

/// Both let the pump run while long texts are encoded. Line ends may be of any kind.
WebForm FeedbackForm(const Feedback& feedback, Events& events);
WebForm TellAFriendForm(const TellAFriend& form, Events& events);

}  // namespace korvane
