// The main window's commands on entries: the selected row, its editor, and the row that is selected afterwards.
#include <QClipboard>
#include <QGuiApplication>
#include <algorithm>

#include "shell/desktop/editor/frm_url_data.h"
#include "shell/desktop/main/frm_monitor.h"
#include "shell/run/message_title.h"
#include "shell/run/run.h"

namespace korvane {

void frmMonitor::cmdAddURL_Click() {
    if (!commands_->BeginAdd()) return;
    OpenEditor(true, "");
}

void frmMonitor::cmdEditURL_Click() {
    const std::string id = SelectedId();
    if (id.empty()) {
        ShowMessage(kMessageTitle, "Please click an entry in the list, then click edit.");
        return;
    }
    commands_->BeginEdit();
    OpenEditor(false, id);
}

// Only one editor at a time: while it is open the commands are disabled, but the tray menu and key events that were already
// queued are not.
void frmMonitor::OpenEditor(bool isAddUrl, const std::string& id) {
    if (editor_ != nullptr) return;
    SetIsAddUrl(isAddUrl);
    const int row = ListView1->currentIndex().row();
    const auto saved = [this, id, row] {
        RefreshURLList();
        Form_Resize();
        columns_->Fit();
        if (!id.empty()) SelectEntry(id);
        if (id.empty()) SelectRow(row);
    };
    auto* editor = new frmURLData(run_->TheDesk(), isAddUrl, id, saved, this);
    editor_ = editor;
    conversation_.SetParent(editor);
    connect(editor, &QDialog::finished, this, [this, isAddUrl] {
        SetIsAddUrl(false);
        conversation_.SetParent(this);
        if (!isAddUrl) commands_->EndEdit();
        RefreshURLList();
        ListView1->setFocus();
    });
    editor->open();
}

// Stopping rebuilds the list, perhaps in another order, so the entry is searched again; if it is gone, its row now belongs to
// another entry.
void frmMonitor::cmdDeleteURL_Click() {
    const int row = ListView1->currentIndex().row();
    const std::string id = SelectedId();
    commands_->DeleteURL(id, SelectedName(), [this, row, id] {
        const int same = model_->RowOf(id);
        SelectRow(same < 0 ? row : same);
        Form_Resize();
    });
}

void frmMonitor::cmdCopyPaste_Click() {
    const std::string copy = commands_->CopyURL(SelectedId());
    if (!copy.empty()) SelectEntry(copy);
}

// Copies the row as the list shows it, for a mail or a spreadsheet.
void frmMonitor::CopyRowText() {
    QStringList cells;
    for (int column = 0; column < column::Count; ++column)
        for (const QModelIndex& cell : ListView1->selectionModel()->selectedRows(column))
            cells.append(cell.data().toString());
    if (!cells.isEmpty()) QGuiApplication::clipboard()->setText(cells.join('\t'));
}

std::string frmMonitor::SelectedId() const {
    const QModelIndexList selected = ListView1->selectionModel()->selectedRows();
    return selected.isEmpty() ? "" : model_->Row(selected.first().row()).Id();
}

std::string frmMonitor::SelectedName() const {
    const QModelIndexList selected = ListView1->selectionModel()->selectedRows();
    return selected.isEmpty() ? "" : model_->Row(selected.first().row()).Name();
}

void frmMonitor::SelectRow(int row) {
    const int last = model_->rowCount() - 1;
    if (last < 0 || row < 0) return;
    ListView1->setCurrentIndex(model_->index(std::min(row, last), 0));
}

void frmMonitor::SelectEntry(const std::string& id) {
    SelectRow(model_->RowOf(id));
}

}  // namespace korvane
