#include "store/ini_document.h"

#include <algorithm>

namespace korvane {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// A CR here is one whose LF was cut off at the end of the file.
constexpr std::string_view kBlanks = " \t\r";

std::string_view TrimView(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Returns the name in "[name]" and ignores text after the bracket. An incomplete header is not a header.
std::optional<std::string_view> HeaderName(std::string_view line) {
    const auto close = line.find(']');
    if (!line.starts_with('[') || close == std::string_view::npos) return std::nullopt;
    return TrimView(line.substr(1, close - 1));
}

}  // namespace

IniDocument::IniDocument(std::string_view text) {
    if (text.starts_with(kByteOrderMark)) {
        byteOrderMark_ = kByteOrderMark;
        text.remove_prefix(kByteOrderMark.size());
    }
    while (!text.empty()) {
        const auto lineFeed = text.find('\n');
        const auto size = lineFeed == std::string_view::npos ? text.size() : lineFeed + 1;
        Take(text.substr(0, size));
        text.remove_prefix(size);
    }
}

void IniDocument::Take(std::string_view content) {
    const std::size_t endBytes = content.ends_with("\r\n") ? 2 : content.ends_with('\n') ? 1 : 0;
    std::string end(content.substr(content.size() - endBytes));
    content.remove_suffix(endBytes);
    if (lineEnd_.empty()) lineEnd_ = end;

    const std::string_view trimmed = TrimView(content);
    const auto header = HeaderName(trimmed);
    if (header) sectionOfName_.emplace(*header, sections_.size());
    if (header || sections_.empty()) sections_.push_back({std::string(header.value_or("")), {}, {}});
    Section& section = sections_.back();

    std::size_t valueAt = 0;
    const auto equals = content.find('=');
    const bool holdsKey = !header && !trimmed.starts_with(';') && !trimmed.starts_with('=') && equals != std::string_view::npos;
    if (holdsKey) {
        valueAt = std::min(content.find_first_not_of(" \t", equals + 1), content.size());
        section.lineOfKey.emplace(TrimView(content.substr(0, equals)), section.lines.size());
    }
    section.lines.push_back({std::string(content), std::move(end), valueAt});
}

std::optional<std::string_view> IniDocument::Find(std::string_view section, std::string_view key) const {
    const auto found = sectionOfName_.find(section);
    if (found == sectionOfName_.end()) return std::nullopt;
    const Section& held = sections_[found->second];
    const auto line = held.lineOfKey.find(key);
    if (line == held.lineOfKey.end()) return std::nullopt;
    return TrimView(held.lines[line->second].Value());
}

bool IniDocument::Set(std::string_view section, std::string_view key, std::string_view value) {
    if (lineEnd_.empty()) lineEnd_ = "\n";
    auto found = sectionOfName_.find(section);
    if (found == sectionOfName_.end()) {
        if (!sections_.empty()) EndLine(sections_.back().lines.back());
        Take("[" + std::string(section) + "]" + lineEnd_);
        found = sectionOfName_.find(section);
    }
    Section& held = sections_[found->second];
    const auto lineOfKey = held.lineOfKey.find(key);
    if (lineOfKey == held.lineOfKey.end()) {
        AddKey(held, key, value);
        return true;
    }
    Line& line = held.lines[lineOfKey->second];
    if (TrimView(line.Value()) == TrimView(value)) return false;
    line.text.replace(line.valueAt, std::string::npos, value);
    return true;
}

// The key goes after the last key, since comments and empty lines after it mostly belong to the next section. They contain no
// keys, so the index stays valid.
void IniDocument::AddKey(Section& section, std::string_view key, std::string_view value) {
    auto after = section.lines.end();
    const auto holdsNothing = [](const Line& line) { return TrimView(line.text).empty(); };
    const auto holdsNoKey = [&](const Line& line) { return holdsNothing(line) || TrimView(line.text).starts_with(';'); };
    while (section.lineOfKey.empty() ? holdsNothing(*(after - 1)) : holdsNoKey(*(after - 1)))
        --after;
    EndLine(*(after - 1));
    const auto added = section.lines.insert(after, {std::string(key) + "=" + std::string(value), lineEnd_, key.size() + 1});
    section.lineOfKey.emplace(key, added - section.lines.begin());
}

void IniDocument::EndLine(Line& line) const {
    if (line.end.empty()) line.end = lineEnd_;
}

std::vector<std::string> IniDocument::SectionNames() const {
    std::vector<std::string> names;
    for (const Section& section : sections_) {
        const bool hasHeader = HeaderName(TrimView(section.lines.front().text)).has_value();
        if (hasHeader) names.push_back(section.name);
    }
    return names;
}

std::string IniDocument::Text() const {
    std::string text = byteOrderMark_;
    for (const Section& section : sections_) {
        for (const Line& line : section.lines)
            text += line.text + line.end;
    }
    return text;
}

}  // namespace korvane
