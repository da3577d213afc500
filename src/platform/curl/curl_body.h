// The body of an answer while it arrives, and whether it is a text at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvane {

/// Whether a Content-Type (RFC 9110, section 8.3) is that of pictures, sound, films, archives or documents that are no text.
bool IsBinaryType(std::string_view contentType);

class CurlBody {
public:
    enum class Verdict { Text, Binary, TooLarge };

    /// Takes the next piece; false when the rest need not come. `contentType` and `expectedSize` (-1: unknown) are those of the
    /// answer.
    bool Take(std::string_view piece, std::string_view contentType, std::int64_t expectedSize);

    Verdict What() const { return verdict_; }
    std::string_view Bytes() const { return bytes_; }

private:
    Verdict verdict_ = Verdict::Text;
    std::string bytes_;
};

}  // namespace korvane
