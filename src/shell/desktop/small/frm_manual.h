// The manual that is installed with the program, in a window of its own: its chapters at the left, and no network is needed.
#pragma once

#include <QDialog>
#include <string>
#include <utility>

#include "shell/desktop/toolkit/modeless_form.h"
#include "shell/web/web_pages.h"

class QListWidget;
class QTextBrowser;
class QUrl;

namespace korvane {

/// Deleted when it is closed.
class frmManual : public QDialog {
public:
    explicit frmManual(QWidget* parent);

    /// Reads `<dataDir>/manual/manual.md`, unless it shows it already. Without the file it says where it should be. Links to the
    /// outside go through `pages`, which must outlive this.
    void Form_Load(WebPages& pages, const std::string& dataDir);

private:
    void ListChapters();
    void ShowPlace(int position);
    void Follow(WebPages& pages, const QUrl& link);

    QListWidget* lstChapters_;
    QTextBrowser* txtManual_;
    bool loaded_ = false;
};

/// The single window of this kind.
class ManualViewer : public ModelessForm<frmManual> {
public:
    ManualViewer(WebPages& pages, std::string dataDir) : pages_(pages), dataDir_(std::move(dataDir)) {}

    /// Brings it to the front; it stays at the place that was read last.
    void Show();

private:
    WebPages& pages_;
    const std::string dataDir_;
};

}  // namespace korvane
