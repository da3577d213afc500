// The columns of the main window's list: as wide as what stands in them until the operator draws one to another width. Widths
// and the column of the order come back after a restart.
#pragma once

#include <QObject>
#include <QTreeView>
#include <string>
#include <vector>

#include "store/ini_file.h"

namespace korvane {

class ListColumns : public QObject {
public:
    /// `list` must outlive this; it has its model already.
    ListColumns(QTreeView& list, QObject* parent);

    /// After rows have come, gone or got other texts. A change of the list's own width is followed without it.
    void Fit();

    void Restore(IniFile& file);
    /// Writes only what the operator has changed.
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
