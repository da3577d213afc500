// Room `toolkit`: the building blocks of forms and dialogs.
//
// The boxes and marks of a dialog as one set, made from the table of its inputs, filled from the fields that they represent and read
// into them; and helpers for the layout of the dialogs' forms.
#pragma once

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QString>
#include <algorithm>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "shell/desktop/look/decoration.h"
#include "shell/desktop/toolkit/qt_text.h"
#include "shell/entry/form_input.h"

class QFileDialog;
class QHBoxLayout;
class QLayout;
class QPlainTextEdit;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace korvane {

QLineEdit* NewBox(const char* name, const QString& accessibleName, QWidget* page);
/// A box with a unit is short.
QLineEdit* NewBox(const Control& control, QWidget* page);
/// For short numbers: makes the box no wider than necessary.
void KeepShort(QLineEdit& box);

/// A "&" in the text defines a key; the accessible name is the text without it.
QCheckBox* NewMark(const char* name, const QString& text, QWidget* page);
QCheckBox* NewMark(const Control& control, QWidget* page);

/// For a caption that is made while the program runs.
QPushButton* NewButton(const char* name, const QString& text, const QString& accessibleName, QWidget* page);
QPushButton* NewButton(const Control& control, QWidget* page, const std::function<void()>& click = {});

/// Gives the input its names and its help.
void Describe(QWidget& input, const Control& control);
/// Returns the status line's text about an input; empty if it has none. A refusal does not change it.
QString HelpOn(const QObject& input);

/// Shows that the text of the box was refused and why, until it is changed. The box gets the focus, with its text selected.
void MarkRefused(QLineEdit& box, const QString& why);
void MarkRefused(QPlainTextEdit& box, const QString& why);
/// Returns whether it has such a mark.
bool IsRefused(const QWidget& input);
/// Does nothing for a box without a mark.
void TakeMarkAway(QLineEdit& box);
void TakeMarkAway(QPlainTextEdit& box);

/// Returns a form with boxes as wide as the page and some space between them.
QFormLayout* NewForm(const QWidget* page);
/// Adds such a form at the end of the page.
QFormLayout& AddForm(QVBoxLayout& page);
/// The same within a frame with a title.
QFormLayout& AddGroup(QLayout& page, const QString& title);

/// Returns a row of widgets side by side.
QHBoxLayout* NewRow(std::initializer_list<QWidget*> widgets);
/// Returns a row whose widgets are no wider than necessary.
QHBoxLayout* LeftRow(std::initializer_list<QWidget*> widgets);

/// Adds a label for `box` at the side of the form. A "&" in the text defines a key.
QLabel* AddRow(QFormLayout& form, const QString& text, const char* name, QWidget* box);
QLabel* AddRow(QFormLayout& form, const QString& text, const char* name, QWidget* box, QLayout* row);

/// The labels of a box; null where there is none.
struct BoxLabels {
    QLabel* label = nullptr;
    QLabel* unit = nullptr;
};
/// Adds the labels, and the other widgets after the box.
BoxLabels AddRow(QFormLayout& form, const Control& control, QLineEdit* box, std::initializer_list<QWidget*> others);

/// Returns a label for text that changes and can be copied. The accessible name says what the text means.
QLabel* NewFigure(const char* name, const QString& accessibleName, QWidget* page);

QLabel* NewLabel(const char* name, const QString& text, QWidget* page);

/// Returns an explanation that wraps.
QLabel* NewExplanation(const QString& text, QWidget* page);

/// Returns a dialog for one file that is no larger than the screen. It deletes itself.
QFileDialog* NewFileDialog(const QString& title, QWidget* parent);

/// The inputs of a dialog whose values are the members of Fields.
template <class Fields>
class FormInputs {
public:
    using Input = FormInput<Fields>;
    using Text = std::string Fields::*;
    using Mark = bool Fields::*;

    /// The table has an input for each field that is used here, and must outlive this.
    explicit FormInputs(std::span<const Input> table) : table_(table) {}

    /// Each becomes a child of `page`, which owns it. The keyboard reaches the inputs in the order in which they are added.
    QLineEdit* AddBox(Text field, QWidget* page) { return boxes_.emplace_back(Entry{field, NewBox(Of(field), page), {}}).box; }
    QCheckBox* AddMark(Mark field, QWidget* page) {
        const Control& control = std::ranges::find(table_, field, &Input::mark)->control;
        return marks_.emplace_back(field, NewMark(control, page)).second;
    }
    /// Adds a box with its label and unit to the form.
    QLineEdit* AddRow(QFormLayout& form, Text field) {
        AddBox(field, form.parentWidget());
        return AddRow(form, field, {});
    }
    /// The same for a box that was added before, and for others that come after it in its row.
    QLineEdit* AddRow(QFormLayout& form, Text field, std::initializer_list<QWidget*> others) {
        Entry& entry = *std::ranges::find(boxes_, field, &Entry::field);
        entry.labels = korvane::AddRow(form, Of(field), entry.box, others);
        return entry.box;
    }

    QLineEdit* Box(Text field) const { return std::ranges::find(boxes_, field, &Entry::field)->box; }
    QLabel* Label(Text field) const { return std::ranges::find(boxes_, field, &Entry::field)->labels.label; }
    QLabel* Unit(Text field) const { return std::ranges::find(boxes_, field, &Entry::field)->labels.unit; }

    void Fill(const Fields& fields) const {
        for (const Entry& each : boxes_) {
            each.box->setText(Q(fields.*each.field));
            each.box->setCursorPosition(0);
        }
        for (const auto& [field, mark] : marks_)
            mark->setChecked(fields.*field);
    }

    /// Fields without an input keep their default values.
    Fields Read() const {
        Fields fields;
        for (const Entry& each : boxes_)
            fields.*each.field = S(each.box->text());
        for (const auto& [field, mark] : marks_)
            fields.*field = mark->isChecked();
        return fields;
    }

    void TakeMarksAway() const {
        for (const Entry& each : boxes_)
            TakeMarkAway(*each.box);
    }

private:
    struct Entry {
        Text field;
        QLineEdit* box;
        BoxLabels labels;
    };

    const Control& Of(Text field) const { return std::ranges::find(table_, field, &Input::text)->control; }

    std::span<const Input> table_;
    std::vector<Entry> boxes_;
    std::vector<std::pair<Mark, QCheckBox*>> marks_;
};

}  // namespace korvane
