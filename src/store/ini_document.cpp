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

std::size_t LineEndBytes(std::string_view line) {
    if (line.ends_with("\r\n")) return 2;
    return line.ends_with('\n') ? 1 : 0;
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

void IniDocument::Take(std::string_view line) {
    const std::size_t lineEndBytes = LineEndBytes(line);
    if (lineEnd_.empty()) lineEnd_ = line.substr(line.size() - lineEndBytes);
    const std::string_view content = line.substr(0, line.size() - lineEndBytes);

    const std::string_view trimmed = TrimView(content);
    const auto header = HeaderName(trimmed);
    if (header) StartSection(std::string(*header));
    if (sections_.empty()) sections_.emplace_back();
    Section& section = sections_.back();

    std::size_t valueAt = 0;
    const auto equals = content.find('=');
    const bool holdsKey = !header && !trimmed.starts_with(';') && !trimmed.starts_with('=') && equals != std::string_view::npos;
    if (holdsKey) {
        valueAt = std::min(content.find_first_not_of(" \t", equals + 1), content.size());
        section.lineOfKey.emplace(TrimView(content.substr(0, equals)), section.lines.size());
    }
    section.lines.push_back({std::string(line), valueAt, lineEndBytes});
}

void IniDocument::StartSection(std::string name) {
    sectionOfName_.emplace(name, sections_.size());
    sections_.push_back({std::move(name), {}, {}});
}

std::optional<std::string_view> IniDocument::Find(std::string_view section, std::string_view key) const {
    const auto found = sectionOfName_.find(section);
    if (found == sectionOfName_.end()) return std::nullopt;
    const Section& held = sections_[found->second];
    const auto line = held.lineOfKey.find(key);
    if (line == held.lineOfKey.end()) return std::nullopt;
    return TrimView(held.lines[line->second].Value());
}

IniDocument::Result IniDocument::Set(std::string_view section, std::string_view key, std::string_view value) {
    if (lineEnd_.empty()) lineEnd_ = "\n";
    auto found = sectionOfName_.find(section);
    if (found == sectionOfName_.end()) {
        EndLastLine();
        Take("[" + std::string(section) + "]" + lineEnd_);
        found = sectionOfName_.find(section);
    }
    Section& held = sections_[found->second];
    const auto lineOfKey = held.lineOfKey.find(key);
    if (lineOfKey == held.lineOfKey.end()) {
        AddKey(held, key, value);
        return {Change::Moved};
    }

    Line& line = held.lines[lineOfKey->second];
    const std::size_t oldSize = line.Value().size();
    if (TrimView(line.Value()) == TrimView(value)) return {Change::None};
    line.text.replace(line.valueAt, oldSize, value);
    if (oldSize != value.size()) return {Change::Moved};
    return {Change::SameLength, OffsetOf(held, line) + line.valueAt};
}

// The key goes after the last key, since comments and empty lines after it mostly belong to the next section. They contain no
// keys, so the index stays valid.
void IniDocument::AddKey(Section& section, std::string_view key, std::string_view value) {
    auto after = section.lines.end();
    const auto holdsNothing = [](const Line& line) { return TrimAll(line.text).empty(); };
    const auto holdsNoKey = [&](const Line& line) { return holdsNothing(line) || TrimAll(line.text).starts_with(';'); };
    while (section.lineOfKey.empty() ? holdsNothing(*(after - 1)) : holdsNoKey(*(after - 1)))
        --after;
    Line& last = *(after - 1);
    if (last.lineEndBytes == 0) {
        last.text += lineEnd_;
        last.lineEndBytes = lineEnd_.size();
    }
    const auto added =
        section.lines.insert(after, {std::string(key) + "=" + std::string(value) + lineEnd_, key.size() + 1, lineEnd_.size()});
    section.lineOfKey.emplace(key, added - section.lines.begin());
}

void IniDocument::EndLastLine() {
    if (sections_.empty()) return;
    Line& last = sections_.back().lines.back();
    if (last.lineEndBytes > 0) return;
    last.text += lineEnd_;
    last.lineEndBytes = lineEnd_.size();
}

std::size_t IniDocument::OffsetOf(const Section& section, const Line& line) const {
    std::size_t offset = byteOrderMark_.size();
    for (const Section& each : sections_) {
        for (const Line& before : each.lines) {
            if (&each == &section && &before == &line) return offset;
            offset += before.text.size();
        }
    }
    return offset;
}

std::vector<std::string> IniDocument::SectionNames() const {
    std::vector<std::string> names;
    for (const Section& section : sections_) {
        const bool hasHeader = HeaderName(TrimAll(section.lines.front().text)).has_value();
        if (hasHeader) names.push_back(section.name);
    }
    return names;
}

std::string IniDocument::Text() const {
    std::string text = byteOrderMark_;
    for (const Section& section : sections_) {
        for (const Line& line : section.lines)
            text += line.text;
    }
    return text;
}

}  // namespace korvane
