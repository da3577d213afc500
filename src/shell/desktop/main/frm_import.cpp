#include "shell/desktop/main/frm_import.h"

#include <QHeaderView>
#include <QPushButton>
#include <QScreen>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "shell/desktop/look/icons.h"
#include "shell/desktop/toolkit/cut_cell_tips.h"
#include "shell/desktop/toolkit/form_inputs.h"

namespace korvane {
namespace {

constexpr int kImportCharacters = 110;
constexpr int kRefusalCharacters = 60;
constexpr int kImportRows = 14;

struct StepLook {
    ImportStep step;
    const char* word;
    RowIcon icon;
};
/// Those that are listed, in the order of the list: what must be corrected comes first.
constexpr StepLook kImportSteps[] = {{ImportStep::Refused, "Refused", RowIcon::Bad},
                                     {ImportStep::Added, "Added", RowIcon::Good},
                                     {ImportStep::Changed, "Changed", RowIcon::Warn}};

QString WhatFollows(const ImportPlan& plan) {
    if (!plan.refusal.empty()) return "Nothing of this file can be used.  " + Q(plan.refusal);
    if (plan.Count(ImportStep::Refused) > 0) return "Nothing is imported as long as a line is refused.";
    return plan.CanImport() ? "Nothing has been changed yet.  The import changes all of this or nothing."
                            : "There is nothing to change.";
}

}  // namespace

frmImport::frmImport(const ImportPlan& plan, const QString& file, std::function<void()> accepted, QWidget* parent)
    : FormDialog("frmImport", "Import Entries", parent) {
    setSizeGripEnabled(true);
    QLabel* lblSummary = NewFigure("lblSummary", "What the import would change", this);
    lblSummary->setText(Q(plan.Summary()));
    QFont bold = lblSummary->font();
    bold.setBold(true);
    lblSummary->setFont(bold);
    QLabel* lblFile = NewFigure("lblFile", "File", this);
    lblFile->setText(file);
    QLabel* lblFollows = NewFigure("lblFollows", "What follows", this);
    lblFollows->setText(WhatFollows(plan));
    for (QLabel* each : {lblFile, lblSummary, lblFollows}) {
        each->setWordWrap(true);
        content_->addWidget(each);
    }
    lblSummary->setVisible(plan.refusal.empty());
    if (plan.rows.empty()) lblFollows->setMinimumWidth(fontMetrics().averageCharWidth() * kRefusalCharacters);
    if (!plan.rows.empty()) content_->addWidget(Rows(plan), 1);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* import =
        AddButton(*buttons, {"cmdImport", "&Import"}, QDialogButtonBox::AcceptRole, [this, accepted = std::move(accepted)] {
            const auto begin = accepted;
            accept();
            begin();
        });
    QPushButton* cancel = AddButton(*buttons, {"cmdCancel", "&Cancel"}, QDialogButtonBox::RejectRole, [this] { reject(); });
    import->setEnabled(plan.CanImport());
    (plan.CanImport() ? import : cancel)->setDefault(true);
    (plan.CanImport() ? import : cancel)->setFocus();
    content_->addWidget(buttons);
}

QTreeWidget* frmImport::Rows(const ImportPlan& plan) {
    auto* rows = new QTreeWidget(this);
    rows->setObjectName("lstRows");
    rows->setAccessibleName("Lines of the file that are not unchanged");
    rows->setHeaderLabels({"Import", "Line", "Entry", "Details"});
    rows->setRootIsDecorated(false);
    rows->setUniformRowHeights(true);
    rows->setAlternatingRowColors(true);
    rows->setTabKeyNavigation(false);
    rows->setItemDelegate(new CutCellTips(rows));
    for (const StepLook& look : kImportSteps)
        for (const ImportRow& each : plan.rows) {
            if (each.step != look.step) continue;
            auto* item =
                new QTreeWidgetItem(rows, {look.word, QString::number(each.line), Q(each.name), Q(each.details).simplified()});
            item->setIcon(0, StateIcon(look.icon));
            item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
            item->setToolTip(3, Q(each.details).toHtmlEscaped());
        }
    for (int column = 0; column < 3; ++column)
        rows->resizeColumnToContents(column);
    const QFontMetrics& font = rows->fontMetrics();
    rows->setColumnWidth(2, std::min(rows->columnWidth(2), font.averageCharWidth() * kImportCharacters / 4));
    rows->setMinimumHeight(font.height() * 5);
    resize(QSize(font.averageCharWidth() * kImportCharacters, font.height() * kImportRows * 2)
               .boundedTo(screen()->availableSize() * 9 / 10));
    return rows;
}

}  // namespace korvane
