#include "shell/desktop/main/message_queue.h"

#include <QTimer>

namespace korvane {

void MessageQueue::Add(Message message) {
    waiting_.push_back(std::move(message));
    QTimer::singleShot(0, &context_, [this] { ShowNext(); });
}

void MessageQueue::ShowNext() {
    if (waiting_.empty() || shown_ != nullptr) return;
    Message next = std::move(waiting_.front());
    waiting_.pop_front();
    shown_ = new frmMSG(next.kind, next.title, next.text, next.answers, parent_());
    shown_->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(shown_, &QDialog::finished, &context_,
                     [closed = std::move(next.closed)](int result) { closed(result == QDialog::Accepted); });
    // This also happens when its parent destroys it.
    QObject::connect(shown_, &QObject::destroyed, &context_,
                     [this] { QTimer::singleShot(0, &context_, [this] { ShowNext(); }); });
    shown_->show();
}

}  // namespace korvane
