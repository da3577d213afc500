// The dialog of the first-run setup: each page has a text, an input box if it asks something, and one or two buttons. There is no
// way back and no Cancel.
#pragma once

#include <QDialog>
#include <string>

#include "platform/events.h"
#include "shell/setup/first_run.h"

class QLayout;
class QLineEdit;
class QPushButton;

namespace korvane {

class frmWizard : public QDialog {
public:
    /// Not deleted when it is closed.
    frmWizard(const WizardPage& page, QWidget* parent);

    /// False on a page that only shows information.
    void TextboxVisible(bool flag);

    /// The button that closed the page, 1 or 2, and the text of the input box at that moment. Before that, 0 and an empty text;
    /// they stay so when the page was closed by its close box or with Escape.
    int Button() const { return button_; }
    const std::string& Answer() const { return answer_; }

    /// Shows the page over `parent`, which may be null, waits through the pump until it is closed, and returns its answer.
    /// `parent` may be gone by then; the answer is then empty.
    static std::string Ask(Events& events, QWidget* parent, const WizardPage& page);

private:
    QLayout* Page(const WizardPage& page);
    QLayout* Buttons(const WizardPage& page);
    QWidget* Picture();
    void AddButton(QLayout& row, const char* name, const std::string& caption, int number);
    void Click(int number);

    QLineEdit* txtAnswer_ = nullptr;
    QPushButton* last_ = nullptr;  ///< the last visible button: Return presses it
    int button_ = 0;
    std::string answer_;
};

}  // namespace korvane
