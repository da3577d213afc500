// The list of all entries for a view: thirteen columns of text with the picture of the state, sorted by the text of one column. A
// refresh keeps rows apart by their id, so that what is selected stays selected wherever it moves to.
#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <vector>

#include "shell/list/server_list.h"

namespace korvane {

class ServerListModel : public QAbstractTableModel {
public:
    explicit ServerListModel(QObject* parent) : QAbstractTableModel(parent) {}

    /// Takes the place of all rows and sorts them as those before.
    void SetRows(std::vector<ServerRow> rows);
    const ServerRow& Row(int row) const { return rows_[static_cast<std::size_t>(row)]; }
    /// -1 when no row has the id.
    int RowOf(const std::string& id) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// By the cells' text, as people write it: upper and lower case alike. -1: the order of the rows as they were set.
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
