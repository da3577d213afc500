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
    WebPages* pages_ = nullptr;
    QLineEdit* txtURL_ = nullptr;
};

/// The single window of this kind, for the commands that open a page. SetParent sets the window over which Show puts it;
/// when that is destroyed, this window is too.
class HelpViewer : public ModelessForm<frmHelp> {
public:
    explicit HelpViewer(WebPages& pages) : pages_(pages) {}

    /// Brings it to the front and makes it open the help address.
    void Show();

private:
    WebPages& pages_;
};

}  // namespace korvane
