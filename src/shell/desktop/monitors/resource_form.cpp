#include "shell/desktop/monitors/resource_form.h"

#include <QApplication>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/form_inputs.h"

namespace korvane {
namespace {

constexpr const char* kExpand = "&Settings >>";
constexpr const char* kShrink = "<< &Settings";
constexpr const char* kNote =
    "Note: %1 Monitoring will be active even if this window is closed. To stop monitoring check 'Disable This Alert'";
constexpr const char* kNoAddress = "A test needs an address with an \"@\" and a \".\"";
constexpr int kNoteCharacters = 48;
constexpr int kLevelStep = 5;
constexpr int kLastLevel = 100;

/// The value in a file stays, even if it is not one of those offered.
void Select(QComboBox& box, const std::string& text) {
    if (S(box.currentText()) == text) return;
    const QSignalBlocker quiet(box);
    if (box.findText(Q(text)) < 0) box.addItem(Q(text));
    box.setCurrentIndex(box.findText(Q(text)));
}

}  // namespace

std::vector<std::string> ResourceForm::OfferedLevels() {
    std::vector<std::string> levels;
    for (int level = kLevelStep; level <= kLastLevel; level += kLevelStep)
        levels.push_back(std::to_string(level));
    return levels;
}

// The desktop places what it considers a dialog in the middle of the screen, each over the previous one.
ResourceForm::ResourceForm(const char* name, const QString& title)
    : QDialog(nullptr, Qt::Window), layout_(new QVBoxLayout(this)) {
    setObjectName(name);
    setWindowTitle(title);
    setSizeGripEnabled(true);
}

void ResourceForm::AddFigures(QWidget* figures, QWidget* rest) {
    layout_->addWidget(figures);
    if (rest != nullptr) layout_->addWidget(rest, 1);
    auto* row = new QHBoxLayout;
    cmdExpand_ = NewButton("cmdExpand", kExpand, "Settings", this);
    cmdExpand_->setCheckable(true);
    cmdExpand_->setAutoDefault(false);
    connect(cmdExpand_, &QPushButton::toggled, this, [this](bool expand) { cmdExpand_Click(expand); });
    row->addWidget(cmdExpand_);
    row->addStretch();
    layout_->addLayout(row);
    fraSettings_ = new QGroupBox(this);
    fraSettings_->setObjectName("fraSettings");
    fraSettings_->setAccessibleName("Settings of the alert");
    fraSettings_->setVisible(false);
    form_ = new QFormLayout(fraSettings_);
    form_->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    layout_->addWidget(fraSettings_);
}

void ResourceForm::AddChoice(const char* name, const QString& label, const std::vector<std::string>& offered, std::string& text) {
    auto* box = new QComboBox(fraSettings_);
    box->setObjectName(name);
    box->setAccessibleName(QString(label).remove('&').remove(':'));
    box->addItem("");
    for (const std::string& each : offered)
        box->addItem(Q(each));
    connect(box, &QComboBox::currentTextChanged, this, [this, &text](const QString& chosen) {
        text = S(chosen);
        ShowFigures();
    });
    choices_.emplace_back(box, &text);
    auto* row = new QHBoxLayout;
    row->addWidget(box);
    row->addStretch();
    AddRow(*form_, label, "", box, row);
}

void ResourceForm::AddMark(const char* name, const QString& text, bool& on) {
    QCheckBox* mark = NewMark(name, text, fraSettings_);
    connect(mark, &QCheckBox::toggled, this, [this, &on](bool checked) {
        on = checked;
        ShowFigures();
    });
    marks_.emplace_back(mark, &on);
    form_->addRow(mark);
}

void ResourceForm::AddAlert(const QString& what) {
    AlertMonitor& monitor = Monitor();
    txtEmail_ = NewBox("txtEmail", "Address to notify", fraSettings_);
    txtEmail_->setPlaceholderText("that of the first server");
    connect(txtEmail_, &QLineEdit::textEdited, this, [&monitor](const QString& text) { monitor.txtEmail = S(text); });
    AddRow(*form_, "&Notify:", "", txtEmail_);
    AddMark("ckDisable", "&Disable This Alert", monitor.ckDisable);
    auto* note = NewExplanation(QString(kNote).arg(what), fraSettings_);
    note->setMinimumWidth(fontMetrics().averageCharWidth() * kNoteCharacters);
    form_->addRow(note);
    AddCommands();
    setMinimumWidth(fraSettings_->sizeHint().width() + 2 * layout()->contentsMargins().left());
    monitor.OnChanged([this] { Refresh(); });
    monitor.OnFocusEmail([this] { MarkRefused(*txtEmail_, kNoAddress); });
    Refresh();
}

void ResourceForm::AddCommands() {
    auto* row = new QHBoxLayout;
    row->addStretch();
    const auto add = [&](const char* name, const QString& caption, CommandPicture picture, const std::function<void()>& command) {
        QPushButton* button = NewButton(name, caption, QString(caption).remove('&'), fraSettings_);
        button->setIcon(CommandIcon(picture));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, command);
        row->addWidget(button);
        return button;
    };
    add("cmdSave", "Sa&ve", CommandPicture::Save, [this] { Monitor().cmdSave(); });
    cmdTest_ = add("cmdTest", "&Test Email", CommandPicture::Mail, [this] { Monitor().cmdTest(); });
    form_->addRow(row);
}

void ResourceForm::Refresh() {
    ShowFigures();
    for (const auto& [box, text] : choices_)
        Select(*box, *text);
    for (const auto& [mark, on] : marks_)
        mark->setChecked(*on);
    const QString email = Q(Monitor().txtEmail);
    if (txtEmail_->text() != email) txtEmail_->setText(email);
    cmdTest_->setEnabled(Monitor().TestEnabled());
}

// The window grows and shrinks by the height of its settings, so that the figures keep their size; if the screen is too small,
// they shrink.
void ResourceForm::cmdExpand_Click(bool expand) {
    cmdExpand_->setText(expand ? kShrink : kExpand);
    const QRect room = screen()->availableGeometry();
    const int before = height();
    const int most = room.height() - (frameGeometry().height() - before);
    const int needed = fraSettings_->sizeHint().height() + layout_->spacing();
    fraSettings_->setVisible(expand);
    layout_->activate();
    resize(width(), expand ? std::min(before + needed, most) : before - grown_);
    grown_ = height() - before;
    const int lowest = room.bottom() + 1 - frameGeometry().height();
    if (expand && y() > lowest) move(x(), std::max(room.top(), lowest));
}

// QDialog's own version would also move the window to the middle.
void ResourceForm::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (event->spontaneous()) return;
    leftForMessage_ = false;
    Monitor().Shown();
}

void ResourceForm::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (event->spontaneous()) return;
    move(pos());  // so that it reappears there
    if (hidden_) hidden_();
}

// An operator who returns from one of the program's own messages has not been away.
void ResourceForm::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || txtEmail_ == nullptr) return;
    if (!isActiveWindow()) {
        leftForMessage_ = QApplication::activeModalWidget() != nullptr;
    } else if (!std::exchange(leftForMessage_, false)) {
        TakeMarkAway(*txtEmail_);
        Monitor().LoadData();
    }
}

}  // namespace korvane
