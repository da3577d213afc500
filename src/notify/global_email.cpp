#include "notify/global_email.h"

#include <algorithm>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "notify/mail_message.h"

namespace korvane {
namespace {

constexpr std::string_view kToList1 = "TO_LIST1=";
constexpr std::string_view kToList2 = "TO_LIST2=";
constexpr std::string_view kFrom = "FROM=";
constexpr std::string_view kSubject = "SUBJECT=";

/// Returns the items of a text one by one. A quoted item may contain commas and line ends; text after its closing quote is a
/// separate item, unless it is empty.
class Items {
public:
    explicit Items(std::string_view text) : rest_(text) {}

    bool Next(std::string_view& item) {
        DropBlanks();
        if (rest_.empty()) return false;
        if (rest_.front() != '"') {
            item = TakeUpTo(",\r\n");
        } else {
            rest_.remove_prefix(1);
            item = TakeUpTo("\"");
            rest_.remove_prefix(std::min<std::size_t>(1, rest_.size()));
            DropBlanks();
        }
        DropDelimiter();
        return true;
    }

private:
    void DropBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size())); }

    std::string_view TakeUpTo(const char* ends) {
        const std::string_view taken = rest_.substr(0, rest_.find_first_of(ends));
        rest_.remove_prefix(taken.size());
        return taken;
    }

    void DropDelimiter() {
        const bool lineEnd = rest_.starts_with("\r\n");
        if (lineEnd || rest_.find_first_of(",\r\n") == 0) rest_.remove_prefix(lineEnd ? 2 : 1);
    }

    std::string_view rest_;
};

}  // namespace

void clsGlobalEmail::OpenFile() {
    IgnoreErrors([&] {
        const std::string contents = ToUtf8(files_.Read(path_).value_or(""));
        Items items(contents);
        for (std::string_view item; items.Next(item);)
            TakeItem(item);
    });
}

// The key may be anywhere in the item, and an item may contain several keys.
void clsGlobalEmail::TakeItem(std::string_view item) {
    const std::size_t equals = item.find('=');
    if (equals == std::string_view::npos) return;
    const std::string_view value = item.substr(equals + 1);
    const std::string folded = ToLower(item);
    const auto take = [&](std::string_view key, std::string& text) {
        if (Holds(folded, ToLower(key))) text = value;
    };
    take(kToList1, strToList1_);
    take(kToList2, strToList2_);
    take(kFrom, strFrom_);
    take(kSubject, strSubject_);
}

// A line end in one of the texts would start a new line of the file.
void clsGlobalEmail::UpdateData() {
    const auto line = [](std::string_view key, const std::string& text) {
        return std::string(key) + WithoutLineEnds(text) + "\r\n";
    };
    IgnoreErrors([&] {
        files_.Replace(path_, line(kToList1, strToList1_) + line(kToList2, strToList2_) + line(kFrom, strFrom_) +
                                  line(kSubject, strSubject_));
    });
}

}  // namespace korvane
