// Room `toolkit`: the building blocks of forms and dialogs.
//
// The boxes and marks of a dialog as one set, filled from the fields that they represent and read into them; and helpers for the
// layout of the dialogs' forms.
#pragma once

#include <QCheckBox>
#include <QLineEdit>
#include <QString>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "shell/desktop/toolkit/qt_text.h"

class QFormLayout;
class QHBoxLayout;
class QLabel;
class QLayout;
class QPlainTextEdit;
class QPushButton;
class QWidget;

namespace korvane {

QLineEdit* NewBox(const char* name, const QString& accessibleName, QWidget* page);

/// A "&" in the text defines a key; the accessible name is the text without it.
QCheckBox* NewMark(const char* name, const QString& text, QWidget* page);

QPushButton* NewButton(const char* name, const QString& text, const QString& accessibleName, QWidget* page);

/// Shows that the text of the box was refused and why, until it is changed. The box gets the focus, with its text selected.
void MarkRefused(QLineEdit& box, const QString& why);
void MarkRefused(QPlainTextEdit& box, const QString& why);
/// Does nothing for a box without a mark.
void TakeMarkAway(QLineEdit& box);
void TakeMarkAway(QPlainTextEdit& box);

/// The inputs of a dialog whose texts and marks are the members of Fields.
template <class Fields>
class FormInputs {
public:
    /// Each becomes a child of `page`, which owns it.
    QLineEdit* AddBox(std::string Fields::*field, const char* name, const QString& accessibleName, QWidget* page) {
        return boxes_.emplace_back(field, NewBox(name, accessibleName, page)).second;
    }
    QCheckBox* AddMark(bool Fields::*field, const char* name, const QString& text, QWidget* page) {
        return marks_.emplace_back(field, NewMark(name, text, page)).second;
    }

    /// Returns null for a field without a box.
    QLineEdit* Box(std::string Fields::*field) const {
        for (const auto& [each, box] : boxes_) {
            if (each == field) return box;
        }
        return nullptr;
    }

    void Fill(const Fields& fields) const {
        for (const auto& [field, box] : boxes_) {
            box->setText(Q(fields.*field));
            box->setCursorPosition(0);
        }
        for (const auto& [field, mark] : marks_)
            mark->setChecked(fields.*field);
    }

    /// Fields without an input keep their default values.
    Fields Read() const {
        Fields fields;
        for (const auto& [field, box] : boxes_)
            fields.*field = S(box->text());
        for (const auto& [field, mark] : marks_)
            fields.*field = mark->isChecked();
        return fields;
    }

    void TakeMarksAway() const {
        for (const auto& [field, box] : boxes_)
            TakeMarkAway(*box);
    }

private:
    std::vector<std::pair<std::string Fields::*, QLineEdit*>> boxes_;
    std::vector<std::pair<bool Fields::*, QCheckBox*>> marks_;
};

/// Returns a form with boxes as wide as the page and some space between them.
QFormLayout* NewForm(const QWidget* page);

/// Returns a row of widgets side by side.
QHBoxLayout* NewRow(std::initializer_list<QWidget*> widgets);

/// Adds a label for `box` at the side of the form. A "&" in the text defines a key.
QLabel* AddRow(QFormLayout& form, const QString& text, const char* name, QWidget* box);
QLabel* AddRow(QFormLayout& form, const QString& text, const char* name, QWidget* box, QLayout* row);

/// For short numbers: makes the box no wider than necessary.
void KeepShort(QLineEdit& box);

/// Returns a label for text that changes and can be copied. The accessible name says what the text means.
QLabel* NewFigure(const char* name, const QString& accessibleName, QWidget* page);

QLabel* NewLabel(const char* name, const QString& text, QWidget* page);

/// Returns an explanation that wraps.
QLabel* NewExplanation(const QString& text, QWidget* page);

}  // namespace korvane
