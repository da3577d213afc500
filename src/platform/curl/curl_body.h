// The body of an answer while it arrives, and whether it is a text at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvane {

/// At most 64 MB are taken in, of the bytes and of their text; never more than twice that is held.
class CurlBody {
public:
    /// Takes the next piece; false when the rest need not come. `contentType` and `expectedSize` (-1: unknown) are those of the
    /// answer.
    bool Take(std::string_view piece, std::string_view contentType, std::int64_t expectedSize);

    /// Whether Take has refused a piece; TakeText tells why.
    bool Refused() const { return verdict_ != Verdict::Text; }

    /// All of it in UTF-8; nothing is kept. Throws TypeMismatchError when it is no text, and Error when it is too large.
    std::string TakeText();

private:
    enum class Verdict { Text, Binary, TooLarge };
    Verdict verdict_ = Verdict::Text;
    std::string bytes_;
};

}  // namespace korvane
