#include "shell/desktop/main/entry_files.h"

#include <QFileDialog>
#include <QGridLayout>
#include <memory>
#include <utility>

#include "shell/desktop/main/frm_import.h"
#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/list/entry_csv.h"

namespace korvane {
namespace {

constexpr const char* kCsvFilter = "CSV files (*.csv);;All files (*)";

}  // namespace

QFileDialog* EntryFiles::Ask(const QString& title) {
    QFileDialog* dialog = NewFileDialog(title, &window_);
    dialog->setNameFilter(kCsvFilter);
    return dialog;
}

void EntryFiles::Export() {
    QFileDialog* dialog = Ask("Export Entries");
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix("csv");
    dialog->selectFile("entries.csv");
    QCheckBox* passwords = NewMark("ckPasswords", "Write &passwords too; everybody who reads the file can read them", dialog);
    auto* layout = static_cast<QGridLayout*>(dialog->layout());
    layout->addWidget(passwords, layout->rowCount(), 0, 1, -1);
    QObject::connect(dialog, &QFileDialog::fileSelected, &window_,
                     [this, passwords](const QString& file) { Write(S(file), passwords->isChecked()); });
    dialog->open();
}

void EntryFiles::Write(const std::string& file, bool withPasswords) {
    commands_.Do([&](EntryActs&) {
        desk_.files.Replace(file, ExportEntries(desk_, withPasswords));
        return "The entries were exported to " + file;
    });
}

void EntryFiles::Import() {
    QFileDialog* dialog = Ask("Import Entries");
    dialog->setFileMode(QFileDialog::ExistingFile);
    QObject::connect(dialog, &QFileDialog::fileSelected, &window_, [this](const QString& file) { Preview(S(file)); });
    dialog->open();
}

void EntryFiles::Preview(const std::string& file) {
    const auto plan = std::make_shared<ImportPlan>(PlanImportOf(desk_, file));
    const auto import = [this, plan] {
        commands_.Do([&](EntryActs&) {
            ImportEntries(desk_, *plan);
            return "Import: " + plan->Summary();
        });
    };
    (new frmImport(*plan, Q(file), import, &window_))->open();
}

}  // namespace korvane
