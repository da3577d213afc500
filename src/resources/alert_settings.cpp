#include "resources/alert_settings.h"

#include <algorithm>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "notify/mail_message.h"

namespace korvane {
namespace {

// Any of the three common line ends.
std::string_view TakeFirstLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(line.size());
    text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<std::size_t>(1, text.size()));
    return line;
}

}  // namespace

AlertSettings::AlertSettings(Files& files, const std::string& dir, std::string_view file,
                             std::initializer_list<std::string_view> keys)
    : files_(files), path_(dir + "/" + std::string(file)) {
    for (const std::string_view key : keys)
        values_.emplace_back(key, "");
}

void AlertSettings::OpenFile() {
    IgnoreErrors([&] {
        const std::string contents = ToUtf8(files_.Read(path_).value_or(""));
        for (std::string_view rest = contents; !rest.empty();)
            TakeLine(TakeFirstLine(rest));
    });
}

void AlertSettings::TakeLine(std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return;
    const std::string_view value = line.substr(equals + 1);
    const auto named = std::find_if(values_.begin(), values_.end(), [line](const auto& one) { return Holds(line, one.first); });
    if (named == values_.end()) {
        TakeOther(line, value);
    } else {
        named->second = value;
    }
}

void AlertSettings::UpdateData() {
    std::vector<std::string> lines;
    for (const auto& [key, value] : values_)
        lines.push_back(std::string(key) + value);
    const std::vector<std::string> others = OtherLines();
    lines.insert(lines.end(), others.begin(), others.end());
    std::string text;
    for (const std::string& line : lines)
        text += WithoutLineEnds(line) + "\r\n";  // a line end in a value would start a new line
    IgnoreErrors([&] { files_.Replace(path_, text); });
}

std::size_t AlertSettings::IndexOf(std::string_view key) const {
    const auto found = std::find_if(values_.begin(), values_.end(), [key](const auto& one) { return one.first == key; });
    return static_cast<std::size_t>(found - values_.begin());
}

}  // namespace korvane
