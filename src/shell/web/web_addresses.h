// Every web and mail address that the program uses. The host is reserved for documentation until there is a real one.
#pragma once

#include <string_view>

namespace korvane {

/// The folder of the product's pages, without a slash at the end.
inline constexpr std::string_view kWebsite = "https://www.example.com";

/// Requested over plain HTTP, as its scheme says.
inline constexpr std::string_view kVersionFileAddress = "http://www.example.com/zshared/version.txt";
inline constexpr std::string_view kDownloadPageAddress = "https://www.example.com/download.asp";
inline constexpr std::string_view kInstallerAddress = "https://www.example.com/download/korvanecore.deb";
inline constexpr std::string_view kFeedbackAddress = "https://www.example.com/zshared/feedback.asp";
inline constexpr std::string_view kTellAFriendAddress = "https://www.example.com/zshared/tellafriend.asp";

inline constexpr std::string_view kDatabaseHelpAddress = "https://www.example.com/korvane/database-help.htm";

/// The mailbox of the program's makers.
inline constexpr std::string_view kContactAddress = "korvane@example.com";

}  // namespace korvane
