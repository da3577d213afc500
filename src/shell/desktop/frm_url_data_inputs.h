// The boxes and marks of the server entry editor as one set: filled from the texts of an entry and read into them.
#pragma once

#include <QString>
#include <initializer_list>
#include <utility>
#include <vector>

#include "shell/entry_fields.h"

class QCheckBox;
class QFormLayout;
class QHBoxLayout;
class QLabel;
class QLayout;
class QLineEdit;
class QWidget;

namespace korvane {

class EntryInputs {
public:
    /// Each becomes a child of `page` and keeps belonging to it.
    QLineEdit* AddBox(std::string EntryFields::*field, const char* name, const QString& accessibleName, QWidget* page);
    QCheckBox* AddMark(bool EntryFields::*field, const char* name, const QString& text, QWidget* page);

    QLineEdit* Box(std::string EntryFields::*field) const;

    void Fill(const EntryFields& fields) const;
    /// All but the type, which is no box.
    EntryFields Read() const;

private:
    std::vector<std::pair<std::string EntryFields::*, QLineEdit*>> boxes_;
    std::vector<std::pair<bool EntryFields::*, QCheckBox*>> marks_;
};

/// Shows that the text of the box was refused and why, until it is changed. The box gets the focus, its text selected.
void MarkRefused(QLineEdit& box, const QString& why);

/// A form with boxes as wide as the page and some air between them.
QFormLayout* NewForm(const QWidget* page);

/// What stands side by side.
QHBoxLayout* NewRow(std::initializer_list<QWidget*> widgets);

/// A label for `box` at the side of the form. A "&" in the text makes a key.
QLabel* AddRow(QFormLayout& form, const QString& text, const char* name, QWidget* box);
QLabel* AddRow(QFormLayout& form, const QString& text, const char* name, QWidget* box, QLayout* row);

/// For short numbers: no wider than it needs to be.
void KeepShort(QLineEdit& box);

/// An explanation that wraps.
QLabel* NewExplanation(const QString& text, QWidget* page);

}  // namespace korvane
