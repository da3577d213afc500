// The mails of the resource monitors on their way: one after the other, from a timer of their own. A monitor that has something
// to say goes on watching while its mail waits for a slow server, and may be gone before the mail has arrived.
#pragma once

#include <deque>
#include <functional>
#include <memory>

#include "notify/dispatcher.h"
#include "platform/timer.h"
#include "store/log.h"

namespace korvane {

class AlertMails {
public:
    /// `mail` is best a dispatcher of its own: while a mail of the monitors is under way, a shared one refuses those of the
    /// cycle. One that is busy is waited for. So is what `busy` tells of, for a minute at most: a check whose pump delivers the
    /// timer would be held up by the mail and take it for a slow answer.
    AlertMails(Dispatcher& mail, Timers& timers, Log& log, std::function<bool()> busy = {});

    /// Sends the alert as soon as its turn comes, through the primary server and once only; a failure is in the log and nowhere
    /// else. One that waits already is not taken a second time, so a dead server makes no endless queue.
    void Alert(const Notification& mail);

    /// The same for a mail that somebody waits for: `done` is called when it was sent or could not be.
    void Send(const Notification& mail, std::function<void()> done);

private:
    struct Waiting {
        Notification mail;
        std::function<void()> done;
    };

    void Add(const Notification& mail, std::function<void()> done);
    bool HasToWait();
    void timer_Timer();

    Dispatcher& mail_;
    Log& log_;
    std::function<bool()> busy_;
    int waits_ = 0;  ///< for what `busy` tells of, since the last mail
    std::deque<Waiting> waiting_;
    std::unique_ptr<Timer> timer_;
};

}  // namespace korvane
