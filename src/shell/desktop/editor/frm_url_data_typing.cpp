// The editor's reactions to changes of its inputs and to the focus.
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QToolButton>
#include <algorithm>

#include "base/raised_flag.h"
#include "engine/machine_restart.h"
#include "shell/desktop/editor/frm_url_data.h"
#include "shell/desktop/editor/frm_url_data_pages.h"
#include "shell/desktop/editor/frm_url_data_server_page.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/entry/entry_hints.h"
#include "shell/entry/entry_name.h"
#include "shell/run/message_title.h"

namespace korvane {

void frmURLData::ConnectTyping() {
    const auto onChange = [this](QLineEdit* box, auto react) {
        connect(box, &QLineEdit::textChanged, this, [this, react] {
            if (!loading_) react();
        });
    };
    onChange(server_->txtAddress_IP, [this] { NameChanged(); });
    onChange(server_->txtTimeout, [this] { TimeoutChanged(); });
    onChange(server_->txtExpectedText, [this] { SetStatus(ExplainExpectedText(Read())); });
    onChange(server_->txtDesc, [this] { SetStatus(ExplainDisplayName(Read())); });
    for (QLineEdit* box : {inputs_.Box(&EntryFields::strDownTime1), inputs_.Box(&EntryFields::nDownDuration1)})
        onChange(box, [this] { SetStatus(ExplainDownTime(Read().strDownTime1, Read().nDownDuration1)); });
    for (QLineEdit* box : {inputs_.Box(&EntryFields::strDownTime2), inputs_.Box(&EntryFields::nDownDuration2)})
        onChange(box, [this] { SetStatus(ExplainDownTime(Read().strDownTime2, Read().nDownDuration2)); });
    // The label must match the number even while it is being loaded.
    connect(server_->txtIntervalSeconds, &QLineEdit::textChanged, this,
            [this](const QString& seconds) { server_->lblInterval->setText(Q(IntervalInMinutes(S(seconds)))); });
    connect(server_->cmbType, &QComboBox::currentIndexChanged, this, [this] {
        if (!loading_) TypeChanged();
    });
    connect(commands_->ckRestart, &QCheckBox::toggled, this, [this](bool restart) { RestartToggled(restart); });
    connect(tabPages_, &QTabWidget::currentChanged, this,
            [this](int page) { SetStatus(HelpOnPage(S(tabPages_->tabText(page)))); });
}

void frmURLData::NameChanged() {
    QLineEdit& box = *server_->txtAddress_IP;
    const QString typed = box.text();
    const QString name = Q(CleanTypedName(S(typed)));
    if (name != typed) {
        const auto behind = typed.size() - box.cursorPosition();
        const QSignalBlocker quiet(box);
        box.setText(name);
        box.setCursorPosition(static_cast<int>(std::max<qsizetype>(name.size() - behind, 0)));
    }
    setWindowTitle("Server Settings for " + name);
}

void frmURLData::TimeoutChanged() {
    QLineEdit& box = *server_->txtTimeout;
    const auto mended = MendedTimeout(S(box.text()));
    if (!mended) return;
    const QSignalBlocker quiet(box);
    box.setText(Q(*mended));
    box.selectAll();  // the next typed text replaces it
}

void frmURLData::TypeChanged() {
    const RaisedFlag loading(loading_);
    const RaisedFlag typeChanged(typeChanged_);
    EntryFields fields = Read();
    fields.strExpectedText = HasFreeExpectedText(fields.strType) ? savedExpectedText_ : "";
    InitServerTypes(fields, false);
}

void frmURLData::RestartToggled(bool restart) {
    QLineEdit& box = *commands_->txtCMD;
    if (!restart) return box.setText(savedCommand_);
    savedCommand_ = box.text();
    const std::string command = getShudownEXEPath(desk_.files) + " -r -f";
    box.setText(Q(command));
    desk_.person.ShowMessage(kMessageTitle, "The command " + command +
                                                " is the command that will shutdown and restart THIS computer.  "
                                                "This command only works with Windows NT,XP,2000,2003");
}

void frmURLData::WatchFixedBoxes() {
    for (QLabel* label : {server_->lblPort, server_->lblRequest, server_->lblExpected})
        label->installEventFilter(this);
}

bool frmURLData::ExplainFixedBox(const QObject* label) {
    const struct {
        QLabel* label;
        std::string_view message;
    } explanations[] = {{server_->lblPort, kFixedPortMessage},
                        {server_->lblRequest, kFixedRequestMessage},
                        {server_->lblExpected, kFixedExpectedTextMessage}};
    for (const auto& each : explanations) {
        if (each.label != label || each.label->buddy()->isEnabled()) continue;
        desk_.person.ShowMessage(kMessageTitle, std::string(each.message));
        return true;
    }
    return false;
}

bool frmURLData::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease && ExplainFixedBox(watched)) return true;
    // The wheel is for scrolling past; a type changed by it would go unnoticed.
    if (event->type() == QEvent::Wheel && watched == server_->cmbType && !server_->cmbType->hasFocus()) return true;
    return TabbedDialog::eventFilter(watched, event);
}

}  // namespace korvane
