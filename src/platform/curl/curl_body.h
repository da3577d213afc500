// Collects the body of a response while it arrives, and decides whether it is text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvane {

/// Accepts at most 64 MB, of the bytes and of their text; holds at most twice that.
class CurlBody {
public:
    /// Adds the next piece; returns false when the rest is not needed. `contentType` and `expectedSize` (-1: unknown) are those
    /// of the response.
    bool Take(std::string_view piece, std::string_view contentType, std::int64_t expectedSize);

    /// Returns whether Take has refused a piece; TakeText gives the reason.
    bool Refused() const { return verdict_ != Verdict::Text; }

    /// Returns all of it in UTF-8 and keeps nothing. Throws TypeMismatchError when it is not text, and Error when it is too
    /// large.
    std::string TakeText();

private:
    enum class Verdict { Text, Binary, TooLarge };
    Verdict verdict_ = Verdict::Text;
    std::string bytes_;
};

}  // namespace korvane
