#include "shell/desktop/main/frm_monitor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

#include "shell/desktop/glance/command_button.h"
#include "shell/desktop/glance/detail_strip.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/run/run.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr int kTwipsAPixel = 15;
constexpr int kTwipsARow = 270;
constexpr int kTwipsBesideRows = 700;
constexpr int kLeastRows = 3;
constexpr int kTwipsBesideList = 3500;
constexpr int kLeastWidth = 3310;   // twips
constexpr int kLeastHeight = 5030;  // twips
constexpr QPoint kPlace{100 / kTwipsAPixel + 1, 100 / kTwipsAPixel + 1};
constexpr auto kTimer3Interval = 9500ms;
constexpr int kBlinkEvery = 5;
constexpr int kBlinkTop = 15000;

constexpr const char* kWelcomeBack = "These status messages are updated only if Korvane is visible. Welcome Back.";
constexpr const char* kPausedTip = " Korvane: Server Monitoring Paused.  No Monitoring is occurring. ";

}  // namespace

frmMonitor::frmMonitor(Timers& timers)
    : notes_(timers, [this](const OutageNotes::Note& note) { tray_.Notify(note.title, note.text, note.isDown); }),
      Timer3_(timers.NewTimer("Timer3")),
      Timer4_(timers.NewTimer("Timer4")) {
    BuildWidgets();
    conversation_.SetParent(this);
    mailTrace_.SetParent(this);
    Timer3_->SetInterval(15000ms);
    Timer3_->OnTick([this] { Timer3_Timer(); });
    Timer4_->SetInterval(1000ms);
    Timer4_->OnTick([this] { Timer4_Timer(); });
}

frmMonitor::~frmMonitor() = default;

void frmMonitor::Attach(Run& run, std::function<void()> exit) {
    run_ = &run;
    exit_ = std::move(exit);
    commands_ = std::make_unique<MonitorCommands>(run);
    AttachEntryCommands();
    resources_ =
        std::make_unique<ResourceWindows>(run.TheDesk(), [this](ResourceMonitor monitor) { ResourceWindowHidden(monitor); });
    AttachDetail();
    forms_ = std::make_unique<MonitorForms>(run.TheDesk(), *this, [this] { resources_->LoadData(); });
    Timer3_->SetEnabled(true);
    Timer4_->SetEnabled(true);
}

void frmMonitor::BeforeExit() {
    if (run_->SavesOnExit()) RememberColumns();
    tray_.Remove();
}

int frmMonitor::ScreenWidth() const {
    return screen()->availableGeometry().width() * kTwipsAPixel;
}

// Uses the size that a maximised window returns to; a size that fills this screen would be wrong on the next one.
int frmMonitor::Width() const {
    return width_.Twips(isMaximized() ? normalGeometry().width() : width());
}

int frmMonitor::Height() const {
    return height_.Twips(isMaximized() ? normalGeometry().height() : height());
}

// A size that nobody has changed since it was read is saved as it was read.
int frmMonitor::SavedLength::Twips(int pixelsNow) const {
    return pixelsNow == pixels ? twips : pixelsNow * kTwipsAPixel;
}

// The settings may come from a larger screen, or contain anything. The window frame needs space too.
void frmMonitor::SetWidth(int twips) {
    resize(std::min(twips / kTwipsAPixel, screen()->availableGeometry().width() - 2 * kPlace.x()), height());
    width_ = {std::max(twips, kLeastWidth), width()};
}

void frmMonitor::SetHeight(int twips) {
    const int frame = 2 * fontMetrics().height() + kPlace.y();
    resize(width(), std::min(twips / kTwipsAPixel, screen()->availableGeometry().height() - frame));
    height_ = {std::max(twips, kLeastHeight), height()};
}

void frmMonitor::SetTitle(const std::string& title) {
    setWindowTitle(Q(title));
}

void frmMonitor::SetCaptions(const Captions& captions) {
    actions_.at("mnuFileGlobal")->setText(Q(captions.mnuFileGlobal).replace("&", "&&"));
    actions_.at("mnufilekvsettings")->setText(Q(captions.mnufilekvsettings).replace("&", "&&"));
}

QPoint frmMonitor::HomePlace() const {
    return screen()->availableGeometry().topLeft() + kPlace;
}

void frmMonitor::Place(bool shown) {
    move(HomePlace());
    columns_->Restore(run_->TheDesk().settingsFile);
    RestoreView();
    RestoreDetail();
    placed_ = true;
    const bool outOfSight = !shown || hiddenAtStart_;
    if (outOfSight && MonitorTray::Available()) return HideOrIconify();
    // Without an icon, a hidden start would look like no start at all, since some desktops have no task bar either.
    run_->TheDesk().collection.setKvSettingsColValue("bMinimized", "False");
    show();
}

void frmMonitor::MinimizeToTray() {
    run_->TheDesk().collection.setKvSettingsColValue("bMinimized", "True");
    hiddenAtStart_ = !placed_;  // the start has not set its size yet, and nobody has seen it
    if (hiddenAtStart_) return;
    RememberColumns();
    HideOrIconify();
}

void frmMonitor::HideOrIconify() {
    if (MonitorTray::Available()) {
        tray_.Show();
        tray_.Modify();
        hide();
    } else {
        showMinimized();
    }
}

void frmMonitor::mnuTraySettings_Click() {
    if (run_->Loading()) return;
    run_->TheDesk().collection.setKvSettingsColValue("bMinimized", "False");
    welcomed_ = false;
    showNormal();
    KeepOnScreen();
    SetWindowToFrontForeground();
    if (!welcomed_) WelcomeBack();  // when it left the task bar, this was done already
}

// The keyboard stays with the dialog over the window, if there is one.
void frmMonitor::SetWindowToFrontForeground() {
    raise();
    QWidget* const dialog = QApplication::activeModalWidget();
    (dialog != nullptr ? dialog : this)->activateWindow();
}

void frmMonitor::WelcomeBack() {
    welcomed_ = true;
    RefreshURLList();
    run_->ResumeProgress();
    run_->TheDesk().status.setStatusMSG(kWelcomeBack);
}

void frmMonitor::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (run_ != nullptr) MinimizeToTray();
}

// The operator has restored the window from the task bar.
void frmMonitor::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || run_ == nullptr || run_->Loading()) return;
    const bool wasMinimized = static_cast<QWindowStateChangeEvent*>(event)->oldState().testFlag(Qt::WindowMinimized);
    if (!wasMinimized || !WindowVisible()) return;
    run_->TheDesk().collection.setKvSettingsColValue("bMinimized", "False");
    WelcomeBack();
}

void frmMonitor::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    for (QPushButton* button : commandButtons_)
        button->updateGeometry();
    ProgressBar1->setMaximumWidth(width() < kNarrowWindow ? width() / 7 : QWIDGETSIZE_MAX);  // the texts beside it need the room
    Form_Resize();
}

// The list has room for one row more than there are entries, hidden ones too, as far as the window allows; the status log gets the
// rest.
void frmMonitor::Form_Resize() {
    detail_->SetWindowHeight(height());
    rowHeight_ = std::max({kTwipsARow / kTwipsAPixel, rowHeight_, ListView1->sizeHintForRow(0)});
    const int wanted = rowHeight_ * (static_cast<int>(model_->All().size()) + 1) + kTwipsBesideRows / kTwipsAPixel;
    const int room = height() - kTwipsBesideList / kTwipsAPixel - HeightAroundList() - detail_->TakenHeight();
    const QRect current = ListView1->visualRect(ListView1->currentIndex());
    const bool isSeen = current.isValid() && current.top() >= 0 && current.bottom() < ListView1->viewport()->height();
    ListView1->setFixedHeight(std::max(kLeastRows * rowHeight_ + kTwipsBesideRows / kTwipsAPixel, std::min(wanted, room)));
    if (isSeen)
        QMetaObject::invokeMethod(
            this, [this] { KeepRowSeen(); }, Qt::QueuedConnection);
}

void frmMonitor::RememberColumns() {
    columns_->Remember(run_->TheDesk().settingsFile);
    RememberView();
}

// The keyboard returns to the list when the operator has closed a resource window in that window; a window closed by its mark did
// not have it.
void frmMonitor::ResourceWindowHidden(ResourceMonitor monitor) {
    QCheckBox& mark = *ckResources_[static_cast<std::size_t>(monitor)];
    const bool left = mark.isChecked();
    mark.setChecked(false);
    if (!left || !WindowVisible()) return;
    activateWindow();
    ListView1->setFocus();
}

// The desktop may lose the icon, or its notification area with all icons: then the window must be reachable in the task bar.
void frmMonitor::Timer3_Timer() {
    if (run_->Loading()) return;  // nothing may be shown before the start is complete
    Timer3_->SetInterval(kTimer3Interval);
    if (!monitoring_) SetTray(TrayPicture::Off, kPausedTip);
    if (!MonitorTray::Available()) {
        if (!isVisible()) showMinimized();
        return;
    }
    const bool evenSecond = run_->TheDesk().clock.Now().Second() % 2 == 0;
    if (evenSecond) {
        tray_.Modify();
    } else {
        tray_.Show();
    }
}

void frmMonitor::Timer4_Timer() {
    nBlink_ = nBlink_ < kBlinkTop ? nBlink_ + 1 : 1;
    if (!WindowVisible()) return;
    const std::string now = run_->TheDesk().clock.Now().Text();
    SetClockText(now.substr(now.find(' ') + 1));
    ShowStopStart(monitoring_ || nBlink_ % kBlinkEvery != 0);
    cmdStopWaiting->setVisible(run_->WaitingToStart());
    if (!monitoring_) stopped_->ShowSince(run_->TheDesk().clock.Now());
}

}  // namespace korvane
