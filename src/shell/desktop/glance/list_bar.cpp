#include "shell/desktop/glance/list_bar.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QSignalBlocker>

#include "shell/desktop/glance/state_colours.h"
#include "shell/desktop/toolkit/form_inputs.h"

namespace korvane {
namespace {

constexpr int kFindCharacters = 34;
constexpr int kLeastFindCharacters = 14;

/// Styles hardly show that a button is pressed for good.
constexpr const char* kPressedLook =
    "QPushButton:checked { background: palette(highlight); color: palette(highlighted-text); border: 1px solid "
    "palette(highlight); border-radius: 3px; } QPushButton:checked:focus { border-color: palette(text); }";

}  // namespace

ListBar::ListBar(QAction& problemsFirst, std::function<void()> changed, std::function<void()> leave, QWidget* parent)
    : QWidget(parent), changed_(std::move(changed)), leave_(std::move(leave)) {
    setObjectName("listBar");
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);  // it never makes the window wider
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    AddChips();
    lblShown_ = NewLabel("lblShown", "", this);
    cmdShowAll_ = NewButton("cmdShowAll", "Show a&ll", "Take the filter off and show all servers", this);
    cmdProblemsFirst_ = AddProblemsFirst(problemsFirst);
    for (QPushButton* button : {cmdShowAll_, cmdProblemsFirst_})
        button->setFocusPolicy(Qt::TabFocus);  // a click leaves the keyboard in the list
    txtFind_ = NewBox("txtFind", "Find servers", this);
    txtFind_->setPlaceholderText("Find (Ctrl+F)");
    txtFind_->setToolTip("Shows servers with these words in name, address, group, type, status or last response");
    txtFind_->setMinimumWidth(fontMetrics().averageCharWidth() * kLeastFindCharacters);
    txtFind_->setMaximumWidth(fontMetrics().averageCharWidth() * kFindCharacters);
    txtFind_->installEventFilter(this);
    connect(txtFind_, &QLineEdit::textChanged, this, [this] { changed_(); });
    connect(cmdShowAll_, &QPushButton::clicked, this, [this] {
        TakeFilterOff();
        leave_();
    });
    row->addWidget(lblShown_);
    row->addWidget(cmdShowAll_);
    row->addStretch(1);
    row->addWidget(cmdProblemsFirst_);
    row->addWidget(txtFind_, 100);
    lblShown_->hide();
    cmdShowAll_->hide();
}

void ListBar::AddChips() {
    int key = Qt::Key_1;
    for (std::size_t i = 0; i < chips_.size(); ++i) {
        StateChip* const chip = chips_.at(i) = new StateChip(kRowStates.at(i), this);
        chip->setShortcut(QKeySequence(Qt::ALT | static_cast<Qt::Key>(key++)));
        chip->setToolTip(chip->accessibleName() + " (" + chip->shortcut().toString(QKeySequence::NativeText) + ")");
        connect(chip, &StateChip::toggled, this, [this] { changed_(); });
        layout()->addWidget(chip);
    }
}

QPushButton* ListBar::AddProblemsFirst(QAction& problemsFirst) {
    QPushButton* const button = NewButton("cmdProblemsFirst", "Pro&blems First", "Show problems first", this);
    button->setToolTip("Shows servers that are DOWN first, then those that fail, the longest of each on top");
    button->setCheckable(true);
    button->setAutoDefault(false);
    button->setMinimumSize(button->sizeHint());
    button->setStyleSheet(kPressedLook);
    connect(button, &QPushButton::toggled, &problemsFirst, &QAction::setChecked);
    connect(&problemsFirst, &QAction::toggled, button, &QPushButton::setChecked);
    return button;
}

ListFilter ListBar::Filter() const {
    ListFilter filter{.states = {}, .text = S(txtFind_->text())};
    for (const StateChip* chip : chips_)
        if (chip->isChecked()) filter.states.insert(chip->State());
    return filter;
}

void ListBar::TakeFilterOff() {
    for (StateChip* chip : chips_) {
        const QSignalBlocker atOnce(chip);
        chip->setChecked(false);
    }
    const QSignalBlocker atOnce(txtFind_);
    txtFind_->clear();
    changed_();
}

void ListBar::Find() {
    txtFind_->setFocus(Qt::ShortcutFocusReason);
    txtFind_->selectAll();
}

void ListBar::SetCounts(const StateCounts& counts) {
    if (counts == counts_) return;
    counts_ = counts;
    for (std::size_t i = 0; i < chips_.size(); ++i)
        chips_.at(i)->SetCount(counts.at(i));
    Fit();
}

void ListBar::SetShown(int shown, int all) {
    const bool filtered = Filter().IsOn();
    if (filtered != cmdShowAll_->isHidden() && shown == shown_ && all == all_) return;
    shown_ = shown;
    all_ = all;
    lblShown_->setVisible(filtered);
    cmdShowAll_->setVisible(filtered);
    Fit();
}

// The box is left by Escape, which clears it, and by the keys that go down into what was found.
bool ListBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched != txtFind_ || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape) txtFind_->clear();
    if (key != Qt::Key_Escape && key != Qt::Key_Down && key != Qt::Key_Return && key != Qt::Key_Enter) return false;
    leave_();
    return true;
}

void ListBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Fit();
}

void ListBar::Fit() {
    SetCompact(false);
    if (layout()->minimumSize().width() > width()) SetCompact(true);
}

void ListBar::SetCompact(bool compact) {
    for (StateChip* chip : chips_)
        chip->SetCompact(compact);
    lblShown_->setText(QString(compact ? "%1 of %2" : "showing %1 of %2").arg(shown_).arg(all_));
}

}  // namespace korvane
