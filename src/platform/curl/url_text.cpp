#include "platform/curl/url_text.h"

#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kEncoded = " \"<>`";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

std::size_t EndOfHost(std::string_view url) {
    const auto scheme = url.find("://");
    const auto end = url.find_first_of("/?#", scheme == std::string_view::npos ? 0 : scheme + 3);
    return end == std::string_view::npos ? url.size() : end;
}

}  // namespace

std::string EncodeUrl(std::string_view typed) {
    std::string url = TrimAll(typed);
    const std::string rest = url.substr(EndOfHost(url));
    url.resize(url.size() - rest.size());
    for (const char c : rest) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && kEncoded.find(c) == std::string_view::npos) {
            url += c;
        } else {
            url += '%';
            url += kHexDigits[byte >> 4];
            url += kHexDigits[byte & 0x0F];
        }
    }
    return url;
}

}  // namespace korvane
