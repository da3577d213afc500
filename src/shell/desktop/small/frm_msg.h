// Room `small`: messages, questions and the small dialogs.
//
// The general message: a text with a picture of its kind, and one command to close it, or the answers Yes and No.
#pragma once

#include <QDialog>
#include <QPointer>
#include <QString>
#include <deque>
#include <functional>
#include <string>

class QDialogButtonBox;
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

    /// Adds a button that opens the log of the day and leaves the message open.
    void AddOpenLog(const std::function<void()>& open);

    /// Shows the message over `parent`, which may be null, and returns when it is closed. Everything else continues meanwhile,
    /// and `parent` may be gone afterwards.
    static void Show(QWidget* parent, Kind kind, const std::string& title, const std::string& text);
    /// Like Show; returns true when the answer was Yes.
    static bool Ask(QWidget* parent, const std::string& title, const std::string& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QLayout* Message(Kind kind, const QString& line1, const QString& line2);

    QString text_;
    QDialogButtonBox* buttons_;
};

/// Messages and questions that block nothing: each is shown when the previous one is closed, and everything else continues
/// meanwhile.
class MessageQueue {
public:
    struct Message {
        frmMSG::Kind kind;
        std::string title;
        std::string text;
        frmMSG::Answers answers = frmMSG::Answers::Ok;
        std::function<void(bool accepted)> closed = [](bool) {};
        std::function<void()> openLog = {};  ///< without it there is no such button
    };

    /// `parent` returns the window over which to show a message at that moment; null is allowed.
    explicit MessageQueue(std::function<QWidget*()> parent) : parent_(std::move(parent)) {}

    /// Shows the message from the event loop, so that its parent is not a window that is about to close. `closed` is never called
    /// if the parent is destroyed before the answer.
    void Add(Message message);

private:
    void ShowNext();

    QObject context_;  ///< its destruction cancels pending calls from the event loop
    std::function<QWidget*()> parent_;
    std::deque<Message> waiting_;
    QPointer<frmMSG> shown_;
};

}  // namespace korvane
