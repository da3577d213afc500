// The list of all entries for a view: thirteen columns of text with the picture of the state, sorted by the text of one column. A
// refresh identifies rows by their id, so that the selection follows its row to any place. Rows that a filter hides are kept.
#pragma once

#include <QAbstractTableModel>
#include <memory>
#include <vector>

#include "shell/list/list_filter.h"

namespace korvane {

class ServerListModel : public QAbstractTableModel {
public:
    explicit ServerListModel(QObject* parent) : QAbstractTableModel(parent) {}

    /// Replaces all rows and keeps the current order and filter.
    void SetRows(std::vector<ServerRow> rows);
    void SetFilter(ListFilter filter);
    /// DOWN first, then Failing, each with the longest first; all others in the order that sort() gives.
    void SetProblemsFirst(bool problemsFirst);

    const ServerRow& Row(int row) const { return *rows_[static_cast<std::size_t>(row)]; }
    /// Returns -1 when no row that is shown has the id.
    int RowOf(const std::string& id) const;
    /// All rows, hidden ones too, in the order in which they were set.
    const SharedRows& All() const { return all_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// Sorts by the cells' text, case-insensitively. -1: the order in which the rows were set.
    void sort(int column, Qt::SortOrder order) override;

private:
    void ShowFiltered();
    void Sort(SharedRows& rows) const;
    void RemoveGone(const SharedRows& rows);
    void Replace(SharedRows rows);

    SharedRows all_;
    SharedRows rows_;  ///< that are shown
    ListFilter filter_;
    bool problemsFirst_ = false;
    int sortColumn_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

}  // namespace korvane
