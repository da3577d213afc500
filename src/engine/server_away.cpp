#include "engine/server_away.h"

#include <algorithm>
#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "notify/global_email.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::seconds;

constexpr seconds kLongestPause = 60s;
constexpr auto kMailAfter = 5min;

}  // namespace

seconds ServerAway::Away(const std::string& error) {
    const auto now = ports_.clock.GetTickCount();
    if (!since_) {
        since_ = now;
        nextMail_ = now + kMailAfter;
        pause_ = 0s;
        mailed_ = false;
        Tell("The database server is away, and nothing can be checked: " + error);
    }
    pause_ = std::clamp(2 * pause_, 1s, kLongestPause);
    if (!mailed_ && now >= nextMail_) {
        nextMail_ = now + kMailAfter;
        IgnoreErrors([&] { Mail(error); });
    }
    return pause_;
}

void ServerAway::Back() {
    if (!since_) return;
    const auto away = ports_.clock.GetTickCount() - *std::exchange(since_, std::nullopt);
    Tell("The database server is back. It was away for " + std::to_string(std::chrono::duration_cast<seconds>(away).count()) +
         " seconds.");
}

void ServerAway::Mail(const std::string& error) {
    clsGlobalEmail people(ports_.files, ports_.dir);
    people.OpenFile();
    if (Trim(people.getToList1() + people.getToList2()).empty()) {
        mailed_ = true;
        return Tell("The database server is away for five minutes, and there is no global e-mail address to notify.");
    }
    const SendOutcome outcome =
        ports_.send({people.getToList1(), people.getToList2(), people.getFrom(), "Korvane: The database server is away",
                     "Time: " + ports_.clock.Now().Text() +
                         "\r\n\r\nKorvane could not check any entry for five minutes, because of this error: " + error +
                         "\r\n\r\nThis mail is sent once. Monitoring goes on by itself when the server is back."});
    mailed_ = outcome.sent;
    if (!outcome.sent) Tell("The database server is away, and the mail about it could not be sent: " + outcome.strError);
}

void ServerAway::Tell(const std::string& text) {
    ports_.status.setStatusMSG(text);
    ports_.log.WriteLog(kLogOrdinary, kLogError, text);
    ports_.manager.Status(text);
}

}  // namespace korvane
