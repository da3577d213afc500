// Room `small`: messages, questions and the small dialogs.
//
// The general message: a text with a picture of its kind, and one command to close it, or the answers Yes and No.
#pragma once

#include <QDialog>
#include <QString>
#include <string>

class QLayout;

namespace korvane {

class frmMSG : public QDialog {
public:
    enum class Kind { Information, StopSign, Question };
    enum class Answers { Ok, YesNo };

    /// Texts may have CR LF or LF as line ends. `line1` and `line2` are shown below the text unless they are empty. Not deleted
    /// when it is closed. With Yes and No, Escape and closing it mean No; exec() returns Accepted for Yes and OK.
    frmMSG(Kind kind, const std::string& title, const std::string& text, Answers answers, QWidget* parent,
           const std::string& line1 = "", const std::string& line2 = "");

    /// Shows the message over `parent`, which may be null, and returns when it is closed. Everything else continues meanwhile,
    /// and `parent` may be gone afterwards.
    static void Show(QWidget* parent, Kind kind, const std::string& title, const std::string& text);
    /// Like Show; returns true when the answer was Yes.
    static bool Ask(QWidget* parent, const std::string& title, const std::string& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QLayout* Message(Kind kind, const QString& line1, const QString& line2);
    QWidget* Buttons(Answers answers);

    QString text_;
};

}  // namespace korvane
