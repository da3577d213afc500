// The window that opens a page of the website in the operator's browser. It shows the address, so that it can be copied if no
// browser opens it.
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

    /// Shows the help address of `pages`, which must outlive this, and opens it. The operator is notified of errors.
    void Form_Load(WebPages& pages);

private:
    QWidget* Buttons();
    void cmdOpen_Click();
    void cmdCopy_Click();

    WebPages* pages_ = nullptr;
    QLineEdit* txtURL_ = nullptr;
};

/// The single window of this kind, for the commands that open a page.
class HelpViewer {
public:
    explicit HelpViewer(WebPages& pages) : pages_(pages) {}

    /// Sets the window over which Show puts it. When that is destroyed, this window is too.
    void SetParent(QWidget* parent) { form_.SetParent(parent); }
    /// Brings it to the front and makes it open the help address.
    void Show();
    /// Returns null when it is not open.
    frmHelp* TheForm() const { return form_.TheForm(); }

private:
    WebPages& pages_;
    ModelessForm<frmHelp> form_;
};

}  // namespace korvane
