// What the main window shows and asks on behalf of the lower rooms.
#include <QApplication>
#include <algorithm>

#include "shell/desktop/glance/detail_strip.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/main/frm_monitor.h"
#include "shell/desktop/monitors/resource_form.h"
#include "shell/desktop/small/frm_msg.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/run/run.h"
#include "store/database_files.h"

namespace korvane {

// A minimised window is as invisible as one in the tray.
bool frmMonitor::WindowVisible() const {
    return isVisible() && !isMinimized();
}

void frmMonitor::StatusLine(const std::string& time, const std::string& text) {
    const bool loading = run_ != nullptr && run_->Loading();
    if (WindowVisible() || loading) txtStatus->AddLine(Q(time + " - " + text));
}

void frmMonitor::SetClockText(const std::string& time) {
    lblTime->setText(Q(time));
}

void frmMonitor::SetCycleText(const std::string& text) {
    lblCount->setText(Q(text));
    lblCount->setToolTip(lblCount->text());
}

void frmMonitor::ShowProgress(bool shown) {
    ProgressBar1->setVisible(shown);
}

void frmMonitor::SetProgress(int value, int max) {
    ProgressBar1->setRange(0, std::max(1, max));
    ProgressBar1->setValue(std::clamp(value, 0, ProgressBar1->maximum()));
}

void frmMonitor::SetProgressTip(const std::string& text) {
    ProgressBar1->setToolTip(Lines(text));
    lblCo->setText(Q(text));
    lblCo->setToolTip(lblCo->text());
}

void frmMonitor::SetTray(TrayPicture picture, const std::string& tip) {
    tray_.SetPicture(picture);
    SetTrayTip(tip);
    if (MonitorTray::Available()) tray_.Show();
}

void frmMonitor::SetTrayTip(const std::string& tip) {
    tray_.SetTip(mailState_.empty() ? tip : tip + "\n" + mailState_);
}

void frmMonitor::SetMonitoring(bool on) {
    monitoring_ = on;
    cmdStopStart->setText(on ? "S&top" : "S&tart");
    cmdStopStart->setAccessibleName(on ? "Stop" : "Start");
    cmdStopStart->setIcon(CommandIcon(on ? CommandPicture::Stop : CommandPicture::Start));
    QAction* action = actions_.at("cmdStopStart");
    action->setText(cmdStopStart->text());
    action->setIcon(cmdStopStart->icon());
    setWindowIcon(ProgramIcon(on));
    tray_.SetMonitoring(on);
    if (on) ShowStopStart(true);
    detail_->SetMonitoring(on);
    if (run_ != nullptr) ShowStopped();
}

void frmMonitor::SetCustomerCount(int count) {
    lblCustomers->setText(QString("Number of distinct company names: %1").arg(count));
    lblCustomers->setVisible(true);
}

void frmMonitor::SetMailState(const std::string& text, bool alarming) {
    mailState_ = text;
    lblMail->setText(Q(text));
    lblMail->setToolTip(Q(text));
    lblMail->setStyleSheet(alarming ? "color: red" : "");
    lblMail->setVisible(!text.empty());
}

void frmMonitor::NoteOutage(const std::string& entry, bool isDown, const std::string& reason) {
    if (OutageNotes::IsOn(run_->TheDesk().collection)) notes_.Add(entry, isDown, reason);
}

void frmMonitor::RefreshURLList() {
    if (!WindowVisible() && !run_->Loading()) return;
    const Desk desk = run_->TheDesk();
    std::vector<ServerRow> rows;
    try {
        rows = LoadServerList(desk.store, OdbcConnectionText(desk.dir), desk.clock.Now(), run_->Requesting(), &desk.alertPath);
    } catch (const std::exception& error) {  // the current rows stay until the store can be read again
        desk.log.WriteLog(kLogFatal, kLogError, "RefreshURLList: " + std::string(error.what()));
        desk.status.setStatusMSG("The list of servers could not be read: " + std::string(error.what()));
        return;
    }
    if (actions_.at("mnuViewProblemsFirst")->isChecked()) outageStarts_.AddTo(desk, rows);
    lblServers->setText(QString::number(rows.size()));
    desk.settings.SetTotalURLs(static_cast<int>(rows.size()));
    const std::size_t before = model_->All().size();
    const bool wasEmpty = model_->rowCount() == 0, hadSelection = ListView1->selectionModel()->hasSelection();
    const int row = ListView1->currentIndex().row();
    model_->SetRows(std::move(rows));
    ShowCounts();
    if (model_->All().size() != before) Form_Resize();
    columns_->FitTo(model_->All());
    ShowDetail();
    // The keyboard gets a row to start from, and after the last selected row has gone, the one that took its place.
    if (wasEmpty || (hadSelection && !ListView1->selectionModel()->hasSelection())) SelectRow(std::max(row, 0));
}

// Only over this window: dialogs stay unchanged while a check runs in the background.
void frmMonitor::SetWaitCursor(bool wait) {
    wait ? setCursor(Qt::BusyCursor) : unsetCursor();
}

// A hidden window would hide its messages too.
QWidget* frmMonitor::MessageParent() const {
    if (QWidget* dialog = QApplication::activeModalWidget(); dialog != nullptr) return dialog;
    // A message caused by another window appears over that window, and the keyboard returns to it.
    if (auto* const form = dynamic_cast<ResourceForm*>(QApplication::activeWindow()); form != nullptr) return form;
    return WindowVisible() ? const_cast<frmMonitor*>(this) : nullptr;
}

void frmMonitor::ShowOrQueue(MessageQueue::Message message) {
    if (!placed_ || run_->Loading()) {
        frmMSG::Show(MessageParent(), message.kind, message.title, message.text);
    } else {
        messages_.Add(std::move(message));
    }
}

void frmMonitor::ShowMessage(const std::string& title, const std::string& text) {
    ShowOrQueue({frmMSG::Kind::Information, title, text});
}

void frmMonitor::ShowError(const std::string& title, const std::string& text) {
    ShowOrQueue({frmMSG::Kind::StopSign, title, text});
}

void frmMonitor::ShowLoggedError(const std::string& title, const std::string& text) {
    ShowOrQueue(
        {.kind = frmMSG::Kind::StopSign, .title = title, .text = text, .openLog = [this] { commands_->OpenTodaysLog(); }});
}

bool frmMonitor::AskYesNo(const std::string& title, const std::string& text) {
    return frmMSG::Ask(MessageParent(), title, text);
}

void frmMonitor::Ask(const std::string& title, const std::string& text, const std::function<void()>& yes,
                     const std::function<void()>& no) {
    messages_.Add(
        {frmMSG::Kind::Question, title, text, frmMSG::Answers::YesNo, [yes, no](bool accepted) { accepted ? yes() : no(); }});
}

void frmMonitor::SetStartMarks(bool mnuTrayNTService, bool mnuTrayStartup) {
    tray_.SetStartMarks(run_->TheDesk().service.IsWindowsNT(), mnuTrayNTService, mnuTrayStartup);
    forms_->SetStartMarks(mnuTrayNTService, mnuTrayStartup);
}

}  // namespace korvane
