#include "shell/desktop/frm_url_data_inputs.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <algorithm>

#include "shell/desktop/qt_text.h"
#include "shell/entry_hints.h"

namespace korvane {
namespace {

constexpr int kShortCharacters = 10;

/// Red that stands out from this background.
QColor MarkColour(const QPalette& palette) {
    return QColor::fromHsv(0, 200, palette.color(QPalette::Base).lightness() < 128 ? 255 : 200);
}

void TakeMarkAway(QLineEdit& box) {
    box.setStyleSheet(QString());
    box.setAccessibleDescription(Q(HelpOnInput(S(box.objectName()))));
    box.setToolTip(QString());
}

}  // namespace

QLineEdit* EntryInputs::AddBox(std::string EntryFields::*field, const char* name, const QString& accessibleName, QWidget* page) {
    auto* box = new QLineEdit(page);
    box->setObjectName(name);
    box->setAccessibleName(accessibleName);
    boxes_.emplace_back(field, box);
    return box;
}

QCheckBox* EntryInputs::AddMark(bool EntryFields::*field, const char* name, const QString& text, QWidget* page) {
    auto* mark = new QCheckBox(text, page);
    mark->setObjectName(name);
    mark->setAccessibleName(QString(text).remove('&'));
    marks_.emplace_back(field, mark);
    return mark;
}

QLineEdit* EntryInputs::Box(std::string EntryFields::*field) const {
    const auto found = std::find_if(boxes_.begin(), boxes_.end(), [&](const auto& each) { return each.first == field; });
    return found == boxes_.end() ? nullptr : found->second;
}

void EntryInputs::Fill(const EntryFields& fields) const {
    for (const auto& [field, box] : boxes_) {
        box->setText(Q(fields.*field));
        box->setCursorPosition(0);
    }
    for (const auto& [field, mark] : marks_)
        mark->setChecked(fields.*field);
}

EntryFields EntryInputs::Read() const {
    EntryFields fields;
    for (const auto& [field, box] : boxes_)
        fields.*field = S(box->text());
    for (const auto& [field, mark] : marks_)
        fields.*field = mark->isChecked();
    return fields;
}

void MarkRefused(QLineEdit& box, const QString& why) {
    const QString colour = MarkColour(box.palette()).name();
    box.setStyleSheet("QLineEdit { border: 2px solid " + colour + "; border-radius: 3px; padding: 1px; }");
    box.setAccessibleDescription(why);
    box.setToolTip(why);
    box.setFocus();
    box.selectAll();
    QObject::connect(
        &box, &QLineEdit::textChanged, &box, [&box] { TakeMarkAway(box); }, Qt::SingleShotConnection);
}

QFormLayout* NewForm(const QWidget* page) {
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setVerticalSpacing(page->fontMetrics().height() / 2);
    return form;
}

// With a vertical spacing of its own a form hands none on to the rows in it.
QHBoxLayout* NewRow(std::initializer_list<QWidget*> widgets) {
    auto* row = new QHBoxLayout;
    row->setSpacing((*widgets.begin())->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing));
    for (QWidget* widget : widgets)
        row->addWidget(widget);
    return row;
}

QLabel* AddRow(QFormLayout& form, const QString& text, const char* name, QWidget* box) {
    auto* label = new QLabel(text, form.parentWidget());
    label->setObjectName(name);
    label->setBuddy(box);
    form.addRow(label, box);
    return label;
}

QLabel* AddRow(QFormLayout& form, const QString& text, const char* name, QWidget* box, QLayout* row) {
    auto* label = new QLabel(text, form.parentWidget());
    label->setObjectName(name);
    label->setBuddy(box);
    form.addRow(label, row);
    return label;
}

void KeepShort(QLineEdit& box) {
    box.setFixedWidth(box.fontMetrics().averageCharWidth() * kShortCharacters + box.sizeHint().height());
}

QLabel* NewExplanation(const QString& text, QWidget* page) {
    auto* label = new QLabel(text, page);
    label->setWordWrap(true);
    return label;
}

}  // namespace korvane
