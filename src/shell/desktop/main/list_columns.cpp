#include "shell/desktop/main/list_columns.h"

#include <QEvent>
#include <QHeaderView>
#include <QStyle>
#include <algorithm>
#include <string_view>
#include <utility>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "shell/desktop/look/theme.h"

namespace korvane {
namespace {

constexpr std::string_view kWindowSection = "Window";
constexpr std::string_view kWidthsKey = "ListColumns";
constexpr std::string_view kOrderKey = "ListOrder";
constexpr int kWidest = 2000;

/// Space reserved in columns whose text changes by itself, so that they seldom grow later.
constexpr const char* kUsualTexts[column::Count] = {"", "", "", "Failing 10 of 10", "59.99 min.", "", "1,234.57 sec.", "", "", "",
                                                    "", "", ""};

/// The texts to scan for are often long and seldom looked at.
constexpr int kMostScanCharacters = 12;
/// The operator's texts share the space that the other columns leave.
constexpr int kSharing[] = {column::Group, column::ScanText, column::ShortName, column::FullName};
constexpr int kLeastCharacters = 9;
/// Of the last column, which gets the remaining width.
constexpr int kReasonCharacters = 24;

std::string Joined(const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers)
        text += (text.empty() ? "" : ",") + std::to_string(number);
    return text;
}

/// Texts that fit into the reserved space do not count, since they change all the time; nor those that fit as `before`.
std::vector<std::size_t> LengthsOf(const SharedRows& rows, const std::vector<std::size_t>& before) {
    std::vector<std::size_t> lengths{rows.size()};
    for (std::size_t column = 0; column < column::LastResponse; ++column) {
        const std::size_t reserved = std::string_view(kUsualTexts[column]).size();
        const bool isKept = reserved > 0 && !before.empty() && before.front() == rows.size();
        lengths.push_back(isKept ? before[column + 1] : reserved);
        for (const auto& row : rows)
            lengths.back() = std::max(lengths.back(), row->cells[column].size());
    }
    return lengths;
}

/// Returns the whole numbers between commas; empty unless there are `count` of them.
std::vector<int> Numbers(const std::string& text, std::size_t count) {
    std::vector<int> numbers;
    IgnoreErrors([&] {
        for (const std::string& number : Split(text, ','))
            numbers.push_back(CheckedInt32(ParseWhole(number)));
    });
    return numbers.size() == count ? numbers : std::vector<int>();
}

void WriteChanged(IniFile& file, std::string_view key, std::string& stored, const std::string& text) {
    if (text == stored) return;
    stored = text;
    file.Write(kWindowSection, key, text);
}

}  // namespace

ListColumns::ListColumns(QTreeView& list, QObject* parent) : QObject(parent), list_(list), fitted_(Widths()) {
    list_.viewport()->installEventFilter(this);
    Fit();
}

bool ListColumns::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) Share();
    return QObject::eventFilter(watched, event);
}

int ListColumns::Need(int column) const {
    QFont boldFont = list_.font();
    boldFont.setBold(true);
    const QFontMetrics bold(boldFont);
    const int margin = list_.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &list_) + 1;
    const int usual = (column == column::Status ? bold : list_.fontMetrics()).horizontalAdvance(kUsualTexts[column]) + 2 * margin;
    int content = static_cast<const QAbstractItemView&>(list_).sizeHintForColumn(column);
    if (column == column::ScanText) content = std::min(content, kMostScanCharacters * list_.fontMetrics().averageCharWidth());
    return std::max({usual, content, list_.header()->sectionSizeHint(column) + SpaceAfterNumber(list_.fontMetrics())});
}

void ListColumns::FitTo(const SharedRows& rows) {
    std::vector<std::size_t> lengths = LengthsOf(rows, lengths_);
    if (lengths == lengths_) return;
    lengths_ = std::move(lengths);
    Fit();
}

void ListColumns::Fit() {
    needs_.clear();
    for (int column = 0; column < column::LastResponse; ++column)
        needs_.push_back(Need(column));
    Share();
}

void ListColumns::Share() {
    if (Chosen()) return;
    const int character = list_.fontMetrics().averageCharWidth();
    int room = list_.viewport()->width() - kReasonCharacters * character;
    std::vector<std::pair<int, int>> sharing;  // required width and column
    for (int column = 0; column < column::LastResponse; ++column) {
        const int need = needs_[static_cast<std::size_t>(column)];
        if (std::find(std::begin(kSharing), std::end(kSharing), column) != std::end(kSharing)) {
            sharing.emplace_back(need, column);
        } else {
            list_.setColumnWidth(column, need);
            room -= need;
        }
    }
    // Columns that need less than an equal share leave the rest to the others.
    std::sort(sharing.begin(), sharing.end());
    for (auto left = static_cast<int>(sharing.size()); const auto& [need, column] : sharing) {
        const int width = std::clamp(room / left--, kLeastCharacters * character, std::max(need, kLeastCharacters * character));
        list_.setColumnWidth(column, width);
        room -= width;
    }
    fitted_ = Widths();
}

std::vector<int> ListColumns::Widths() const {
    std::vector<int> widths;
    for (int column = 0; column < column::LastResponse; ++column)
        widths.push_back(list_.columnWidth(column));
    return widths;
}

void ListColumns::Restore(IniFile& file) {
    storedWidths_ = file.Read(kWindowSection, kWidthsKey, "");
    const std::vector<int> widths = Numbers(storedWidths_, column::Count);
    if (widths.empty()) storedWidths_.clear();
    for (int column = 0; const int width : widths)
        list_.setColumnWidth(column++, std::clamp(width, list_.header()->minimumSectionSize(), kWidest));
    storedOrder_ = file.Read(kWindowSection, kOrderKey, "");
    const std::vector<int> order = Numbers(storedOrder_, 2);
    if (order.empty() || order[0] < 0 || order[0] >= column::Count) return;
    list_.sortByColumn(order[0], order[1] == Qt::DescendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void ListColumns::Remember(IniFile& file) {
    const QHeaderView& header = *list_.header();
    if (header.sortIndicatorSection() >= 0)
        WriteChanged(file, kOrderKey, storedOrder_, Joined({header.sortIndicatorSection(), header.sortIndicatorOrder()}));
    if (!Chosen()) return;
    std::vector<int> widths = Widths();
    widths.push_back(list_.columnWidth(column::LastResponse));
    WriteChanged(file, kWidthsKey, storedWidths_, Joined(widths));
}

}  // namespace korvane
