// Sends the mails of the resource monitors one after the other, from a timer of their own. A monitor continues to watch while its
// mail waits for a slow server, and may be gone before the mail has arrived.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "notify/dispatcher.h"
#include "notify/mail_outbox.h"
#include "platform/timer.h"
#include "store/log.h"

namespace korvane {

class AlertMails {
public:
    /// `mail` should be a separate dispatcher: while a mail of the monitors is being sent, a shared one refuses those of the
    /// cycle. A busy dispatcher is waited for. While `busy` returns true, mails wait too, for a minute at most: the mail would
    /// otherwise delay a check whose pump delivers the timer, and the check would take that for a slow answer.
    /// With the outbox on, the mails are handed to it at once.
    AlertMails(Dispatcher& mail, Timers& timers, Log& log, std::function<bool()> busy, MailOutbox* outbox = nullptr);

    /// Sends the alert when its turn comes, through the primary server and only once; a failure is only logged. An alert that is
    /// already waiting is not added a second time, so a dead server causes no endless queue.
    void Alert(const Notification& mail);

    /// The same for a mail whose sender waits: `done` is called when it was sent or could not be sent.
    void Send(const Notification& mail, std::function<void()> done);

    /// As the dispatcher does; these mails wait meanwhile, and those of the cycle do not.
    std::optional<MailSecurity> FindSecurity(const std::string& host, const std::function<void(const std::string& text)>& tell) {
        return mail_.FindSecurity(host, tell);
    }

private:
    struct Waiting {
        Notification mail;
        std::function<void()> done;
    };

    bool HasToWait();
    void timer_Timer();

    Dispatcher& mail_;
    MailOutbox* outbox_;
    Log& log_;
    std::function<bool()> busy_;
    int waits_ = 0;  ///< because of `busy`, since the last mail
    std::deque<Waiting> waiting_;
    std::unique_ptr<Timer> timer_;
};

}  // namespace korvane
