#include "shell/list/list_filter.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace korvane {
namespace {

/// In the order of kRowStates.
constexpr std::array<std::string_view, kRowStates.size()> kStateWords{"Down", "Failing", "Up", "Down-Time", "Inactive"};

/// What is searched. The status of a row that is being requested hides its state, so that is searched too.
constexpr column::Column kSearched[] = {column::ShortName, column::FullName, column::Group,
                                        column::Type,      column::Status,   column::LastResponse};

constexpr std::string_view kBlanks = " \t\r\n\v\f";

/// Capital letters: every `step`th from `first` to `last`; their small letters are `shift` further on.
struct Capitals {
    char32_t first, last;
    int step, shift;
};

constexpr Capitals kCapitals[] = {
    {0xC0, 0xD6, 1, 32},   {0xD8, 0xDE, 1, 32},     {0x100, 0x12E, 2, 1},       {0x132, 0x136, 2, 1},   {0x139, 0x147, 2, 1},
    {0x14A, 0x176, 2, 1},  {0x178, 0x178, 1, -121}, {0x179, 0x17D, 2, 1},       {0x1CD, 0x1DB, 2, 1},   {0x1DE, 0x1EE, 2, 1},
    {0x1F8, 0x21E, 2, 1},  {0x222, 0x232, 2, 1},    {0x386, 0x386, 1, 38},      {0x388, 0x38A, 1, 37},  {0x38C, 0x38C, 1, 64},
    {0x38E, 0x38F, 1, 63}, {0x391, 0x3A1, 1, 32},   {0x3A3, 0x3AB, 1, 32},      {0x3C2, 0x3C2, 1, 1},   {0x400, 0x40F, 1, 80},
    {0x410, 0x42F, 1, 32}, {0x460, 0x480, 2, 1},    {0x48A, 0x4BE, 2, 1},       {0x4C1, 0x4CD, 2, 1},   {0x4D0, 0x52E, 2, 1},
    {0x531, 0x556, 1, 48}, {0x1E00, 0x1E94, 2, 1},  {0x1E9E, 0x1E9E, 1, -7615}, {0x1EA0, 0x1EFE, 2, 1}, {0xFF21, 0xFF3A, 1, 32},
};

char32_t Small(char32_t letter) {
    for (const auto& [first, last, step, shift] : kCapitals) {
        if (letter < first || letter > last || (letter - first) % static_cast<char32_t>(step) != 0) continue;
        return static_cast<char32_t>(static_cast<std::int64_t>(letter) + shift);
    }
    return letter;
}

char Byte(char32_t bits) {
    return static_cast<char>(static_cast<unsigned char>(bits));
}

/// Returns the bits that a byte of a longer character adds.
char32_t Bits(char byte, unsigned mask) {
    return static_cast<unsigned char>(byte) & mask;
}

/// Two or three bytes of UTF-8; every alphabet with small letters is there.
void AppendLetter(std::string& text, char32_t letter) {
    if (letter < 0x800) {
        text += {Byte(0xC0 | letter >> 6), Byte(0x80 | (letter & 0x3F))};
    } else {
        text += {Byte(0xE0 | letter >> 12), Byte(0x80 | (letter >> 6 & 0x3F)), Byte(0x80 | (letter & 0x3F))};
    }
}

std::vector<std::string> WordsOf(std::string_view text) {
    std::set<std::string> words;
    for (std::size_t at = 0; (at = text.find_first_not_of(kBlanks, at)) != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(kBlanks, at), text.size());
        words.insert(FoldCase(text.substr(at, end - at)));
        at = end;
    }
    std::vector<std::string> longestFirst(words.begin(), words.end());
    std::stable_sort(longestFirst.begin(), longestFirst.end(), [](const auto& a, const auto& b) { return a.size() > b.size(); });
    return longestFirst;
}

std::string SearchedText(const ServerRow& row) {
    std::string text = row.strCurStatus;
    for (const column::Column column : kSearched)
        text += "\n" + row.cells[column];
    return FoldCase(text);
}

bool HoldsAll(const std::string& text, const std::vector<std::string>& words) {
    return std::all_of(words.begin(), words.end(), [&](const auto& word) { return text.find(word) != std::string::npos; });
}

std::size_t PlaceOf(RowIcon state) {
    return static_cast<std::size_t>(std::find(kRowStates.begin(), kRowStates.end(), state) - kRowStates.begin());
}

}  // namespace

std::string_view StateWord(RowIcon state) {
    return kStateWords.at(PlaceOf(state));
}

StateCounts CountStates(const SharedRows& rows) {
    StateCounts counts{};
    for (const auto& row : rows)
        ++counts.at(PlaceOf(StateOf(row->strCurStatus)));
    return counts;
}

bool ListFilter::IsOn() const {
    return !states.empty() || text.find_first_not_of(kBlanks) != std::string::npos;
}

SharedRows Filtered(const SharedRows& rows, const ListFilter& filter) {
    const std::vector<std::string> words = WordsOf(filter.text);
    SharedRows shown;
    shown.reserve(rows.size());
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(shown), [&](const auto& row) {
        return (filter.states.empty() || filter.states.contains(StateOf(row->strCurStatus))) &&
               (words.empty() || HoldsAll(SearchedText(*row), words));
    });
    return shown;
}

void PutProblemsFirst(SharedRows& rows) {
    const auto isLonger = [](const auto& a, const auto& b) { return a->since && (!b->since || *a->since < *b->since); };
    auto rest = rows.begin();
    for (const RowIcon state : {RowIcon::Bad, RowIcon::Warn}) {
        const auto first = rest;
        rest = std::stable_partition(rest, rows.end(), [&](const auto& row) { return StateOf(row->strCurStatus) == state; });
        std::stable_sort(first, rest, isLonger);
    }
}

std::string FoldCase(std::string_view text) {
    std::string folded;
    folded.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto lead = static_cast<unsigned char>(text[at]);
        if (lead >= 0xC3 && lead < 0xE0 && at + 1 < text.size()) {
            AppendLetter(folded, Small(Bits(text[at], 0x1F) << 6 | Bits(text[at + 1], 0x3F)));
            at += 1;
        } else if ((lead == 0xE1 || lead == 0xEF) && at + 2 < text.size()) {
            AppendLetter(folded, Small(Bits(text[at], 0x0F) << 12 | Bits(text[at + 1], 0x3F) << 6 | Bits(text[at + 2], 0x3F)));
            at += 2;
        } else {
            folded += text[at] >= 'A' && text[at] <= 'Z' ? static_cast<char>(text[at] - 'A' + 'a') : text[at];
        }
    }
    return folded;
}

}  // namespace korvane
