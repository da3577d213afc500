// The editor's reactions to changes of its inputs and to the focus.
#include <QComboBox>
#include <QEvent>
#include <QSignalBlocker>
#include <algorithm>

#include "base/raised_flag.h"
#include "engine/machine_restart.h"
#include "platform/operator.h"
#include "shell/desktop/editor/frm_url_data.h"
#include "shell/entry/entry_hints.h"
#include "shell/entry/entry_type.h"

namespace korvane {
namespace {

/// Why a box whose value the type determines cannot be changed, and what to do about it.
struct FixedBox {
    std::string EntryFields::*field;
    const char* message;
};
constexpr FixedBox kFixedBoxes[] = {
    {&EntryFields::strPort,
     "The port of a pre-defined server type is fixed.\r\n\r\n"
     "Choose the server type \"Other Port\" if you want to use a port of your own."},
    {&EntryFields::strRequestText,
     "The request of a pre-defined server type is fixed.\r\n\r\n"
     "Choose the server type \"Other Port\" if you want to use a request of your own."},
    {&EntryFields::strExpectedText,
     "The expected response of a pre-defined server type is fixed.\r\n\r\n"
     "Choose the server type \"Other Port\", \"HTTP\" or \"HTTPS\" if you want to expect a text of your own."}};

}  // namespace

void frmURLData::ConnectTyping() {
    const auto onChange = [this](std::string EntryFields::*field, auto react) {
        connect(inputs_.Box(field), &QLineEdit::textChanged, this, [this, react] {
            if (!loading_) react();
        });
    };
    onChange(&EntryFields::strAddress_IP, [this] { NameChanged(); });
    onChange(&EntryFields::nTimeout, [this] { TimeoutChanged(); });
    onChange(&EntryFields::strExpectedText, [this] { SetStatus(ExplainExpectedText(Read())); });
    onChange(&EntryFields::strDesc, [this] { SetStatus(ExplainDisplayName(Read())); });
    for (const EntryDownTime& each : kDownTimes) {
        const auto explain = [this, each] { SetStatus(ExplainDownTime(Read().*each.time, Read().*each.minutes)); };
        onChange(each.time, explain);
        onChange(each.minutes, explain);
    }
    // The label must match the number even while it is being loaded.
    connect(inputs_.Box(&EntryFields::nIntervalSeconds), &QLineEdit::textChanged, this, [this](const QString& seconds) {
        inputs_.Unit(&EntryFields::nIntervalSeconds)->setText(Q(IntervalInMinutes(S(seconds))));
    });
    connect(cmbType_, &QComboBox::currentIndexChanged, this, [this] {
        if (!loading_) TypeChanged();
    });
    for (const FixedBox& each : kFixedBoxes)
        inputs_.Label(each.field)->installEventFilter(this);
}

void frmURLData::NameChanged() {
    QLineEdit& box = *txtAddress_IP_;
    const QString typed = box.text();
    const QString name = Q(CleanTypedName(S(typed)));
    if (name != typed) {
        const auto afterCursor = typed.size() - box.cursorPosition();
        const QSignalBlocker quiet(box);
        box.setText(name);
        box.setCursorPosition(static_cast<int>(std::max<qsizetype>(name.size() - afterCursor, 0)));
    }
    setWindowTitle("Server Settings for " + name);
}

void frmURLData::TimeoutChanged() {
    QLineEdit& box = *inputs_.Box(&EntryFields::nTimeout);
    const auto repaired = RepairedTimeout(S(box.text()));
    if (!repaired) return;
    const QSignalBlocker quiet(box);
    box.setText(Q(*repaired));
    box.selectAll();  // the next typed text replaces it
}

void frmURLData::TypeChanged() {
    const RaisedFlag loading(loading_);
    const RaisedFlag typeChanged(typeChanged_);
    EntryFields fields = Read();
    fields.strExpectedText = HasFreeExpectedText(fields.strType) ? savedExpectedText_ : "";
    InitServerTypes(fields);
}

void frmURLData::RestartToggled(bool restart) {
    QLineEdit& box = *txtCMD_;
    if (!restart) return box.setText(savedCommand_);
    savedCommand_ = box.text();
    const std::string command = getShudownEXEPath(desk_.files) + " -r -f";
    box.setText(Q(command));
    desk_.person.ShowMessage(kMessageTitle, "The command " + command +
                                                " is the command that will shutdown and restart THIS computer.  "
                                                "This command only works with Windows NT,XP,2000,2003");
}

bool frmURLData::ExplainFixedBox(const QObject* label) {
    for (const FixedBox& each : kFixedBoxes) {
        if (inputs_.Label(each.field) != label || inputs_.Box(each.field)->isEnabled()) continue;
        desk_.person.ShowMessage(kMessageTitle, each.message);
        return true;
    }
    return false;
}

bool frmURLData::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease && ExplainFixedBox(watched)) return true;
    // The wheel is for scrolling past; a type changed by it would go unnoticed.
    if (event->type() == QEvent::Wheel && watched == cmbType_ && !cmbType_->hasFocus()) return true;
    return TabbedDialog::eventFilter(watched, event);
}

}  // namespace korvane
