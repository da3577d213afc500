#include "shell/run/heartbeat.h"

#include <algorithm>
#include <exception>

#include "base/ignore_errors.h"
#include "engine/http_requester.h"
#include "engine/http_status.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kHeartbeat = "Heartbeat";
constexpr std::chrono::milliseconds kEach = 1min;
constexpr std::chrono::milliseconds kLooksEach = 1s;  // while a request runs
constexpr auto kGivesUpAfter = 30s;

}  // namespace

Heartbeat::Heartbeat(const Ports& ports) : ports_(ports), timer_(ports.timers.NewTimer("TimerHeartbeat")) {
    timer_->OnTick([this] { IgnoreErrors([this] { Tick(); }); });
}

void Heartbeat::Follow() {
    const bool on = !ports_.safeguards.Text(kHeartbeat).empty();
    if (on == timer_->Enabled()) return;
    if (!on) return End();
    next_ = ports_.clock.GetTickCount() + kEach;
    timer_->SetInterval(kEach);
    timer_->SetEnabled(true);
}

void Heartbeat::End() {
    timer_->SetEnabled(false);
    running_ = false;
    inet_.reset();
}

void Heartbeat::Tick() {
    LookAtLast();
    const auto now = ports_.clock.GetTickCount();
    if (now >= next_) {
        next_ = now + kEach;
        BeatIfAlive();
    }
    timer_->SetInterval(running_ ? kLooksEach : next_ - now);
}

void Heartbeat::LookAtLast() {
    const auto error = running_ ? inet_->Outcome() : std::nullopt;
    if (!error) return;
    running_ = false;
    const int status = inet_->ResponseCode();
    if (!error->empty()) return Failed(*error);
    if (status / 100 != 2) return Failed(StatusReason(status));
    ports_.safeguards.Acted(kHeartbeat, "A heartbeat was answered.");
    if (failed_) ports_.log.Info("Safeguard Heartbeat: Heartbeats are answered again.");
    failed_ = false;
}

void Heartbeat::BeatIfAlive() {
    const bool ticked = ports_.state.nTicks != ticksSeen_;
    ticksSeen_ = ports_.state.nTicks;
    Inet::Request request{
        .URL = ports_.safeguards.Text(kHeartbeat), .RequestTimeout = kGivesUpAfter, .Redirects = InetRedirects::None};
    if (request.URL.empty() || !ticked || !ports_.switches.TimerMonitorDB.Enabled()) return;
    UseProxy(ports_.settings, request);
    try {
        if (!inet_) inet_ = ports_.newInet();
        inet_->Start(request);
        running_ = true;
    } catch (const std::exception& error) {
        Failed(error.what());
    }
}

// The address may contain a secret, so it is not in the log.
void Heartbeat::Failed(const std::string& why) {
    if (!failed_) ports_.log.WriteLog(kLogOrdinary, kLogError, "Safeguard Heartbeat: A heartbeat failed: " + why);
    failed_ = true;
}

}  // namespace korvane
