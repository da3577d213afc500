#include "base/value.h"

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvane {
namespace {

template <class... Readers>
struct Overloaded : Readers... {
    using Readers::operator()...;
};
template <class... Readers>
Overloaded(Readers...) -> Overloaded<Readers...>;

}  // namespace

bool Value::IsEmpty() const {
    const auto* text = std::get_if<std::string>(&held_);
    return IsBlank() || (text != nullptr && text->empty());
}

std::string Value::Text() const {
    return std::visit(Overloaded{
                          [](std::monostate) { return std::string(); },
                          [](bool yes) { return std::string(yes ? "True" : "False"); },
                          [](std::int64_t number) { return std::to_string(number); },
                          [](double number) { return FormatGeneral(number); },
                          [](const std::string& text) { return text; },
                          [](DateTime when) { return when.Text(); },
                      },
                      held_);
}

std::int64_t Value::Int64() const {
    return std::visit(Overloaded{
                          [](std::monostate) -> std::int64_t { throw BlankError(); },
                          [](bool yes) -> std::int64_t { return yes ? 1 : 0; },
                          [](std::int64_t number) -> std::int64_t { return number; },
                          [](double number) -> std::int64_t { return RoundHalfEven(number); },
                          [](const std::string& text) -> std::int64_t { return ParseWhole(text); },
                          [](DateTime) -> std::int64_t { throw TypeMismatchError(); },
                      },
                      held_);
}

std::int16_t Value::Int16() const {
    return CheckedInt16(Int64());
}

std::int32_t Value::Int32() const {
    return CheckedInt32(Int64());
}

double Value::Double() const {
    if (const auto* number = std::get_if<double>(&held_)) return *number;
    if (const auto* text = std::get_if<std::string>(&held_)) return ParseNumber(*text);
    return static_cast<double>(Int64());
}

bool Value::Bool() const {
    return std::visit(Overloaded{
                          [](std::monostate) { return false; },
                          [](bool yes) { return yes; },
                          [](std::int64_t number) { return number != 0; },
                          [](double number) { return number != 0; },
                          [](const std::string& text) {
                              if (EqualsNoCase(text, "True") || EqualsNoCase(text, "Yes")) return true;
                              if (EqualsNoCase(text, "False") || EqualsNoCase(text, "No") || text.empty()) return false;
                              return ParseNumber(text) != 0;
                          },
                          [](DateTime) -> bool { throw TypeMismatchError(); },
                      },
                      held_);
}

DateTime Value::When() const {
    if (const auto* when = std::get_if<DateTime>(&held_)) return *when;
    if (const auto* text = std::get_if<std::string>(&held_)) return ParseDateTime(*text);
    if (IsBlank()) throw BlankError();
    throw TypeMismatchError();
}

}  // namespace korvane
