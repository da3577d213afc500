// The dialog of the first-run setup: each page has a text, an input box if it asks something, and one or two buttons. There is no
// way back and no Cancel.
#pragma once

#include <QDialog>
#include <string>

#include "platform/events.h"
#include "shell/setup/first_run.h"

class QLayout;
class QLineEdit;

namespace korvane {

class frmWizard : public QDialog {
public:
    /// Not deleted when it is closed.
    frmWizard(const WizardPage& page, QWidget* parent);

    /// Shows the page over `parent`, which may be null, waits through the pump until it is closed, and returns the text
    /// of the input box when a button was pressed. It is empty when the page was closed by its close box, with Escape or together
    /// with `parent`.
    static std::string Ask(Events& events, QWidget* parent, const WizardPage& page);

private:
    QLayout* Page(const WizardPage& page);
    QLayout* Buttons(const WizardPage& page);
    void Click();

    QLineEdit* txtAnswer_ = nullptr;
    std::string answer_;
};

}  // namespace korvane
