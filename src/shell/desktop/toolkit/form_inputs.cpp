#include "shell/desktop/toolkit/form_inputs.h"

#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>

namespace korvane {
namespace {

constexpr int kShortCharacters = 10;
constexpr const char* kDescription = "unmarkedDescription";
constexpr const char* kHelp = "help";

void Unmark(QWidget& box) {
    if (!box.property(kDescription).isValid()) return;
    box.setStyleSheet(QString());
    box.setAccessibleDescription(box.property(kDescription).toString());
    box.setProperty(kDescription, QVariant());
    box.setToolTip(QString());
}

// A box that is already marked keeps the description from before its first mark.
template <class Box>
void Mark(Box& box, const QString& kind, const QString& why) {
    if (!box.property(kDescription).isValid()) box.setProperty(kDescription, box.accessibleDescription());
    const QString colour = MarkColour(box.palette()).name();
    box.setStyleSheet(kind + " { border: 2px solid " + colour + "; border-radius: 3px; padding: 1px; }");
    box.setAccessibleDescription(why);
    box.setToolTip(why);
    box.setFocus();
    box.selectAll();
    QObject::connect(
        &box, &Box::textChanged, &box, [&box] { Unmark(box); }, Qt::SingleShotConnection);
}

}  // namespace

bool IsRefused(const QWidget& input) {
    return input.property(kDescription).isValid();
}

QLineEdit* NewBox(const char* name, const QString& accessibleName, QWidget* page) {
    auto* box = new QLineEdit(page);
    box->setObjectName(name);
    box->setAccessibleName(accessibleName);
    return box;
}

QLineEdit* NewBox(const Control& control, QWidget* page) {
    auto* box = new QLineEdit(page);
    Describe(*box, control);
    if (*control.unit != '\0') KeepShort(*box);
    return box;
}

void KeepShort(QLineEdit& box) {
    box.setFixedWidth(box.fontMetrics().averageCharWidth() * kShortCharacters + box.sizeHint().height());
}

QCheckBox* NewMark(const char* name, const QString& text, QWidget* page) {
    auto* mark = new QCheckBox(text, page);
    mark->setObjectName(name);
    mark->setAccessibleName(QString(text).remove('&'));
    return mark;
}

QCheckBox* NewMark(const Control& control, QWidget* page) {
    auto* mark = new QCheckBox(control.label, page);
    Describe(*mark, control);
    return mark;
}

QPushButton* NewButton(const char* name, const QString& text, const QString& accessibleName, QWidget* page) {
    auto* button = new QPushButton(text, page);
    button->setObjectName(name);
    button->setAccessibleName(accessibleName);
    return button;
}

QPushButton* NewButton(const Control& control, QWidget* page, const std::function<void()>& click) {
    auto* button = new QPushButton(control.label, page);
    Describe(*button, control);
    if (click) QObject::connect(button, &QPushButton::clicked, page, click);
    return button;
}

void Describe(QWidget& input, const Control& control) {
    const bool hasOwnName = *control.spoken != '\0';
    input.setObjectName(control.name);
    input.setAccessibleName(hasOwnName ? QString(control.spoken) : QString(control.label).remove('&').remove("...").remove(':'));
    input.setAccessibleDescription(control.help);
    if (*control.help != '\0') input.setProperty(kHelp, control.help);
}

QString HelpOn(const QObject& input) {
    return input.property(kHelp).toString();
}

void MarkRefused(QLineEdit& box, const QString& why) {
    Mark(box, "QLineEdit", why);
}

void MarkRefused(QPlainTextEdit& box, const QString& why) {
    Mark(box, "QPlainTextEdit", why);
}

void TakeMarkAway(QLineEdit& box) {
    Unmark(box);
}

void TakeMarkAway(QPlainTextEdit& box) {
    Unmark(box);
}

QFormLayout* NewForm(const QWidget* page) {
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setVerticalSpacing(page->fontMetrics().height() / 2);
    return form;
}

QFormLayout& AddForm(QVBoxLayout& page) {
    QFormLayout* form = NewForm(page.parentWidget());
    page.addLayout(form);
    return *form;
}

QFormLayout& AddGroup(QLayout& page, const QString& title) {
    auto* group = new QGroupBox(title, page.parentWidget());
    page.addWidget(group);
    QFormLayout* form = NewForm(group);
    group->setLayout(form);
    return *form;
}

// A form with its own vertical spacing passes none on to the rows in it.
QHBoxLayout* NewRow(std::initializer_list<QWidget*> widgets) {
    auto* row = new QHBoxLayout;
    row->setSpacing((*widgets.begin())->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing));
    for (QWidget* widget : widgets)
        row->addWidget(widget);
    return row;
}

QHBoxLayout* LeftRow(std::initializer_list<QWidget*> widgets) {
    QHBoxLayout* row = NewRow(widgets);
    row->addStretch();
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

BoxLabels AddRow(QFormLayout& form, const Control& control, QLineEdit* box, std::initializer_list<QWidget*> others) {
    const QByteArray name = QByteArray("lbl") + (control.name + 3);
    const bool hasUnit = *control.unit != '\0';
    if (!hasUnit && others.size() == 0) return {AddRow(form, control.label, name, box), nullptr};
    BoxLabels labels;
    QHBoxLayout* row = NewRow({box});
    if (hasUnit) {
        labels.unit = NewLabel(name + "Unit", control.unit, box->parentWidget());
        row->addWidget(labels.unit);
    }
    for (QWidget* other : others)
        row->addWidget(other);
    if (hasUnit) row->addStretch();
    labels.label = AddRow(form, control.label, name, box, row);
    return labels;
}

QLabel* NewFigure(const char* name, const QString& accessibleName, QWidget* page) {
    auto* label = new QLabel(page);
    label->setObjectName(name);
    label->setAccessibleName(accessibleName);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QLabel* NewLabel(const char* name, const QString& text, QWidget* page) {
    auto* label = new QLabel(text, page);
    label->setObjectName(name);
    return label;
}

QLabel* NewExplanation(const QString& text, QWidget* page) {
    auto* label = new QLabel(text, page);
    label->setWordWrap(true);
    return label;
}

QFileDialog* NewFileDialog(const QString& title, QWidget* parent) {
    auto* dialog = new QFileDialog(parent, title);
    dialog->setObjectName("fileDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    const QSize room = dialog->screen()->availableGeometry().size() * 9 / 10;
    dialog->resize(dialog->size().boundedTo(room));
    return dialog;
}

}  // namespace korvane
