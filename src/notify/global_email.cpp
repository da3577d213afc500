#include "notify/global_email.h"

#include <algorithm>
#include <vector>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "notify/mail_message.h"

namespace korvane {
namespace {

// Returns the items of a text. A quoted item may contain commas and line ends; text after its closing quote is a separate item,
// unless it is empty.
std::vector<std::string_view> ItemsOf(std::string_view rest) {
    std::vector<std::string_view> items;
    const auto drop = [&](std::size_t count) { rest.remove_prefix(std::min(count, rest.size())); };
    const auto dropBlanks = [&] { drop(rest.find_first_not_of(" \t")); };
    const auto takeUpTo = [&](const char* ends) {
        items.push_back(rest.substr(0, rest.find_first_of(ends)));
        drop(items.back().size());
    };
    for (dropBlanks(); !rest.empty(); dropBlanks()) {
        if (rest.front() == '"') {
            drop(1);
            takeUpTo("\"");
            drop(1);
            dropBlanks();
        } else {
            takeUpTo(",\r\n");
        }
        if (rest.find_first_of(",\r\n") == 0) drop(rest.starts_with("\r\n") ? 2 : 1);
    }
    return items;
}

}  // namespace

const clsGlobalEmail::Line clsGlobalEmail::kLines[] = {{"TO_LIST1=", &clsGlobalEmail::strToList1_},
                                                       {"TO_LIST2=", &clsGlobalEmail::strToList2_},
                                                       {"FROM=", &clsGlobalEmail::strFrom_},
                                                       {"SUBJECT=", &clsGlobalEmail::strSubject_}};

void clsGlobalEmail::OpenFile() {
    IgnoreErrors([&] {
        const std::string contents = ToUtf8(files_.Read(path_).value_or(""));
        for (const std::string_view item : ItemsOf(contents))
            TakeItem(item);
    });
}

// The key may be anywhere in the item, and an item may contain several keys.
void clsGlobalEmail::TakeItem(std::string_view item) {
    const std::size_t equals = item.find('=');
    if (equals == std::string_view::npos) return;
    const std::string folded = ToLower(item);
    for (const Line& line : kLines) {
        if (Holds(folded, ToLower(line.key))) this->*line.text = item.substr(equals + 1);
    }
}

// A line end in one of the texts would start a new line of the file.
void clsGlobalEmail::UpdateData() {
    std::string contents;
    for (const Line& line : kLines)
        contents += std::string(line.key) + WithoutLineEnds(this->*line.text) + "\r\n";
    IgnoreErrors([&] { files_.Replace(path_, contents); });
}

}  // namespace korvane
