// What the dialogs of settings have in common: pages behind tabs, which scroll where the screen has no room for them, a status
// line that explains the page and the input where the operator is, and OK and Cancel.
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

/// Window-modal, made with open(); deleted when it is closed.
class TabbedDialog : public QDialog {
public:
    void setVisible(bool visible) override;
    void done(int result) override;

protected:
    /// Finds what the status line says, by the name of an input; blank for one without help.
    using Help = std::string_view (*)(std::string_view);

    TabbedDialog(const char* name, const QString& title, QWidget* parent);

    void AddPage(QWidget* page, const QString& title);
    /// Once, behind the last page, for the keyboard goes through them in this order. Gives the dialog's own command, which stands
    /// at the left of "cmdOk" and "cmdCancel".
    QPushButton* AddStatusAndButtons(const char* name, const QString& command, const std::function<void()>& cmdOk_Click);

    /// Every input that there is by now tells about itself as it gets the focus.
    void WatchForHelp(Help helpOnInput);
    bool eventFilter(QObject* watched, QEvent* event) override;

    void SetStatus(std::string_view text);
    int IndexOfPage(const QWidget* input) const;
    void ShowPageOf(QWidget* input);
    /// It has been: commands that waited for something end without a word.
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
