// The list of all entries for a view: thirteen columns of text with the picture of the state, sorted by the text of one column. A
// refresh identifies rows by their id, so that the selection follows its row to any place.
#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "shell/list/server_list.h"

namespace korvane {

class ServerListModel : public QAbstractTableModel {
public:
    explicit ServerListModel(QObject* parent) : QAbstractTableModel(parent) {}

    /// Replaces all rows and keeps the current order.
    void SetRows(std::vector<ServerRow> rows);
    const ServerRow& Row(int row) const { return rows_[static_cast<std::size_t>(row)]; }
    /// Returns -1 when no row has the id.
    int RowOf(const std::string& id) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// Sorts by the cells' text, case-insensitively. -1: the order in which the rows were set.
    void sort(int column, Qt::SortOrder order) override;

private:
    void Sort(std::vector<ServerRow>& rows) const;
    void RemoveGone(const std::vector<ServerRow>& rows);
    void Replace(std::vector<ServerRow> rows);

    std::vector<ServerRow> rows_;
    int sortColumn_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

}  // namespace korvane
