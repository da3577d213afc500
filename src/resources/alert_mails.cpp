#include "resources/alert_mails.h"

#include <algorithm>
#include <utility>

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kAtOnce = 1ms;
constexpr auto kNextTry = 1s;
constexpr int kMostWaits = 60;

}  // namespace

AlertMails::AlertMails(Dispatcher& mail, Timers& timers, Log& log, std::function<bool()> busy, MailOutbox* outbox)
    : mail_(mail), outbox_(outbox), log_(log), busy_(std::move(busy)), timer_(timers.NewTimer("AlertMails")) {
    timer_->OnTick([this] { timer_Timer(); });
}

void AlertMails::Alert(const Notification& mail) {
    const bool known = std::any_of(waiting_.begin(), waiting_.end(), [&](const Waiting& other) {
        return !other.done && other.mail.strTo1 == mail.strTo1 && other.mail.strBody == mail.strBody;
    });
    if (!known) Send(mail, {});
}

void AlertMails::Send(const Notification& mail, std::function<void()> done) {
    if (outbox_ != nullptr && outbox_->Post(mail)) {
        if (done) done();
        return;
    }
    waiting_.push_back({mail, std::move(done)});
    if (timer_->Enabled()) return;  // a mail is being sent or waiting
    timer_->SetInterval(kAtOnce);
    timer_->SetEnabled(true);
}

bool AlertMails::HasToWait() {
    if (mail_.Sending()) return true;
    if (busy_() && waits_ < kMostWaits) {
        ++waits_;
        return true;
    }
    waits_ = 0;
    return false;
}

void AlertMails::timer_Timer() {
    while (!waiting_.empty()) {
        if (HasToWait()) {
            timer_->SetInterval(kNextTry);
            return;
        }
        const Waiting next = std::move(waiting_.front());
        waiting_.pop_front();
        const SendOutcome outcome = mail_.SendThrough(MailServer::Primary, next.mail);
        if (!outcome.sent) {
            log_.WriteLog(kLogOrdinary, kLogError,
                          "AlertMails: " + next.mail.strSubject + " to " + next.mail.strTo1 + " failed. " + outcome.strError);
        }
        if (next.done) next.done();
    }
    timer_->SetEnabled(false);
}

}  // namespace korvane
