#include "shell/entry/entry_name.h"

#include <cstdint>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kSchemes[] = {"http://", "https://", "ftp://"};

// Case-insensitive: people type "Http://" where the keyboard capitalises.
std::string WithoutAnyCase(std::string text, std::string_view part) {
    for (auto at = ToLower(text).find(part); at != std::string::npos; at = ToLower(text).find(part))
        text.erase(at, part.size());
    return text;
}

}  // namespace

std::string CleanTypedName(const std::string& typed) {
    std::string name = typed;
    if (BeginsWithScheme(ToLower(Left(typed, 4)))) {
        for (const std::string_view scheme : kSchemes)
            name = WithoutAnyCase(std::move(name), scheme);
    }
    return Trim(name);
}

bool BeginsWithScheme(const std::string& name) {
    return name.starts_with("http") || name.starts_with("ftp:");
}

std::string WithoutSchemes(std::string name) {
    for (const std::string_view scheme : kSchemes)
        name = ReplaceAll(name, scheme, "");
    return name;
}

std::optional<std::string> MendedTimeout(const std::string& typed) {
    std::int64_t seconds = 0;
    IgnoreErrors([&] { seconds = ParseWhole(typed); });
    if (seconds >= 1) return std::nullopt;
    return "1";
}

}  // namespace korvane
