// The columns of the main window's list: as wide as their content until the operator changes the width. Widths and the sort
// column are restored after a restart.
#pragma once

#include <QObject>
#include <QTreeView>
#include <string>
#include <vector>

#include "store/ini_file.h"

namespace korvane {

class ListColumns : public QObject {
public:
    /// `list` must outlive this and must already have its model.
    ListColumns(QTreeView& list, QObject* parent);

    /// To be called after rows were added, removed or changed. A change of the list's own width is handled automatically.
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
    std::vector<int> needs_;
    std::vector<int> fitted_;
    std::string storedWidths_;
    std::string storedOrder_;
};

}  // namespace korvane
