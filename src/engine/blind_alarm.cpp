#include "engine/blind_alarm.h"

#include <utility>

#include "base/ignore_errors.h"
#include "engine/server_table.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 5min;
constexpr auto kRememberEvery = 1h;
constexpr auto kLookForPeopleEvery = 10s;  // until an entry has people
constexpr const char* kSubject = "Korvane: Nothing is checked";

}  // namespace

void BlindAlarm::Sees(Recordset* rs) {
    const auto now = ports_.clock.GetTickCount();
    if (since_ && told_) Tell("Entries are checked again.");
    since_.reset();
    told_ = false;
    if (rs == nullptr) return;
    if (now < nextRemember_) return;
    nextRemember_ = now + (people_.strTo1.empty() ? kLookForPeopleEvery : kRememberEvery);
    IgnoreErrors([&] {
        const Notification people{ColumnText(*rs, "strEmailList1"), ColumnText(*rs, "strEmailList2"),
                                  ColumnText(*rs, "strEmailFrom"), "", ""};
        if (people.strTo1.empty()) return;
        people_ = people;
        nextRemember_ = now + kRememberEvery;
    });
}

void BlindAlarm::IsBlind(const std::string& error) {
    const auto now = ports_.clock.GetTickCount();
    if (!since_) {
        since_ = now;
        nextMail_ = now + kPatience;
    }
    if (told_ || now < nextMail_) return;
    nextMail_ = now + kPatience;
    ports_.safeguards.Acted("GuardBadEntries", "Nothing could be checked for five minutes.");
    IgnoreErrors([&] { Send(error); });
}

void BlindAlarm::Send(const std::string& error) {
    if (people_.strTo1.empty()) return Tell("Nothing is checked, and no entry has people who could be notified: " + error);
    Notification mail = people_;
    mail.strSubject = kSubject;
    mail.strBody = "Time: " + ports_.clock.Now().Text() +
                   "\r\n\r\nKorvane could not check any entry for five minutes, because of this error: " + error +
                   "\r\n\r\nThis mail is sent once. Monitoring goes on by itself when the error is gone.";
    const SendOutcome outcome = ports_.send(mail);
    told_ = outcome.sent;
    if (!outcome.sent) Tell("Nothing is checked, and the mail about it could not be sent: " + outcome.strError);
}

void BlindAlarm::Tell(const std::string& text) {
    ports_.status.setStatusMSG(text);
    ports_.log.WriteLog(kLogOrdinary, kLogError, text);
}

}  // namespace korvane
