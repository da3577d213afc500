#include "shell/desktop/editor/frm_set_entries.h"

#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "base/text.h"
#include "engine/server_table.h"
#include "platform/operator.h"
#include "shell/desktop/editor/group_completer.h"
#include "shell/entry/entry_hints.h"
#include "shell/entry/entry_history.h"
#include "shell/entry/entry_save.h"

namespace korvane {
namespace {

constexpr int kSetHelpLines = 3;
constexpr int kSetBoxCharacters = 52;

}  // namespace

frmSetEntries::frmSetEntries(const Desk& desk, const QString& title, const Fields& fields,
                             const std::vector<EntryFields>& entries,
                             std::function<void(const std::vector<EntryChange>& changes)> accepted, QWidget* parent)
    : FormDialog("frmSetEntries", title, parent),
      person_(desk.person),
      fields_(fields),
      accepted_(std::move(accepted)),
      inputs_(EntryInputs()) {
    content_->addWidget(NewLabel(
        "lblEntries", "For " + Q(CountedEntries(entries.size())) + ".  A box that is left as it is changes nothing.", this));
    QFormLayout& form = AddForm(*content_);
    for (const auto field : fields)
        AddInput(form, field, entries);
    content_->addStretch();
    AddStatus(kSetHelpLines);
    auto* buttons = new QDialogButtonBox(this);
    AddButton(*buttons, {"cmdOk", "O&K"}, QDialogButtonBox::AcceptRole, [this] { cmdOk_Click(); })->setDefault(true);
    AddButton(*buttons, {"cmdCancel", "&Cancel"}, QDialogButtonBox::RejectRole, [this] { reject(); });
    content_->addWidget(buttons);
    WatchForHelp();
    QLineEdit& first = *inputs_.Box(fields.front());
    SetStatus(S(HelpOn(first)));
    first.setFocus();
    if (std::ranges::find(fields, &EntryFields::strGroup) != fields.end())
        OfferGroups(*inputs_.Box(&EntryFields::strGroup), ExistingGroups(desk));
}

void frmSetEntries::AddInput(QFormLayout& form, std::string EntryFields::*field, const std::vector<EntryFields>& entries) {
    QLineEdit* box = inputs_.AddRow(form, field);
    const bool isCommon =
        std::ranges::all_of(entries, [&](const EntryFields& each) { return each.*field == entries.front().*field; });
    if (isCommon) box->setText(Q(entries.front().*field));
    if (!isCommon) box->setPlaceholderText("Several");
    box->selectAll();
    if (field != &EntryFields::nIntervalSeconds)
        return box->setMinimumWidth(fontMetrics().averageCharWidth() * kSetBoxCharacters);
    const auto inMinutes = [this, box, field] { inputs_.Unit(field)->setText(Q(IntervalInMinutes(S(box->text())))); };
    connect(box, &QLineEdit::textChanged, this, [this, box, inMinutes] {
        inMinutes();
        EntryFields typed;
        typed.nIntervalSeconds = S(box->text());
        typed.nTries = std::to_string(kNewTries);
        SetStatus(Or(ExplainNumbers(typed, kHighestPort), S(HelpOn(*box))));
    });
    inMinutes();
}

void frmSetEntries::cmdOk_Click() {
    std::vector<EntryChange> changes;
    for (const auto field : fields_) {
        QLineEdit& box = *inputs_.Box(field);
        if (!box.isModified()) continue;
        if (const std::string why = NumberRefusal(InputOf(field), S(box.text())); !why.empty()) {
            MarkRefused(box, Q(why));
            return person_.ShowMessage(kMessageTitle, why);
        }
        changes.emplace_back(field, S(box.text()));
    }
    const auto accepted = accepted_;
    accept();
    if (!changes.empty()) accepted(changes);
}

}  // namespace korvane
