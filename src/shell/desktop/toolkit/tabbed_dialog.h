// The common part of the settings dialogs: pages in tabs, which scroll if the screen is too small for them, a status line that
// explains the current page and input, and OK and Cancel.
#pragma once

#include <QDialog>
#include <QString>
#include <functional>
#include <string_view>

class QFocusEvent;
class QPushButton;
class QTabWidget;

namespace korvane {

class ReadingText;

/// Window-modal, shown with open(); deleted when it is closed.
class TabbedDialog : public QDialog {
public:
    void setVisible(bool visible) override;
    void done(int result) override;

protected:
    /// Returns the status line's text by the name of an input; empty if there is no help.
    using Help = std::string_view (*)(std::string_view);

    TabbedDialog(const char* name, const QString& title, QWidget* parent);

    void AddPage(QWidget* page, const QString& title);
    /// Must be called once, after the last page, since keyboard navigation follows this order. Returns the dialog's own command,
    /// which is at the left of "cmdOk" and "cmdCancel".
    QPushButton* AddStatusAndButtons(const char* name, const QString& command, const std::function<void()>& cmdOk_Click);

    /// From now on every existing input shows its help when it gets the focus.
    void WatchForHelp(Help helpOnInput);
    bool eventFilter(QObject* watched, QEvent* event) override;

    void SetStatus(std::string_view text);
    int IndexOfPage(const QWidget* input) const;
    void ShowPageOf(QWidget* input);
    /// Returns whether it has been closed: commands that waited then end without a message.
    bool IsClosed() const { return closed_; }

    QTabWidget* tabPages_;

private:
    bool IsNews(const QFocusEvent& event) const;

    ReadingText* txtStatus_ = nullptr;
    Help helpOnInput_ = nullptr;
    bool showing_ = false;
    bool closed_ = false;
};

}  // namespace korvane
