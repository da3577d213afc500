// The text of an INI file, parsed so that keys are found quickly and reassembled byte for byte: comments, empty lines, unknown
// keys, line ends and a byte order mark stay unchanged. Nothing here accesses the disk.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"

namespace korvane {

class IniDocument {
public:
    IniDocument() = default;
    explicit IniDocument(std::string_view text);

    /// Returns the value as written in the text, without spaces around it. If several sections, or several keys in a section,
    /// have the same name, the first counts. Valid until the next Set.
    std::optional<std::string_view> Find(std::string_view section, std::string_view key) const;

    /// Replaces the value; its key keeps its spelling. A new key is added to the end of its section, a new section to the end of
    /// the text. The value must be one line. Returns whether the text changed.
    bool Set(std::string_view section, std::string_view key, std::string_view value);

    /// Returns the names of all sections in order, in their original spelling.
    std::vector<std::string> SectionNames() const;

    std::string Text() const;

private:
    struct Line {
        std::string text;
        std::string end;          ///< empty (only of the last line of the text), LF or CR LF
        std::size_t valueAt = 0;  ///< offset of the value; 0: the line has no key
        std::string_view Value() const { return std::string_view(text).substr(valueAt); }
    };
    struct Section {
        std::string name;
        std::vector<Line> lines;  ///< its header first; lines before the first header form a section without one
        std::map<std::string, std::size_t, LessNoCase> lineOfKey;
    };

    void Take(std::string_view line);
    void AddKey(Section& section, std::string_view key, std::string_view value);
    void EndLine(Line& line) const;

    std::string byteOrderMark_;
    std::string lineEnd_;  ///< that of the first line that has one
    std::vector<Section> sections_;
    std::map<std::string, std::size_t, LessNoCase> sectionOfName_;
};

}  // namespace korvane
