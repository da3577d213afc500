#include "shell/run/instance_watch.h"

#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "notify/global_email.h"
#include "store/database_files.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kShowEach = 10s;
constexpr std::chrono::milliseconds kShowAfterAnError = 1min;
constexpr std::string_view kInstanceMail = "InstanceMail";
/// Held while the silent are looked at, so that one instance mails.
constexpr std::string_view kInstancesDuty = "instances";

}  // namespace

InstanceWatch::InstanceWatch(const Ports& ports, Instance own)
    : ports_(ports), table_(ports.store), own_(std::move(own)), timer_(ports.timers.NewTimer("TimerInstances")) {
    timer_->OnTick([this] { Tick(); });
}

void InstanceWatch::Start() {
    Tick();
    timer_->SetEnabled(true);
}

void InstanceWatch::End() {
    timer_->SetEnabled(false);
    IgnoreErrors([&] {
        if (own_.id != 0) table_.Remove(*OpenDatabase(ports_.store, own_.home), std::exchange(own_.id, 0));
    });
}

void InstanceWatch::Tick() {
    const bool done = IgnoreErrors([&] {
        const auto conn = OpenDatabase(ports_.store, own_.home);
        const auto now = conn->Now();
        if (!now) return;
        ShowItself(*conn, *now);
        LookAtOthers(*conn, *now);
    });
    timer_->SetInterval(done ? kShowEach : kShowAfterAnError);
}

void InstanceWatch::ShowItself(Connection& conn, DateTime now) {
    own_.seen = now;
    own_.checking = ports_.checking();
    own_.offset = now - ports_.clock.Now();
    if (own_.id != 0 && IgnoreErrors([&] { table_.Update(conn, own_); })) return;
    if (own_.started == DateTime()) own_.started = now;
    own_.id = table_.Add(conn, own_);
}

void InstanceWatch::LookAtOthers(Connection& conn, DateTime now) {
    for (const Instance& other : table_.ReadAll(conn)) {
        if (other.id == own_.id) continue;
        if (now - other.seen > kForgottenAfter) {
            table_.Remove(conn, other.id);
        } else if (now - other.seen > kSilentAfter) {
            Silent(conn, other);
        } else if (silent_.erase(other.id) > 0) {
            Tell("The instance " + other.name + " is there again.");
        }
    }
}

// Marked before it is mailed: a mail that got lost is better than one each ten seconds.
void InstanceWatch::Silent(Connection& conn, const Instance& other) {
    const std::string text =
        "The instance " + other.name + " on " + other.host + " has been silent since " + other.seen.Text() + ".";
    if (silent_.insert(other.id).second) Tell(text);
    const std::string* const wanted = ports_.settings.Find(kInstanceMail);
    if (other.mailed || wanted == nullptr || Trim(*wanted) != "True" || !conn.TryTakeDuty(kInstancesDuty)) return;
    clsGlobalEmail people(ports_.files, own_.home);
    people.OpenFile();
    for (const Instance& each : table_.ReadAll(conn)) {
        if (each.id != other.id || each.mailed) continue;
        table_.MarkMailed(conn, other.id);
        if (Trim(people.getToList1() + people.getToList2()).empty()) continue;
        ports_.mail({people.getToList1(), people.getToList2(), people.getFrom(), "Korvane: an instance is silent",
                     text + "\r\n\r\nThe others go on with the list; this mail is sent once, by " + own_.name + "."});
    }
    conn.ReleaseDuty(kInstancesDuty);
}

void InstanceWatch::Tell(const std::string& text) {
    ports_.status.setStatusMSG(text);
    ports_.log.WriteLog(kLogOrdinary, kLogError, text);
}

}  // namespace korvane
