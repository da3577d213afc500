// The content of a column: a text, a number, a moment, yes or no, or blank. A Value is read as the kind the caller needs; if it
// cannot be read as that kind, the result is an error with a description, never a silent zero.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "base/datetime.h"

namespace korvane {

class Value {
public:
    /// Blank.
    Value() = default;
    Value(bool yes) : held_(yes) {}
    Value(int number) : held_(std::int64_t{number}) {}
    Value(std::int64_t number) : held_(number) {}
    Value(double number) : held_(number) {}
    Value(std::string text) : held_(std::move(text)) {}
    Value(std::string_view text) : held_(std::string(text)) {}
    Value(const char* text) : held_(std::string(text)) {}
    Value(DateTime when) : held_(when) {}

    bool IsBlank() const { return std::holds_alternative<std::monostate>(held_); }
    /// Returns true for a blank and for the empty text.
    bool IsEmpty() const;

    /// A blank reads as the empty text, numbers as FormatGeneral, dates as DateTime::Text, yes and no as "True" and "False".
    std::string Text() const;

    /// The numbers round half to even. They throw BlankError, TypeMismatchError, or OverflowError outside their range.
    std::int16_t Int16() const;
    std::int32_t Int32() const;
    std::int64_t Int64() const;
    double Double() const;

    /// Any number but 0, and the texts "True" and "Yes" in any case, are true. Blank is false.
    bool Bool() const;

    /// Returns a moment, or a text read by ParseDateTime. Throws BlankError or TypeMismatchError.
    DateTime When() const;

    bool operator==(const Value&) const = default;

    using Held = std::variant<std::monostate, bool, std::int64_t, double, std::string, DateTime>;
    const Held& Get() const { return held_; }

private:
    Held held_;
};

}  // namespace korvane
