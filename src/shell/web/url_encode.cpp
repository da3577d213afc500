#include "shell/web/url_encode.h"

#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kEncoded = "%, /~:$&";
constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::size_t kBetweenEvents = 256;  ///< bytes

}  // namespace

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

}  // namespace korvane
