#include "shell/desktop/main/server_list_model.h"

#include <QIcon>
#include <algorithm>
#include <unordered_map>

#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {
namespace {

using Ids = std::unordered_map<std::string, int>;

Ids RowsById(const std::vector<ServerRow>& rows) {
    Ids ids;
    ids.reserve(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        ids.emplace(rows[i].Id(), static_cast<int>(i));
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

}  // namespace

void ServerListModel::SetRows(std::vector<ServerRow> rows) {
    Sort(rows);
    RemoveGone(rows);
    const int more = static_cast<int>(rows.size()) - rowCount();
    if (more > 0) {
        // The following change of order announces which row is where.
        beginInsertRows({}, rowCount(), rowCount() + more - 1);
        rows_.resize(rows.size());
        endInsertRows();
    }
    Replace(std::move(rows));
}

void ServerListModel::RemoveGone(const std::vector<ServerRow>& rows) {
    const Ids stays = RowsById(rows);
    for (int i = rowCount() - 1; i >= 0; --i) {
        if (stays.contains(Row(i).Id())) continue;
        beginRemoveRows({}, i, i);
        rows_.erase(rows_.begin() + i);
        endRemoveRows();
    }
}

void ServerListModel::Replace(std::vector<ServerRow> rows) {
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

void ServerListModel::Sort(std::vector<ServerRow>& rows) const {
    if (sortColumn_ < 0) return;
    const auto column = static_cast<std::size_t>(sortColumn_);
    const bool descending = sortOrder_ == Qt::DescendingOrder;
    std::stable_sort(rows.begin(), rows.end(), [&](const ServerRow& a, const ServerRow& b) {
        return descending ? ComesBefore(b.cells[column], a.cells[column]) : ComesBefore(a.cells[column], b.cells[column]);
    });
}

void ServerListModel::sort(int column, Qt::SortOrder order) {
    sortColumn_ = column;
    sortOrder_ = order;
    std::vector<ServerRow> rows = rows_;
    Sort(rows);
    Replace(std::move(rows));
}

int ServerListModel::RowOf(const std::string& id) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const ServerRow& row) { return row.Id() == id; });
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
        case Qt::AccessibleTextRole:
            return index.column() == column::Number ? Q(row.Name() + ", " + row.cells[column::Status]) : Q(cell);
        default:
            return {};
    }
}

QVariant ServerListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return QAbstractTableModel::headerData(section, orientation, role);
    return Q(ColumnHead(section));
}

}  // namespace korvane
