// The window that opens a page of the website in the operator's browser. It shows the address, so that it can be copied
// where no browser opens it.
#pragma once

#include <QDialog>

#include "shell/desktop/toolkit/modeless_form.h"
#include "shell/web/web_pages.h"

class QLineEdit;

namespace korvane {

/// Deleted when it is closed.
class frmHelp : public QDialog {
public:
    explicit frmHelp(QWidget* parent);

    /// Shows the help address of `pages`, which must outlive this, and opens it. The operator is told what went wrong.
    void Form_Load(WebPages& pages);

private:
    QWidget* Buttons();
    void cmdOpen_Click();
    void cmdCopy_Click();

    WebPages* pages_ = nullptr;
    QLineEdit* txtURL_ = nullptr;
};

/// The one window of its kind, for the commands that lead to a page.
class HelpViewer {
public:
    explicit HelpViewer(WebPages& pages) : pages_(pages) {}

    /// The window over which Show puts it. When that goes, this window goes with it.
    void SetParent(QWidget* parent) { form_.SetParent(parent); }
    /// Brings it to the front and has it open the help address.
    void Show();
    /// Null when it is not open.
    frmHelp* TheForm() const { return form_.TheForm(); }

private:
    WebPages& pages_;
    ModelessForm<frmHelp> form_;
};

}  // namespace korvane
