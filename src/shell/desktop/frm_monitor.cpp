#include "shell/desktop/frm_monitor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QScreen>
#include <algorithm>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "shell/desktop/icons.h"
#include "shell/desktop/qt_text.h"
#include "shell/run.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr int kTwipsAPixel = 15;
constexpr int kTwipsARow = 270;
constexpr int kTwipsBesideRows = 700;
constexpr int kTwipsBesideList = 3500;
constexpr QPoint kPlace{100 / kTwipsAPixel + 1, 100 / kTwipsAPixel + 1};
constexpr auto kTimer3Interval = 9500ms;
constexpr int kBlinkEvery = 5;
constexpr int kBlinkTop = 15000;

constexpr const char* kWelcomeBack = "These status messages are updated only if Korvane is visible. Welcome Back.";
constexpr const char* kPausedTip = " Korvane: Server Monitoring Paused.  No Monitoring is occurring. ";

constexpr std::string_view kWindowSection = "Window";
constexpr std::string_view kColumnsKey = "ListColumns";

int Twips(int pixels) {
    return pixels * kTwipsAPixel;
}

}  // namespace

frmMonitor::frmMonitor(Timers& timers) : Timer3_(timers.NewTimer("Timer3")), Timer4_(timers.NewTimer("Timer4")) {
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
    resources_ = std::make_unique<ResourceWindows>(
        run.TheDesk(), [this](ResourceMonitor monitor) { ckResources_[static_cast<std::size_t>(monitor)]->setChecked(false); });
    forms_ = std::make_unique<MonitorForms>(run.TheDesk(), *this, [this] { resources_->LoadData(); });
    BuildMenus();
    BuildTray();
    Timer3_->SetEnabled(true);
    Timer4_->SetEnabled(true);
}

void frmMonitor::BeforeExit() {
    if (run_->SavesOnExit()) RememberColumns();
    tray_->Remove();
}

int frmMonitor::ScreenWidth() const {
    return Twips(screen()->availableGeometry().width());
}

// What a maximised window goes back to; a size that fills this screen would be wrong on the next.
int frmMonitor::Width() const {
    return Twips(isMaximized() ? normalGeometry().width() : width());
}

int frmMonitor::Height() const {
    return Twips(isMaximized() ? normalGeometry().height() : height());
}

// Settings may come from a larger screen, or from anywhere. The frame has to find room too.
void frmMonitor::SetWidth(int twips) {
    resize(std::min(twips / kTwipsAPixel, screen()->availableGeometry().width() - 2 * kPlace.x()), height());
}

void frmMonitor::SetHeight(int twips) {
    const int frame = 2 * fontMetrics().height() + kPlace.y();
    resize(width(), std::min(twips / kTwipsAPixel, screen()->availableGeometry().height() - frame));
}

void frmMonitor::SetTitle(const std::string& title) {
    setWindowTitle(Q(title));
}

void frmMonitor::SetCaptions(const Captions& captions) {
    menus_->Action("mnuFileGlobal").setText(Q(captions.mnuFileGlobal).replace("&", "&&"));
    menus_->Action("mnufilekvsettings").setText(Q(captions.mnufilekvsettings).replace("&", "&&"));
}

void frmMonitor::Place(bool shown) {
    move(screen()->availableGeometry().topLeft() + kPlace);
    RestoreColumns();
    placed_ = true;
    if (shown && !hiddenAtStart_) show();
    if (hiddenAtStart_) HideOrIconify();
}

void frmMonitor::MinimizeToTray() {
    run_->TheDesk().collection.setKvSettingsColValue("bMinimized", "True");
    hiddenAtStart_ = !placed_;  // the start has not given it its size yet; nobody has seen it either
    if (hiddenAtStart_) return;
    RememberColumns();
    HideOrIconify();
}

void frmMonitor::HideOrIconify() {
    if (MonitorTray::Available()) {
        tray_->Show();
        tray_->Modify();
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
    SetWindowToFrontForeground();
    if (!welcomed_) WelcomeBack();  // out of the task bar it has been already
}

// The keys belong to the dialog that stands over the window.
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

// Somebody has taken the window out of the task bar.
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
    Form_Resize();
}

// As many rows as there are entries and one more, as far as the window has room for them; the status log has the rest.
void frmMonitor::Form_Resize() {
    const int hint = ListView1->sizeHintForRow(0);
    const int row = std::max(kTwipsARow / kTwipsAPixel, hint);
    const int wanted = row * (model_->rowCount() + 1) + kTwipsBesideRows / kTwipsAPixel;
    ListView1->setFixedHeight(std::max(4 * row, std::min(wanted, height() - kTwipsBesideList / kTwipsAPixel)));
}

void frmMonitor::RestoreColumns() {
    columnsAsStored_ = run_->TheDesk().settingsFile.Read(kWindowSection, kColumnsKey, "");
    const std::vector<std::string> widths = Split(columnsAsStored_, ',');
    if (widths.size() != column::Count) return;
    for (int i = 0; i < column::Count; ++i) {
        IgnoreErrors([&] {
            const int width = CheckedInt32(ParseWhole(widths[static_cast<std::size_t>(i)]));
            ListView1->setColumnWidth(i, std::clamp(width, ListView1->header()->minimumSectionSize(), 2000));
        });
    }
}

void frmMonitor::RememberColumns() {
    std::string widths;
    for (int i = 0; i < column::Count; ++i)
        widths += (i > 0 ? "," : "") + std::to_string(ListView1->columnWidth(i));
    if (widths == columnsAsStored_) return;
    columnsAsStored_ = widths;
    run_->TheDesk().settingsFile.Write(kWindowSection, kColumnsKey, widths);
}

// The desktop may lose the icon, or its notification area with all icons: then the window must be reachable in the task bar.
void frmMonitor::Timer3_Timer() {
    if (run_->Loading()) return;  // nothing is ours to show before the start is through
    Timer3_->SetInterval(kTimer3Interval);
    if (!monitoring_) SetTray(TrayPicture::Off, kPausedTip);
    if (!MonitorTray::Available()) {
        if (!isVisible()) showMinimized();
        return;
    }
    const bool evenSecond = run_->TheDesk().clock.Now().Second() % 2 == 0;
    if (evenSecond) {
        tray_->Modify();
    } else {
        tray_->Show();
    }
}

void frmMonitor::Timer4_Timer() {
    nBlink_ = nBlink_ < kBlinkTop ? nBlink_ + 1 : 1;
    if (!WindowVisible()) return;
    const std::string now = run_->TheDesk().clock.Now().Text();
    SetClockText(now.substr(now.find(' ') + 1));
    ShowStopStart(monitoring_ || nBlink_ % kBlinkEvery != 0);
    cmdStopWaiting->setVisible(run_->WaitingToStart());
}

}  // namespace korvane
