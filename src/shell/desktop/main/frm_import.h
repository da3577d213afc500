// What an import of entries would change, before it is done.
#pragma once

#include <functional>

#include "shell/desktop/toolkit/tabbed_dialog.h"
#include "shell/list/entry_csv.h"

class QTreeWidget;

namespace korvane {

/// Shown with open(); deleted when it is closed.
class frmImport : public FormDialog {
public:
    /// `accepted` is called when the operator wants the import; that is only possible if the plan allows it.
    frmImport(const ImportPlan& plan, const QString& file, std::function<void()> accepted, QWidget* parent);

private:
    QTreeWidget* Rows(const ImportPlan& plan);
};

}  // namespace korvane
