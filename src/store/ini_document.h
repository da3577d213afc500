// The text of an INI file, taken apart so that keys are found at once and put together again byte for byte: comments, blank
// lines, keys nobody knows, line ends and a byte order mark stay as they were found. Nothing here touches the disk.
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

    /// The value as it stands in the text, without blanks around it. Of several sections of one name, or several keys of one name
    /// in a section, the first counts. Good until the next Set.
    std::optional<std::string_view> Find(std::string_view section, std::string_view key) const;

    enum class Change { None, SameLength, Moved };
    struct Result {
        Change change = Change::None;
        std::size_t offset = 0;  ///< with SameLength: where in the text the value begins
    };

    /// Puts the value in the place of the old one, whose key keeps its spelling. A new key goes to the end of its section, a new
    /// section to the end of the text. The value must be one line.
    Result Set(std::string_view section, std::string_view key, std::string_view value);

    /// The names of all sections in their order, as they are spelled.
    std::vector<std::string> SectionNames() const;

    std::string Text() const;

private:
    struct Line {
        std::string text;              ///< with its line end
        std::size_t valueAt = 0;       ///< where the value begins; 0: no key stands here
        std::size_t lineEndBytes = 0;  ///< 0 (only the last line of the text), 1 or 2
        std::string_view Value() const { return std::string_view(text).substr(valueAt, text.size() - lineEndBytes - valueAt); }
    };
    struct Section {
        std::string name;
        std::vector<Line> lines;  ///< its header first; the lines before the first header are a section without one
        std::map<std::string, std::size_t, LessNoCase> lineOfKey;
    };

    void Take(std::string_view line);
    void StartSection(std::string name);
    void AddKey(Section& section, std::string_view key, std::string_view value);
    void EndLastLine();
    std::size_t OffsetOf(const Section& section, const Line& line) const;

    std::string byteOrderMark_;
    std::string lineEnd_;  ///< of the first line that has one
    std::vector<Section> sections_;
    std::map<std::string, std::size_t, LessNoCase> sectionOfName_;
};

}  // namespace korvane
