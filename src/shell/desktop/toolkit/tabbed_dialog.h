// The bases of the dialogs for settings: a status line that explains the current input, and pages in tabs with OK and Cancel.
#pragma once

#include <QDialog>
#include <QDialogButtonBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QString>
#include <functional>
#include <string_view>

#include "shell/entry/form_input.h"

class QLineEdit;
class QPushButton;
class QTabWidget;
class QVBoxLayout;

namespace korvane {

class ReadingText;

/// A page of a dialog that scrolls if the screen is too small for it, and otherwise is as large as its content.
class ScrolledPage : public QScrollArea {
public:
    /// Takes ownership of `page`.
    explicit ScrolledPage(QWidget* page);

    /// From now on it scrolls unless there happens to be room for it.
    void SetLow() { low_ = true; }

    QSize sizeHint() const override { return low_ ? minimumSizeHint() : widget()->sizeHint(); }
    /// With room for the vertical scroll bar.
    QSize minimumSizeHint() const override {
        const int bar = verticalScrollBar()->sizeHint().width();
        return {widget()->minimumSizeHint().width() + bar, fontMetrics().height() * 6};
    }

private:
    bool low_ = false;
};

/// Window-modal, shown with open(); deleted when it is closed.
class FormDialog : public QDialog {
public:
    ~FormDialog() override;

protected:
    FormDialog(const char* name, const QString& title, QWidget* parent);

    QPushButton* AddButton(QDialogButtonBox& buttons, const Control& control, QDialogButtonBox::ButtonRole role,
                           const std::function<void()>& click);

    /// Adds the status line at the end of the content.
    void AddStatus(int lines);
    void SetStatus(std::string_view text);

    /// From now on every existing input shows its help in the status line when it gets the focus, and a mark or choice gets the
    /// focus when it is changed by other means than mouse and keys. Must be called before other handlers of changes are connected.
    void WatchForHelp();
    bool eventFilter(QObject* watched, QEvent* event) override;

    QVBoxLayout* content_;
    ReadingText* txtStatus_ = nullptr;
    bool showing_ = false;  ///< the focus does not change the status line
    bool loading_ = false;  ///< the dialog is being filled, and the handlers of changes do nothing
};

/// Its pages scroll if the screen is too small for them.
class TabbedDialog : public FormDialog {
public:
    void setVisible(bool visible) override;
    void done(int result) override;

protected:
    TabbedDialog(const char* name, const QString& title, QWidget* parent);

    /// Adds an empty page, or one that begins with an explanation. The status line shows `help` when the page is opened.
    QVBoxLayout& AddPage(const char* title, const char* help, const QString& explanation = QString());
    /// The page scrolls in the height that the other pages need.
    static void LeaveHeightToOthers(QVBoxLayout& page);
    /// Must be called once, after the last page, since keyboard navigation follows this order. Returns the dialog's own command,
    /// which is at the left of "cmdOk" and "cmdCancel".
    QPushButton* AddStatusAndButtons(const Control& command, const std::function<void()>& click,
                                     const std::function<void()>& cmdOk_Click);

    /// Asks for a file and calls back with its path; does not call back when the operator cancels. `extension` is added to a
    /// name that is typed without one; empty: none.
    void AskForFile(const QString& title, const QString& name, const QString& extension, const QString& filter,
                    const std::function<void(const QString& path)>& chosen);

    /// Shows the page of the box, and there why its text was refused.
    void ShowRefusal(QLineEdit& box, std::string_view why);
    void ShowPageOf(QWidget* input);
    /// Returns whether it has been closed: commands that waited then end without a message.
    bool IsClosed() const { return closed_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

    QTabWidget* tabPages_;

private:
    /// Returns the size that fits on the screen with a frame around it.
    QSize Room() const;
    void MarkRefusedPages();

    bool closed_ = false;
};

}  // namespace korvane
