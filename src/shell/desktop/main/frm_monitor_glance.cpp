// What the main window shows around its list: the bar with the filter, the notice that monitoring is stopped, the colours of the
// status log, and what the list says when it is empty.
#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>

#include "shell/desktop/glance/command_button.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/main/frm_monitor.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/run/run.h"

namespace korvane {
namespace {

constexpr std::string_view kViewSection = "Window";
constexpr std::string_view kProblemsFirstKey = "ListProblemsFirst";

constexpr int kLeastTitle = 100;  ///< pixels by which a window can be moved

constexpr const char* kNoServers = "No servers yet. Press Ctrl+N to add the first one.";
constexpr const char* kNothingFound = "No server is found. Show All takes the filter off.";

}  // namespace

// Built last, so that the Tab key comes to it after everything else.
void frmMonitor::BuildGlance(QBoxLayout& rows) {
    QAction& problemsFirst = *actions_.at("mnuViewProblemsFirst");
    problemsFirst.setCheckable(true);
    connect(&problemsFirst, &QAction::toggled, this, [this](bool on) {
        model_->SetProblemsFirst(on);
        if (on && !run_->Loading()) RefreshURLList();
    });
    bar_ = new ListBar(
        problemsFirst, [this] { ApplyFilter(); }, [this] { ListView1->setFocus(); }, this);
    stopped_ = new StoppedBar(
        [this] {
            commands_->mnuTrayOn();
            ListView1->setFocus();
        },
        this);
    rows.insertWidget(rows.indexOf(ListView1), stopped_);
    rows.insertWidget(rows.indexOf(stopped_), bar_);
    aroundList_ = {bar_, stopped_};
    new StatusColours(*txtStatus);  // belongs to its document
    // The window still has the screen that goes.
    connect(
        qApp, &QGuiApplication::screenRemoved, this, [this] { KeepOnScreen(); }, Qt::QueuedConnection);
    BuildEmptyText();
    BuildLogCommands(*rows.itemAt(rows.indexOf(ListView1) + 1)->layout());
}

void frmMonitor::BuildEmptyText() {
    QWidget& viewport = *ListView1->viewport();
    lblEmpty_ = NewLabel("lblEmpty", kNoServers, &viewport);
    lblEmpty_->setAlignment(Qt::AlignCenter);
    lblEmpty_->setForegroundRole(QPalette::Text);
    lblEmpty_->setAttribute(Qt::WA_TransparentForMouseEvents);
    lblEmpty_->setWordWrap(true);
    lblEmpty_->hide();  // until the list was read
    (new QVBoxLayout(&viewport))->addWidget(lblEmpty_);
}

void frmMonitor::BuildLogCommands(QLayout& row) {
    const auto open = [this] { commands_->OpenTodaysLog(); };
    auto* const cmdOpenLog = new CommandButton(CommandIcon(CommandPicture::Folder), "&Open Today's Log", this);
    cmdOpenLog->setObjectName("cmdOpenLog");
    cmdOpenLog->setAccessibleName("Open today's log");
    cmdOpenLog->setToolTip("Opens the log of the day in a text editor");
    cmdOpenLog->setAutoDefault(false);
    cmdOpenLog->setFlat(true);
    connect(cmdOpenLog, &QPushButton::clicked, this, open);
    row.addWidget(cmdOpenLog);
    commandButtons_.push_back(cmdOpenLog);
    txtStatus->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(txtStatus, &QWidget::customContextMenuRequested, this, [this, open](const QPoint& at) {
        QMenu* const menu = txtStatus->createStandardContextMenu();
        menu->setAttribute(Qt::WA_DeleteOnClose);
        menu->addAction("Copy &Whole Log", this, [this] { QGuiApplication::clipboard()->setText(txtStatus->toPlainText()); });
        menu->addSeparator();
        menu->addAction("&Open Today's Log", this, open);
        menu->popup(txtStatus->mapToGlobal(at));
    });
}

// The selection stays if its row is still shown; otherwise the keyboard gets a row to start from.
void frmMonitor::ApplyFilter() {
    model_->SetFilter(bar_->Filter());
    ShowCounts();
    if (!ListView1->selectionModel()->hasSelection()) SelectRow(0);
    ListView1->scrollTo(ListView1->currentIndex());
}

void frmMonitor::KeepRowSeen() {
    QScrollBar& across = *ListView1->horizontalScrollBar();
    const int column = across.value();
    ListView1->scrollTo(ListView1->currentIndex());
    across.setValue(column);
}

void frmMonitor::ShowCounts() {
    bar_->SetCounts(CountStates(model_->All()));
    bar_->SetShown(model_->rowCount(), static_cast<int>(model_->All().size()));
    lblEmpty_->setText(model_->All().empty() ? kNoServers : kNothingFound);
    lblEmpty_->setVisible(model_->rowCount() == 0);
    ListView1->setAccessibleDescription(model_->rowCount() == 0 ? lblEmpty_->text() : QString());
}

// To be called when the operator has made the entry, which a filter would hide at once.
void frmMonitor::LetBeSeen(const std::string& id) {
    const auto isNew = [&](const auto& row) { return row->Id() == id; };
    if (model_->RowOf(id) >= 0 || std::none_of(model_->All().begin(), model_->All().end(), isNew)) return;
    bar_->TakeFilterOff();
    SelectEntry(id);
}

std::set<std::string> frmMonitor::AllIds() const {
    std::set<std::string> ids;
    for (const auto& row : model_->All())
        ids.insert(row->Id());
    return ids;
}

void frmMonitor::ShowStopped() {
    if (monitoring_ == stopped_->isHidden()) return;
    if (!monitoring_) stopped_->SetSince(run_->TheDesk().clock.Now());
    if (!monitoring_) stopped_->ShowSince(run_->TheDesk().clock.Now());
    stopped_->setVisible(!monitoring_);
    Form_Resize();
}

int frmMonitor::HeightAroundList() const {
    int height = 0;
    for (const QWidget* each : aroundList_)
        if (!each->isHidden()) height += each->sizeHint().height() + centralWidget()->layout()->spacing();
    return height;
}

void frmMonitor::RestoreView() {
    storedProblemsFirst_ = run_->TheDesk().settingsFile.Read(kViewSection, kProblemsFirstKey, "");
    actions_.at("mnuViewProblemsFirst")->setChecked(storedProblemsFirst_ == "True");
}

// Nothing is written until the operator has changed it.
void frmMonitor::RememberView() {
    const bool before = storedProblemsFirst_ == "True", now = actions_.at("mnuViewProblemsFirst")->isChecked();
    if (before == now) return;
    storedProblemsFirst_ = now ? "True" : "False";
    run_->TheDesk().settingsFile.Write(kViewSection, kProblemsFirstKey, storedProblemsFirst_);
}

// A screen may have gone since the window was placed. A window whose title can be reached stays where it is, also across two
// screens; another one comes back whole.
void frmMonitor::KeepOnScreen() {
    const QRect title(frameGeometry().topLeft(), QSize(width(), 2 * fontMetrics().height()));
    const QList<QScreen*> screens = QGuiApplication::screens();
    const bool isReachable = std::any_of(screens.begin(), screens.end(), [&](const QScreen* each) {
        const QRect seen = each->availableGeometry().intersected(title);
        return seen.width() >= std::min(title.width(), kLeastTitle) && seen.height() > fontMetrics().height() / 2;
    });
    if (!WindowVisible() || isMaximized() || isReachable) return;
    SetWidth(Width());
    SetHeight(Height());
    move(HomePlace());
}

}  // namespace korvane
