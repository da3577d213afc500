// Texts of the window for the text that must appear in an answer.
#pragma once

#include <string>

namespace korvane {

/// Returns the line above the box. `server` is the entry's address as the editor shows it.
std::string TextToFindHeading(const std::string& server);

/// Returns the explanation below it. `upperCase` is the same text in upper case.
std::string TextToFindHelp(const std::string& text, const std::string& upperCase);

}  // namespace korvane
