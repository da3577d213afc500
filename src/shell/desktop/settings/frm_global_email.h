// The dialog of the notification addresses: the global ones and those of the monitors at the top, the server entries one by one
// below.
#pragma once

#include <QDialog>
#include <string>

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/options/global_email_walk.h"

class QGroupBox;
class QPushButton;

namespace korvane {

class ReadingText;

/// Shown with open(); deleted when it is closed. Each part is saved by its own command; closing saves nothing.
class frmGlobalEmail : public QDialog {
public:
    /// `monitors` must outlive this.
    frmGlobalEmail(const Desk& desk, ResourceEmails& monitors, QWidget* parent);
    ~frmGlobalEmail() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* Page();
    QWidget* GlobalValues();
    QWidget* Monitors();
    QWidget* Server();
    QLayout* Walk();
    QPushButton* NewCommand(const char* name, const QString& text, void (frmGlobalEmail::*click)());
    QPushButton* NewMove(const char* name, const QString& text, void (GlobalEmailWalk::*step)());
    void WatchForHelp();
    void ShowServer();
    void SetStatus(const QString& text);
    void Tell(const std::string& error, const char* success);
    void cmdSaveGlobal_Click();
    void cmdUpdateServer_Click();
    void cmdUpdateAll_Click();
    void UpdateAll(const GlobalEmailFields& fields);
    void cmdClose_Click() { reject(); }

    GlobalEmailWalk walk_;
    FormInputs<GlobalEmailFields> inputs_;
    QGroupBox* fraServer_ = nullptr;
    QLabel* lblTitle_ = nullptr;
    QLabel* lblPosition_ = nullptr;
    QPushButton* cmdSaveGlobal_ = nullptr;
    QPushButton* cmdUpdateServer_ = nullptr;
    ReadingText* txtStatus_ = nullptr;
};

}  // namespace korvane
