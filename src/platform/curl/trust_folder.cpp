#include "platform/curl/trust_folder.h"

#include <curl/curl.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace korvane {
namespace {

bool IsHashName(std::string_view name) {
    constexpr std::size_t kHashDigits = 8;
    return name.size() == kHashDigits + 2 && name.ends_with(".0") && name.find_first_not_of("0123456789abcdef") == kHashDigits;
}

}  // namespace

std::string SystemTrustFolder() {
    const char* folder = curl_version_info(CURLVERSION_NOW)->capath;
    if (folder == nullptr) return {};
    std::error_code unreadable;
    const std::filesystem::directory_iterator files(folder, unreadable);
    // A folder with only a few hashed names holds local additions; the other authorities are then in the bundle alone.
    constexpr auto kWholeSet = 50;
    const auto hashed =
        std::count_if(begin(files), end(files), [](const auto& file) { return IsHashName(file.path().filename().native()); });
    return hashed >= kWholeSet ? folder : "";
}

}  // namespace korvane
