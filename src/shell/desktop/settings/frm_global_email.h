// The dialog of the notification addresses: the global ones and those of the monitors at the top, the server entries one by one
// below.
#pragma once

#include <string>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/tabbed_dialog.h"
#include "shell/options/global_email_walk.h"

class QGroupBox;

namespace korvane {

/// Each part is saved by its own command; closing saves nothing.
class frmGlobalEmail : public FormDialog {
public:
    /// `monitors` must outlive this.
    frmGlobalEmail(const Desk& desk, ResourceEmailFiles& monitors, QWidget* parent);

private:
    QWidget* Page();
    QGroupBox* Server();
    QLayout* Walk();
    void AddRows(QFormLayout& form, std::size_t first);
    QPushButton* NewCommand(const char* name, const char* text, const char* help, void (frmGlobalEmail::*click)());
    QPushButton* NewMove(const char* name, const char* text, void (GlobalEmailWalk::*step)());
    void FocusMoved(QWidget* now);
    void ShowServer();
    void Tell(const std::string& error, const char* success);
    void cmdSaveGlobal_Click();
    void cmdUpdateServer_Click();
    void cmdUpdateAll_Click();
    void UpdateAll(const GlobalEmailFields& fields);

    GlobalEmailWalk walk_;
    FormInputs<GlobalEmailFields> inputs_;
    QGroupBox* fraServer_ = nullptr;
    QLabel* lblTitle_ = nullptr;
    QLabel* lblPosition_ = nullptr;
    QPushButton* cmdSaveGlobal_ = nullptr;
    QPushButton* cmdUpdateAll_ = nullptr;
    QPushButton* cmdUpdateServer_ = nullptr;
};

}  // namespace korvane
