#include "platform/curl/curl_body.h"

#include <algorithm>

#include "base/text.h"

namespace korvane {
namespace {

constexpr std::size_t kLargestBody = std::size_t{256} * 1024 * 1024;

constexpr std::string_view kBinaryFamilies[] = {"image/", "audio/", "video/", "font/"};
constexpr std::string_view kBinaryTypes[] = {
    "application/octet-stream", "application/zip", "application/gzip", "application/x-gzip", "application/pdf",
};

}  // namespace

bool IsBinaryType(std::string_view contentType) {
    const std::string type = ToLower(TrimAll(contentType.substr(0, contentType.find(';'))));
    return std::any_of(std::begin(kBinaryFamilies), std::end(kBinaryFamilies),
                       [&](std::string_view family) { return type.starts_with(family); }) ||
           std::find(std::begin(kBinaryTypes), std::end(kBinaryTypes), type) != std::end(kBinaryTypes);
}

bool CurlBody::Take(std::string_view piece, std::string_view contentType, std::int64_t expectedSize) {
    const auto expected = static_cast<std::size_t>(std::max<std::int64_t>(expectedSize, 0));
    if (expected > kLargestBody || piece.size() > kLargestBody - bytes_.size()) verdict_ = Verdict::TooLarge;
    if (piece.find('\0') != std::string_view::npos || (bytes_.empty() && IsBinaryType(contentType))) verdict_ = Verdict::Binary;
    if (verdict_ != Verdict::Text) return false;
    if (bytes_.empty()) bytes_.reserve(expected);
    bytes_ += piece;
    return true;
}

}  // namespace korvane
