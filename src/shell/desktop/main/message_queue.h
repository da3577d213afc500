// Messages and questions that wait for nobody: each is shown when the one before it is closed, and everything else goes on
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

    /// `parent` gives the window over which a message is shown at that moment; null is allowed.
    explicit MessageQueue(std::function<QWidget*()> parent) : parent_(std::move(parent)) {}

    /// Shows the message from the event loop, so that a window that is about to close is not its parent. When its parent goes
    /// before it is answered,
    /// `closed` is never called.
    void Add(Message message);

private:
    void ShowNext();

    QObject context_;  ///< what is still to be called from the event loop ends with this
    std::function<QWidget*()> parent_;
    std::deque<Message> waiting_;
    QPointer<frmMSG> shown_;
};

}  // namespace korvane
