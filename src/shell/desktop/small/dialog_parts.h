// What the small dialogs have in common.
#pragma once

#include <QDialogButtonBox>
#include <QString>
#include <functional>
#include <initializer_list>

class QDialog;
class QLabel;

namespace korvane {

class ReadingText;

struct DialogButton {
    const char* name;
    QString text;  ///< a "&" defines a key
    QDialogButtonBox::ButtonRole role;
    std::function<void()> click = {};
};

/// Returns the row of a dialog's buttons. Those that accept or reject close it; the one called `first` is the default and has the
/// focus, and Return never presses one of the ActionRole.
QDialogButtonBox* NewButtons(QDialog* dialog, std::initializer_list<DialogButton> all, const QString& first);

/// Returns the program's emblem, as high as this many lines of text.
QLabel* NewEmblem(int lines, QWidget* dialog);

/// Makes it bold and this many times as large.
void MakeHeading(QLabel& label, double times);

/// Returns a text that only a click gives the focus, fitted to the text as in ReadingText::FitText.
ReadingText* NewReadingText(const char* name, const QString& accessibleName, const QString& text, int characters, int lines,
                            QWidget* dialog);

}  // namespace korvane
