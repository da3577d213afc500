#include "engine/http_status.h"

#include <algorithm>

#include "base/text.h"

namespace korvane {
namespace {

bool IsStatus(std::string_view text) {
    const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    return text.size() == 3 && digits && text[0] >= '1' && text[0] <= '5';
}

}  // namespace

bool IsStatusList(std::string_view text) {
    if (TrimAll(text).empty()) return true;
    const auto parts = Split(text, ',');
    return std::all_of(parts.begin(), parts.end(), [](const std::string& part) { return IsStatus(TrimAll(part)); });
}

bool NamesStatus(std::string_view list, int status) {
    if (!IsStatusList(list)) return false;
    const auto parts = Split(list, ',');
    return std::any_of(parts.begin(), parts.end(),
                       [&](const std::string& part) { return TrimAll(part) == std::to_string(status); });
}

std::string StatusReason(int status) {
    return "The server answered with HTTP status " + std::to_string(status) + ".";
}

}  // namespace korvane
