// The layout of the main window; its behaviour is in frm_monitor.cpp.
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QShortcut>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/desktop/glance/command_button.h"
#include "shell/desktop/glance/elided_label.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/main/frm_monitor.h"
#include "shell/desktop/toolkit/cut_cell_tips.h"

namespace korvane {
namespace {

/// Size of a new window: room for some entries and the status log.
constexpr QSize kFirstSize{980, 640};
/// 3310 and 5030 twips.
constexpr QSize kLeastSize{221, 336};

template <class Widget>
Widget* Named(Widget* widget, const char* name, const QString& accessibleName) {
    widget->setObjectName(name);
    widget->setAccessibleName(accessibleName);
    return widget;
}

/// Some space after a number, which the next column's text would touch.
class ServerCells : public CutCellTips {
public:
    using CutCellTips::CutCellTips;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        CutCellTips::initStyleOption(option, index);
        if (index.column() == column::Number || !option->displayAlignment.testFlag(Qt::AlignRight)) return;
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->decorationPosition = QStyleOptionViewItem::Right;
        option->decorationSize = QSize(option->fontMetrics.averageCharWidth() / 2, 1);
    }
};

// While the widget is hidden, its neighbours stay in place.
void KeepPlace(QWidget& widget) {
    QSizePolicy stays = widget.sizePolicy();
    stays.setRetainSizeWhenHidden(true);
    widget.setSizePolicy(stays);
}

}  // namespace

void frmMonitor::BuildWidgets() {
    setObjectName("frmMonitor");
    setWindowTitle("Korvane");
    setWindowIcon(ProgramIcon(true));
    auto* middle = new QWidget(this);
    auto* rows = new QVBoxLayout(middle);
    BuildList();
    BuildMenus();
    rows->addLayout(BuildButtons());
    rows->addWidget(ListView1);
    rows->addLayout(BuildProgress());
    txtStatus = Named(new StatusBox, "txtStatus", "Status log");
    rows->addWidget(txtStatus, 1);
    setCentralWidget(middle);
    BuildStatusBar();
    BuildGlance(*rows);
    BuildDetail(*rows, rows->indexOf(ListView1) + 1);
    setMinimumSize(kLeastSize);
    resize(kFirstSize);
    ListView1->setFocus();
}

void frmMonitor::BuildList() {
    model_ = new ServerListModel(this);
    ListView1 = Named(new QTreeView, "ListView1", "Servers");
    ListView1->setModel(model_);
    ListView1->setRootIsDecorated(false);
    ListView1->setUniformRowHeights(true);
    ListView1->setAllColumnsShowFocus(true);
    ListView1->setAlternatingRowColors(true);
    ListView1->setSelectionBehavior(QAbstractItemView::SelectRows);
    ListView1->setSelectionMode(QAbstractItemView::ExtendedSelection);
    ListView1->setContextMenuPolicy(Qt::CustomContextMenu);
    ListView1->setTabKeyNavigation(false);
    QHeaderView& header = *ListView1->header();
    header.setSectionsClickable(true);
    header.setStretchLastSection(true);
    header.setSectionsMovable(false);
    // No column determines the order until the operator clicks one: the entry that is due next is at the top.
    header.setSortIndicator(-1, Qt::AscendingOrder);
    ListView1->setSortingEnabled(true);
    ListView1->setItemDelegate(new ServerCells(ListView1));
    columns_ = new ListColumns(*ListView1, this);
    connect(ListView1, &QTreeView::doubleClicked, this, [this] { cmdEditURL_Click(); });
    connect(ListView1, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { context_->popup(ListView1->viewport()->mapToGlobal(at)); });
    const auto onKey = [this](const QKeySequence& key, const auto& command) {
        connect(new QShortcut(key, ListView1, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated, this, command);
    };
    onKey(Qt::SHIFT | Qt::Key_F10, [this] {
        const QRect row = ListView1->visualRect(ListView1->currentIndex());
        context_->popup(ListView1->viewport()->mapToGlobal(row.bottomLeft()));
    });
}

QLayout* frmMonitor::BuildButtons() {
    auto* row = new QHBoxLayout;
    const auto addGap = [&] { row->addItem(new QSpacerItem(fontMetrics().averageCharWidth() * 2, 0, QSizePolicy::Maximum)); };
    const auto add = [&](const char* name, const QString& caption, const char* command) {
        QAction* action = actions_.at(command);
        QPushButton* button = Named(new CommandButton(action->icon(), caption), name, QString(caption).remove('&'));
        button->setAutoDefault(false);
        button->setMinimumWidth(button->iconSize().width() * 3 / 4);
        button->setToolTip(button->accessibleName());
        connect(button, &QPushButton::clicked, action, &QAction::trigger);
        row->addWidget(button);
        commandButtons_.push_back(button);
        return button;
    };
    cmdStopStart = add("cmdStopStart", "S&top", "cmdStopStart");
    cmdStopStart->setToolTip("Stops or starts monitoring (F9)");
    cmdStopWaiting = add("cmdStopWaiting", "&Now", "cmdStopWaiting");
    cmdStopWaiting->setToolTip("Begins without waiting, with every server due at once (F5)");
    KeepPlace(*cmdStopWaiting);
    cmdStopWaiting->setVisible(false);
    addGap();
    add("cmdAddURL", "&Add", "mnuEditAddURL");
    add("cmdEditURL", "Ed&it", "mnuEditURL");
    add("cmdCopyPaste", "&Copy", "mnuEditCopyURL");
    add("cmdDeleteURL", "&Delete", "mnuEditDeleteURL");
    addGap();
    add("cmdSave", "Sa&ve", "mnuFileSave");
    add("cmdReports", "&Reports", "mnuFileReports");
    add("cmdSettings", "Settin&gs", "mnuOptions");
    add("cmdHelp", "Hel&p", "mnuHelpWeb");
    row->addStretch(1);
    return row;
}

// Both texts adapt to the window's width: a long one must not make it wider.
QLayout* frmMonitor::BuildProgress() {
    auto* row = new QHBoxLayout;
    lblCount = Named(new ElidedLabel, "lblCount", "State of the cycle");
    lblCo = Named(new ElidedLabel, "lblCo", "Running work");
    lblCo->setForegroundRole(QPalette::PlaceholderText);
    for (QLabel* label : {lblCount, lblCo})
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    ProgressBar1 = Named(new QProgressBar, "ProgressBar1", "Progress");
    ProgressBar1->setTextVisible(false);
    ProgressBar1->setMaximumHeight(fontMetrics().height());
    KeepPlace(*ProgressBar1);
    row->addWidget(lblCount, 3);
    row->addWidget(ProgressBar1, 3);
    row->addWidget(lblCo, 5);
    return row;
}

void frmMonitor::BuildStatusBar() {
    lblServers = Named(new QLabel, "lblServers", "Number of servers");
    lblServers->setText("0");  // after its name: what reads aloud asks for both only once
    lblCustomers = Named(new QLabel, "lblCustomers", "Number of companies");
    lblCustomers->setVisible(false);
    lblMail = Named(new ElidedLabel, "lblMail", "State of the mail");
    lblMail->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    lblMail->setVisible(false);
    lblTime = Named(new QLabel, "lblTime", "Time");
    statusBar()->addWidget(new QLabel("Servers:"));
    statusBar()->addWidget(lblServers);
    statusBar()->addWidget(lblCustomers);
    statusBar()->addWidget(lblMail, 1);
    statusBar()->addPermanentWidget(ResourceMarks());
    statusBar()->addPermanentWidget(lblTime);
}

// One mark for each window on this machine's own resources, set while that window is visible.
QWidget* frmMonitor::ResourceMarks() {
    auto* marks = new QWidget(this);
    auto* row = new QHBoxLayout(marks);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new QLabel("This machine:"));
    const struct {
        ResourceMonitor monitor;
        const char* name;
        const char* caption;
        const char* keys;
    } all[] = {{ResourceMonitor::CPU, "ckCPUMon", "CPU", "Ctrl+1"},
               {ResourceMonitor::Disk, "ckDiskMon", "Disks", "Ctrl+2"},
               {ResourceMonitor::Memory, "ckMemoryMon", "Memory", "Ctrl+3"},
               {ResourceMonitor::Services, "ckSvcMon", "Services", "Ctrl+4"}};
    for (const auto& [monitor, name, caption, keys] : all) {
        auto* mark = Named(new QCheckBox(caption), name, QString("Show the monitor of ") + caption);
        mark->setShortcut(QKeySequence(keys));
        mark->setToolTip(mark->accessibleName() + " (" + keys + ")");
        connect(mark, &QCheckBox::toggled, this, [this, monitor = monitor](bool on) { resources_->Show(monitor, on); });
        ckResources_[static_cast<std::size_t>(monitor)] = mark;
        row->addWidget(mark);
    }
    return marks;
}

// Only invisible: its place, the focus and the key remain.
void frmMonitor::ShowStopStart(bool shown) {
    const bool isShown = cmdStopStart->graphicsEffect() == nullptr;
    if (shown == isShown) return;
    auto* effect = shown ? nullptr : new QGraphicsOpacityEffect(cmdStopStart);
    if (effect != nullptr) effect->setOpacity(0);
    cmdStopStart->setGraphicsEffect(effect);
}

}  // namespace korvane
