#include "platform/curl/curl_body.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::size_t kLargestBody = std::size_t{64} * 1024 * 1024;

constexpr std::string_view kBinaryFamilies[] = {"image/", "audio/", "video/", "font/"};
constexpr std::string_view kBinaryTypes[] = {
    "application/octet-stream", "application/zip", "application/gzip", "application/x-gzip", "application/pdf",
};

// Returns whether a Content-Type (RFC 9110, section 8.3) denotes pictures, sound, films, archives or non-text documents.
bool IsBinaryType(std::string_view contentType) {
    const std::string type = ToLower(TrimAll(contentType.substr(0, contentType.find(';'))));
    return std::any_of(std::begin(kBinaryFamilies), std::end(kBinaryFamilies),
                       [&](std::string_view family) { return type.starts_with(family); }) ||
           std::find(std::begin(kBinaryTypes), std::end(kBinaryTypes), type) != std::end(kBinaryTypes);
}

}  // namespace

bool CurlBody::Take(std::string_view piece, std::string_view contentType, std::int64_t expectedSize) {
    const auto expected = static_cast<std::size_t>(std::max<std::int64_t>(expectedSize, 0));
    if (expected > kLargestBody || piece.size() > kLargestBody - bytes_.size()) verdict_ = Verdict::TooLarge;
    if (piece.find('\0') != std::string_view::npos || (bytes_.empty() && IsBinaryType(contentType))) verdict_ = Verdict::Binary;
    if (verdict_ != Verdict::Text) return false;
    if (bytes_.empty()) bytes_.reserve(expected);
    bytes_ += piece;
    return true;
}

std::string CurlBody::TakeText() {
    if (verdict_ == Verdict::Binary) throw TypeMismatchError();
    if (verdict_ == Verdict::TooLarge || Utf8Size(bytes_) > kLargestBody) throw Error("The answer is larger than 64 MB");
    return ToUtf8(std::move(bytes_));
}

}  // namespace korvane
