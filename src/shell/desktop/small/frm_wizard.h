// The one dialog of the first-run setup: a page with a text, an input box where something is asked, and one or two buttons.
// There is no way back and nothing to cancel.
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

    /// False on a page that only tells something.
    void TextboxVisible(bool flag);

    /// The button that closed the page, 1 or 2, and the text of the input box then. 0 and blank before that, and for good
    /// when the page was left by its close box or with Escape.
    int Button() const { return button_; }
    const std::string& Answer() const { return answer_; }

    /// Shows the page over `parent`, which may be null, waits through the pump until it is closed, and gives its answer.
    /// `parent` may be gone by then; the answer is blank in that case.
    static std::string Ask(Events& events, QWidget* parent, const WizardPage& page);

private:
    QLayout* Page(const WizardPage& page);
    QLayout* Buttons(const WizardPage& page);
    QWidget* Picture();
    void AddButton(QLayout& row, const char* name, const std::string& caption, int number);
    void Click(int number);

    QLineEdit* txtAnswer_ = nullptr;
    QPushButton* last_ = nullptr;  ///< of the buttons that there are: Return presses it
    int button_ = 0;
    std::string answer_;
};

}  // namespace korvane
