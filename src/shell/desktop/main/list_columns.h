// The columns of the main window's list: as wide as their content until the operator changes the width. Widths and the sort
// column are restored after a restart.
#pragma once

#include <QObject>
#include <QTreeView>
#include <cstddef>
#include <string>
#include <vector>

#include "shell/list/list_filter.h"
#include "store/ini_file.h"

namespace korvane {

class ListColumns : public QObject {
public:
    /// `list` must outlive this and must already have its model.
    ListColumns(QTreeView& list, QObject* parent);

    /// To be called after each refresh: fits the columns if there are more or fewer rows, or a longer text than before. A change of
    /// the list's own width is handled automatically.
    void FitTo(const SharedRows& rows);
    void Fit();

    void Restore(IniFile& file);
    /// Writes only the operator's changes.
    void Remember(IniFile& file);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int Need(int column) const;
    void Share();
    std::vector<int> Widths() const;
    bool Chosen() const { return !storedWidths_.empty() || Widths() != fitted_; }

    QTreeView& list_;
    std::vector<std::size_t> lengths_;  ///< number of rows, and the longest text of each column, when they were fitted
    std::vector<int> needs_;
    std::vector<int> fitted_;
    std::string storedWidths_;
    std::string storedOrder_;
};

}  // namespace korvane
