// Messages and questions that block nothing: each is shown when the previous one is closed, and everything else continues
// meanwhile.
#pragma once

#include <QObject>
#include <QPointer>
#include <deque>
#include <functional>
#include <string>

#include "shell/desktop/small/frm_msg.h"

namespace korvane {

class MessageQueue {
public:
    struct Message {
        frmMSG::Kind kind;
        std::string title;
        std::string text;
        frmMSG::Answers answers = frmMSG::Answers::Ok;
        std::function<void(bool accepted)> closed = [](bool) {};
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
