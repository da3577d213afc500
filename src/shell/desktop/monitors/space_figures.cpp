#include "shell/desktop/monitors/space_figures.h"

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/desktop/toolkit/qt_text.h"

namespace korvane {

SpaceFigures::SpaceFigures(const QString& what, QWidget* parent)
    : QWidget(parent),
      rows_(new QFormLayout(this)),
      lblTotal_(NewFigure("lblTotal", "Total " + what, this)),
      lblUsed_(NewFigure("lblUsed", "Used " + what, this)),
      lblAvailable_(NewFigure("lblAvailable", "Available " + what, this)),
      pbShare_(new QProgressBar(this)),
      lblShare_(NewFigure("lblShare", "Available share of the " + what, this)) {
    rows_->setContentsMargins(0, 0, 0, 0);
    pbShare_->setObjectName("pbShare");
    pbShare_->setAccessibleName(lblShare_->accessibleName());
    pbShare_->setRange(0, 100);
    pbShare_->setTextVisible(false);
    rows_->addRow("Total:", lblTotal_);
    rows_->addRow("Used:", lblUsed_);
    rows_->addRow("Available:", lblAvailable_);
    rows_->addRow(pbShare_);
    rows_->addRow(lblShare_);
}

void SpaceFigures::SetFigures(const std::string& total, const std::string& used, const std::string& available,
                              const std::string& share, int percent) {
    lblTotal_->setText(Q(total));
    lblUsed_->setText(Q(used));
    lblAvailable_->setText(Q(available));
    lblShare_->setText(Q(share));
    pbShare_->setValue(percent);
}

}  // namespace korvane
