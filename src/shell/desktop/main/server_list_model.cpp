#include "shell/desktop/main/server_list_model.h"

#include <QApplication>
#include <QIcon>
#include <algorithm>
#include <unordered_map>

#include "shell/desktop/glance/state_colours.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/form_inputs.h"

namespace korvane {
namespace {

using Ids = std::unordered_map<std::string, int>;

Ids RowsById(const SharedRows& rows) {
    Ids ids;
    ids.reserve(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        ids.emplace(rows[i]->Id(), static_cast<int>(i));
    return ids;
}

// Most cells are plain ASCII letters and digits, for which no string is created.
char Folded(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool ComesBefore(const std::string& a, const std::string& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<unsigned char>(Folded(x)) < static_cast<unsigned char>(Folded(y));
    });
}

// Returns the cell in one line, otherwise unchanged, including spaces.
QString InOneLine(const std::string& cell) {
    return Lines(cell).replace('\n', ' ').replace('\r', ' ').replace('\t', ' ');
}

// A server's text is escaped, since a tool tip would interpret tags in it and load what they name.
QVariant TipOf(const std::string& cell) {
    if (cell.empty()) return {};
    return "<p style='white-space:pre-wrap'>" + Lines(cell).toHtmlEscaped() + "</p>";
}

/// Columns of numbers, aligned at the right.
constexpr int kNumbers[] = {column::Number, column::ServerID, column::Interval, column::Average, column::Port};

QVariant AlignmentOf(int column) {
    const bool isNumber = std::find(std::begin(kNumbers), std::end(kNumbers), column) != std::end(kNumbers);
    return QVariant::fromValue(Qt::AlignVCenter | (isNumber ? Qt::AlignRight : Qt::AlignLeft));
}

bool IsProblem(const ServerRow& row) {
    const RowIcon state = StateOf(row.strCurStatus);
    return state == RowIcon::Bad || state == RowIcon::Warn;
}

/// The colour of the status: red when it warns, in a red that is readable on the ground of its row.
QVariant InkOf(const ServerRow& row) {
    const QPalette palette = QApplication::palette();
    if (!IsProblem(row)) return row.warns ? QVariant(MarkColour(palette)) : QVariant();
    return ColoursOf(row.warns ? RowIcon::Bad : StateOf(row.strCurStatus), palette).ink;
}

QFont Bold() {
    QFont font = QApplication::font("QAbstractItemView");
    font.setBold(true);
    return font;
}

}  // namespace

void ServerListModel::SetRows(std::vector<ServerRow> rows) {
    all_.clear();
    for (ServerRow& row : rows)
        all_.push_back(std::make_shared<const ServerRow>(std::move(row)));
    ShowFiltered();
}

void ServerListModel::SetFilter(ListFilter filter) {
    filter_ = std::move(filter);
    ShowFiltered();
}

void ServerListModel::SetProblemsFirst(bool problemsFirst) {
    problemsFirst_ = problemsFirst;
    ShowFiltered();
}

void ServerListModel::ShowFiltered() {
    SharedRows rows = Filtered(all_, filter_);
    Sort(rows);
    RemoveGone(rows);
    const int more = static_cast<int>(rows.size()) - rowCount();
    if (more > 0) {
        // The following change of order announces which row is where.
        beginInsertRows({}, rowCount(), rowCount() + more - 1);
        rows_.resize(rows.size(), std::make_shared<const ServerRow>());
        endInsertRows();
    }
    Replace(std::move(rows));
}

// Each run of rows goes at once.
void ServerListModel::RemoveGone(const SharedRows& rows) {
    const Ids stays = RowsById(rows);
    for (int last = rowCount() - 1; last >= 0; --last) {
        int first = last + 1;
        while (first > 0 && !stays.contains(Row(first - 1).Id()))
            --first;
        if (first > last) continue;
        beginRemoveRows({}, first, last);
        rows_.erase(rows_.begin() + first, rows_.begin() + last + 1);
        endRemoveRows();
        last = first;
    }
}

void ServerListModel::Replace(SharedRows rows) {
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const Ids now = RowsById(rows);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex& index : before) {
        const auto found = now.find(Row(index.row()).Id());
        after.append(found == now.end() ? QModelIndex() : this->index(found->second, index.column()));
    }
    rows_ = std::move(rows);
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
}

void ServerListModel::Sort(SharedRows& rows) const {
    const auto column = static_cast<std::size_t>(sortColumn_);
    const bool descending = sortOrder_ == Qt::DescendingOrder;
    const auto comesBefore = [&](const auto& a, const auto& b) {
        return descending ? ComesBefore(b->cells[column], a->cells[column]) : ComesBefore(a->cells[column], b->cells[column]);
    };
    if (sortColumn_ >= 0) std::stable_sort(rows.begin(), rows.end(), comesBefore);
    if (problemsFirst_) PutProblemsFirst(rows);
}

void ServerListModel::sort(int column, Qt::SortOrder order) {
    sortColumn_ = column;
    sortOrder_ = order;
    SharedRows rows = rows_;
    Sort(rows);
    Replace(std::move(rows));
}

int ServerListModel::RowOf(const std::string& id) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const auto& row) { return row->Id() == id; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

int ServerListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ServerListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : column::Count;
}

QVariant ServerListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const ServerRow& row = Row(index.row());
    const std::string& cell = row.cells[static_cast<std::size_t>(index.column())];
    switch (role) {
        case Qt::DisplayRole:
            return InOneLine(cell);
        case Qt::ToolTipRole:
            return TipOf(cell);
        case Qt::DecorationRole:
            return index.column() == column::Number ? QVariant(StateIcon(row.icon)) : QVariant();
        case Qt::ForegroundRole:
            return index.column() == column::Status ? InkOf(row) : QVariant();
        case Qt::BackgroundRole:
            return IsProblem(row) ? QVariant(ColoursOf(StateOf(row.strCurStatus), QApplication::palette()).ground) : QVariant();
        case Qt::FontRole:
            return index.column() == column::Status && IsProblem(row) ? QVariant(Bold()) : QVariant();
        case Qt::TextAlignmentRole:
            return AlignmentOf(index.column());
        case Qt::AccessibleTextRole:
            return index.column() == column::Number ? Q(row.Name() + ", " + row.cells[column::Status]) : Q(cell);
        default:
            return {};
    }
}

QVariant ServerListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole) return AlignmentOf(section);
    if (orientation != Qt::Horizontal || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return QAbstractTableModel::headerData(section, orientation, role);
    return Q(ColumnHead(section));
}

}  // namespace korvane
