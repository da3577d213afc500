#include "shell/desktop/main/entry_commands.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMouseEvent>
#include <algorithm>
#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/entry/entry_history.h"

namespace korvane {
namespace {

using Rows = std::vector<ServerRow>;

bool Any(const Rows& rows) {
    return !rows.empty();
}
bool One(const Rows& rows) {
    return rows.size() == 1;
}
bool AnyMonitored(const Rows& rows) {
    return std::ranges::any_of(rows, &ServerRow::isMonitored);
}
bool AnyPaused(const Rows& rows) {
    return !std::ranges::all_of(rows, &ServerRow::isMonitored);
}
std::string PageOf(const ServerRow& row) {
    return PageOfEntry(row.cells[column::Type], row.strAddress_IP, row.cells[column::Port]);
}
bool OnePage(const Rows& rows) {
    return One(rows) && !PageOf(rows.front()).empty();
}
bool OneWithResponse(const Rows& rows) {
    return One(rows) && !Trim(rows.front().cells[column::LastResponse]).empty();
}

/// A click beside the rows leaves the selection as it is.
class KeepsSelection : public QObject {
public:
    explicit KeepsSelection(QTreeView& list) : QObject(&list), list_(list) { list.viewport()->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::MouseButtonPress) return QObject::eventFilter(watched, event);
        return !list_.indexAt(static_cast<QMouseEvent*>(event)->position().toPoint()).isValid();
    }

private:
    QTreeView& list_;
};

}  // namespace

EntryCommands::EntryCommands(const Desk& desk, MonitorCommands& commands, QTreeView& list, ServerListModel& model,
                             std::function<void(const std::string& id)> made)
    : desk_(desk), commands_(commands), list_(list), model_(model), made_(std::move(made)) {
    new KeepsSelection(list);
}

const std::vector<EntryCommands::Command>& EntryCommands::All() {
    using Self = EntryCommands;
    using enum CommandPicture;
    const auto none = std::nullopt;
    static const std::vector<Command> all{
        {"mnuEntryCheckNow", "Check &Now", "Shift+F5", StartNow, &Self::CheckNow, AnyMonitored},
        {"mnuEntryPause", "Pa&use", "", Stop, &Self::Pause, AnyMonitored},
        {"mnuEntryResume", "Resu&me", "", Start, &Self::Resume, AnyPaused},
        {""},
        {"mnuEntryOpenAddress", "&Open Address", "Ctrl+O", none, &Self::OpenAddress, OnePage},
        {"mnuEntryReport", "&Report", "", Reports, &Self::Report, One},
        {"mnuEntryLastResponse", "&Last Response", "", none, &Self::LastResponse, OneWithResponse},
        {"mnuEntryLastTraceroute", "Last &Traceroute", "", none, &Self::LastTraceroute, One},
        {""},
        {"mnuEntryCopyText", "Copy Te&xt", "Ctrl+C", none, &Self::CopyText, Any},
        {"mnuEntryDuplicate", "Dupl&icate", "Ctrl+Shift+D", Copy, &Self::Duplicate, One},
        {""},
        {"mnuEntrySetInterval", "Set Inter&val...", "", none, &Self::SetInterval, Any},
        {"mnuEntrySetGroup", "Set &Group...", "", none, &Self::SetGroup, Any},
        {"mnuEntrySetRecipients", "&Set Recipients...", "", Mail, &Self::SetRecipients, Any},
    };
    return all;
}

void EntryCommands::Enable(const std::map<std::string, QAction*>& actions) const {
    const Rows selected = Selected();
    for (const Command& each : All())
        if (*each.name != '\0') actions.at(each.name)->setEnabled(each.makesSense(selected));
}

void EntryCommands::SelectOnly(QTreeView& list, int row) {
    list.selectionModel()->setCurrentIndex(list.model()->index(row, 0),
                                           QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

Rows EntryCommands::Selected() const {
    QModelIndexList cells = list_.selectionModel()->selectedRows();
    std::ranges::sort(cells, {}, &QModelIndex::row);
    Rows rows;
    for (const QModelIndex& cell : cells)
        rows.push_back(model_.Row(cell.row()));
    return rows;
}

EntryActs::Ids EntryCommands::Ids() const {
    EntryActs::Ids ids;
    for (const ServerRow& row : Selected())
        ids.push_back(row.Id());
    return ids;
}

void EntryCommands::CheckNow() {
    commands_.CheckNow(Ids());
}

void EntryCommands::Pause() {
    commands_.Do([this](EntryActs& acts) { return acts.Pause(Ids()); });
}

void EntryCommands::Resume() {
    commands_.Do([this](EntryActs& acts) { return acts.Resume(Ids()); });
}

void EntryCommands::OpenAddress() {
    desk_.pages.OpenAddress(PageOf(Selected().front()));
}

void EntryCommands::Report() {
    desk_.reports.DisplayReport("0", Selected().front().cells[column::Group]);
}

void EntryCommands::LastResponse() {
    const ServerRow row = Selected().front();
    ShowLastResponse(desk_, row.cells[column::FullName], row.cells[column::LastResponse]);
}

void EntryCommands::LastTraceroute() {
    const ServerRow row = Selected().front();
    ShowLastTraceroute(desk_, row.Id(), row.cells[column::FullName]);
}

// Copies the rows as the list shows them, for a mail or a spreadsheet.
void EntryCommands::CopyText() {
    QStringList lines;
    for (const ServerRow& row : Selected()) {
        QStringList cells;
        for (int column = 0; column < column::Count; ++column)
            cells.append(model_.index(model_.RowOf(row.Id()), column).data().toString());
        lines.append(cells.join('\t'));
    }
    if (!lines.isEmpty()) QGuiApplication::clipboard()->setText(lines.join('\n'));
}

void EntryCommands::Duplicate() {
    const std::string copy = commands_.Duplicate(Selected().front().Id());
    if (!copy.empty()) made_(copy);
}

void EntryCommands::SetInterval() {
    Set("Set Interval", {&EntryFields::nIntervalSeconds});
}

void EntryCommands::SetGroup() {
    Set("Set Group", {&EntryFields::strGroup});
}

void EntryCommands::SetRecipients() {
    Set("Set Recipients", {&EntryFields::strEmailList1, &EntryFields::strEmailList2});
}

void EntryCommands::Set(const QString& title, const frmSetEntries::Fields& fields) {
    std::vector<EntryFields> entries;
    IgnoreErrors([&] { entries = EntryActs(desk_).Read(Ids(), fields); });
    if (entries.empty()) return desk_.person.ShowMessage(kMessageTitle, "The selected entries could not be read.");
    const auto accepted = [this, ids = Ids()](const std::vector<EntryChange>& changes) {
        commands_.Do([&](EntryActs& acts) { return acts.Set(ids, changes); });
    };
    (new frmSetEntries(desk_, title, fields, entries, accepted, list_.window()))->open();
}

}  // namespace korvane
