// The layout of the strip; its behaviour is in detail_strip.cpp.
#include <QAction>
#include <QHBoxLayout>
#include <algorithm>

#include "shell/desktop/glance/detail_strip.h"

namespace korvane {
namespace {

constexpr const char* kCloseKey = "Alt+X";

template <class Widget>
Widget* WithName(Widget* widget, const char* name, const QString& accessibleName) {
    widget->setObjectName(name);
    widget->setAccessibleName(accessibleName);
    return widget;
}

/// A button that looks like a link.
QPushButton* NewLink(const char* name, const QString& caption, const QString& accessibleName, const char* key, QWidget* parent) {
    auto* link = WithName(new QPushButton(caption, parent), name, accessibleName);
    link->setShortcut(QKeySequence(key));
    link->setToolTip(accessibleName + " (" + key + ")");
    link->setAutoDefault(false);
    link->setCursor(Qt::PointingHandCursor);
    link->setStyleSheet(
        "QPushButton { border: 1px solid transparent; background: none; color: palette(link); text-decoration: underline; "
        "padding: 0 1px; } QPushButton:focus { border-color: palette(link); border-radius: 2px; } "
        "QPushButton:disabled { color: palette(placeholder-text); }");
    return link;
}

QLabel* NewHeading(const QString& text, QWidget* parent) {
    auto* heading = new QLabel(text, parent);
    heading->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return heading;
}

template <class Layout>
Layout* WithoutMargins(Layout* layout) {
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    return layout;
}

}  // namespace

DetailStrip::DetailStrip(std::function<void()> close, QWidget* parent) : QFrame(parent) {
    WithName(this, "detailStrip", "Details of the selection");
    setFixedHeight(fontMetrics().lineSpacing() * kLines + 2 * fontMetrics().averageCharWidth());
    auto* columns = new QHBoxLayout(this);
    const int space = fontMetrics().averageCharWidth();
    columns->setContentsMargins(kEdge + 2 * space, space, space, space);
    columns->setSpacing(2 * space);
    imgState_ = new QLabel(this);
    txtDetail_ = new DetailText("txtDetail", "Details of the selected server", this);
    columns->addWidget(imgState_, 0, Qt::AlignTop);
    columns->addWidget(txtDetail_, 5);
    columns->addWidget(BuildTimes(), 4);
    columns->addWidget(BuildFailures(), 5);
    cmdClose_ = WithName(new QPushButton(QString(QChar(0x2715)), this), "cmdCloseDetail", "Hide the details");
    cmdClose_->setShortcut(QKeySequence(kCloseKey));
    cmdClose_->setToolTip(QString("Hides the details (%1); View, Show Details brings them back").arg(kCloseKey));
    cmdClose_->setAutoDefault(false);
    cmdClose_->setFlat(true);
    const int side = std::max(fontMetrics().height() + space, cmdClose_->minimumSizeHint().height());
    cmdClose_->setFixedSize(side, side);
    connect(cmdClose_, &QPushButton::clicked, this, [close = std::move(close)] { close(); });
    columns->addWidget(cmdClose_, 0, Qt::AlignTop);
    hide();
}

QWidget* DetailStrip::BuildTimes() {
    times_ = new QWidget(this);
    auto* rows = WithoutMargins(new QVBoxLayout(times_));
    auto* head = WithoutMargins(new QHBoxLayout);
    lblTimes_ = NewHeading("", times_);
    lblTimes_->setObjectName("lblTimes");
    cmdDays_ = NewLink("cmdDays", "", "Response times of the last 30 days", kDaysKey, times_);
    cmdDays_->setCheckable(true);
    connect(cmdDays_, &QPushButton::toggled, this, [this] { ShowTimes(); });
    head->addWidget(lblTimes_, 1);
    head->addWidget(cmdDays_);
    rows->addLayout(head);
    chart_ = WithName(new ResponseChart(times_), "chartTimes", "Response times");
    rows->addWidget(chart_, 1);
    times_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
    return times_;
}

QWidget* DetailStrip::BuildFailures() {
    failures_ = new QWidget(this);
    auto* rows = WithoutMargins(new QVBoxLayout(failures_));
    rows->addWidget(NewHeading("<b>Last failures</b>", failures_));
    txtFailures_ = new DetailText("txtFailures", "Last failures of the selected server", failures_);
    txtFailures_->setWordWrapMode(QTextOption::NoWrap);
    rows->addWidget(txtFailures_, 1);
    links_ = WithoutMargins(new QHBoxLayout);
    links_->setSpacing(fontMetrics().averageCharWidth());
    links_->addStretch(1);
    rows->addLayout(links_);
    failures_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
    return failures_;
}

void DetailStrip::AddLink(const char* name, const QString& caption, const QString& accessibleName, const char* key,
                          QAction& command) {
    QPushButton* const link = NewLink(name, caption, accessibleName, key, failures_);
    links_->insertWidget(links_->count() - 1, link);
    setTabOrder(link, cmdClose_);
    const auto follow = [link, &command] { link->setEnabled(command.isEnabled()); };
    follow();
    connect(&command, &QAction::changed, link, follow);
    connect(link, &QPushButton::clicked, &command, &QAction::trigger);
}

}  // namespace korvane
