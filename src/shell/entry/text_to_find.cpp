#include "shell/entry/text_to_find.h"

namespace korvane {

std::string TextToFindHeading(const std::string& server) {
    return "Type in Text the MUST APPEAR in the response from " + server;
}

std::string TextToFindHelp(const std::string& text, const std::string& upperCase) {
    return "If the text '" + text +
           "' does not appear in the response returned from the server, it will be considered a URL Failure.\r\n\r\n"
           "1) Text is case sensitive!  For Example: '" +
           text + "' is treated differently than '" + upperCase +
           "'.\r\n2) This text must be found in the first 500 characters of the result.";
}

}  // namespace korvane
