#include "notify/mail_proof.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <map>
#include <utility>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/raised_flag.h"
#include "base/text.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kKey = "ProveMail";
constexpr const char* kDefaultTime = "8:00";
constexpr const char* kSubject = "Korvane mail proof ";
constexpr auto kPeriod = 60s;
constexpr auto kNextTry = 1s;
/// After the start, and from the mail to the first look into the mailbox.
constexpr auto kSoon = 5s;
constexpr int kMostWaits = 60;
constexpr auto kMostOnTheWay = 1h;
/// After the alarm the mail may still come late.
constexpr auto kLatePeriod = 15min;
constexpr std::chrono::milliseconds kSendsAgainAfter = 5min;

constexpr const char* kStates[] = {"idle", "waiting", "overdue", "unsent"};

std::string DayOf(DateTime moment) {
    return moment.Stored().substr(0, 10);
}

std::string Minutes(std::chrono::milliseconds time) {
    return std::to_string(std::chrono::duration_cast<std::chrono::minutes>(time).count()) + " minutes";
}

}  // namespace

MailProof::MailProof(const Ports& ports, const std::string& dir)
    : ports_(ports),
      file_(dir + "/kvproof.dat"),
      box_(ports.popSocket, ports.clock, ports.events),
      timer_(ports.timers.NewTimer("TimerProof")) {
    timer_->SetInterval(kSoon);
    timer_->OnTick([this] { IgnoreErrors([this] { Look(); }); });
}

void MailProof::Follow() {
    timer_->SetEnabled(ports_.safeguards.IsOn(kKey));
}

void MailProof::Look() {
    if (working_) return;
    timer_->SetInterval(kPeriod);
    if (!ports_.safeguards.IsOn(kKey)) return;
    if (!std::exchange(loaded_, true)) Load();
    const bool begins = IsDueToday(), sends = begins || IsTimeToTryAgain();
    if (!sends && !IsTimeToRead()) return;
    if ((ports_.mail.Sending() || ports_.busy()) && waits_++ < kMostWaits) return timer_->SetInterval(kNextTry);
    const RaisedFlag working(working_);
    waits_ = 0;
    if (!sends) return ReadBack();
    begins ? Begin() : Send();
    timer_->SetInterval(kSoon);
}

bool MailProof::IsDueToday() const {
    const std::string time = Or(ports_.safeguards.Text("ProveMailTime"), kDefaultTime);
    const auto parts = Split(time, ':');
    const DateTime now = ports_.clock.Now();
    const DateTime due = now.Date() + std::chrono::hours(std::stoi(parts[0])) + std::chrono::minutes(std::stoi(parts[1]));
    return proof_.day != DayOf(now) && now >= due && proof_.state != State::Waiting && proof_.state != State::Unsent;
}

bool MailProof::IsTimeToTryAgain() const {
    return proof_.state == State::Unsent && (!tried_ || ports_.clock.GetTickCount() - *tried_ >= kSendsAgainAfter);
}

bool MailProof::IsHourOver() {
    const auto since = ports_.clock.UtcNow() - proof_.sent;
    if (since < 0s) {  // the clock was set back
        proof_.sent = ports_.clock.UtcNow();
        Save();
    }
    return since >= kMostOnTheWay;
}

bool MailProof::IsTimeToRead() const {
    const auto since = ports_.clock.UtcNow() - proof_.sent;
    return proof_.state == State::Waiting || (proof_.state == State::Overdue && since % kLatePeriod < kPeriod);
}

// The state is saved before the mail goes out, so that a restart in between looks for it rather than sends another.
void MailProof::Begin() {
    proof_ = {DayOf(ports_.clock.Now()), ports_.clock.UtcNow(), NewToken(), State::Idle};
    Send();
}

void MailProof::Send() {
    proof_.state = State::Waiting;
    lastProblem_.clear();
    Save();
    const std::string to = ports_.safeguards.Text("ProveMailTo");
    const SendOutcome outcome = ports_.mail.SendThrough(
        MailServer::Primary,
        {to, "", to, kSubject + proof_.token, "This mail proves that alerts arrive. Korvane reads it back and deletes it."});
    if (outcome.sent) {
        return ports_.log.Info("ProveMail: the mail of the day was sent to " + to + ".");
    }
    lastProblem_ = "It could not be sent. " + outcome.strError;
    if (IsHourOver()) return Missing(lastProblem_);
    ports_.log.Info("ProveMail: the mail of the day is tried again in " + Minutes(kSendsAgainAfter) + ". " + lastProblem_);
    tried_ = ports_.clock.GetTickCount();
    proof_.state = State::Unsent;
    Save();
}

void MailProof::ReadBack() {
    const Safeguards& keys = ports_.safeguards;
    auto found = PopBox::Found::No;
    try {
        found = box_.Take({keys.Text("ProveMailHost"), keys.Port("ProveMailPort", kPopTlsPort), keys.Text("SMTPAuthority"),
                           keys.Text("ProveMailUser"), keys.Text("ProveMailPass")},
                          ports_.mail.AsSent(kSubject + proof_.token));
        lastProblem_ = "It is not in the mailbox.";
    } catch (const std::exception& error) {
        lastProblem_ = "The mailbox could not be read: " + std::string(error.what()) + ".";
    }
    if (found != PopBox::Found::No) return Arrived(found == PopBox::Found::Deleted);
    const bool over = IsHourOver();
    if (over && proof_.state == State::Waiting) Missing(lastProblem_);
}

void MailProof::Arrived(bool deleted) {
    const std::string after = Minutes(ports_.clock.UtcNow() - proof_.sent);
    const bool late = proof_.state == State::Overdue;
    proof_.state = State::Idle;
    Save();
    ports_.alertPath.ProofArrived();
    const std::string text = "ProveMail: the mail of the day came " + std::string(late ? "late, " : "") + "after " + after + "." +
                             (deleted ? "" : " The mailbox did not confirm that it was deleted.");
    late ? Tell(text) : ports_.log.Info(text);
}

void MailProof::Missing(const std::string& reason) {
    proof_.state = State::Overdue;
    Save();
    ports_.alertPath.Proof(true);
    const std::string text = "ProveMail: the mail of the day has not come back, so alerts may not arrive. Server: " +
                             ports_.settings.getKvSettingsColVal("Server") + ". " + reason;
    Tell(text);
    ports_.safeguards.Acted(kKey, "The mail of " + proof_.day + " did not come back.");
    if (ports_.settings.IsTrue("bRedAlert")) ports_.sound.PlaySound(ports_.settings.getKvSettingsColVal("RedAlertWav"));
    if (Trim(ports_.settings.getKvSettingsColVal("ServerBackup")).empty()) return;
    const std::string to = ports_.safeguards.Text("ProveMailTo");
    const SendOutcome outcome = ports_.mail.SendThrough(MailServer::Backup, {to, "", to, "Korvane mail proof FAILED", text});
    if (!outcome.sent) ports_.log.WriteLog(kLogFatal, kLogError, "ProveMail: the backup server failed too. " + outcome.strError);
}

void MailProof::Tell(const std::string& text) {
    ports_.log.WriteLog(kLogFatal, kLogError, text);
    ports_.status.setStatusMSG(text);
}

std::string MailProof::NewToken() {
    const auto guid = ports_.guids.CoCreateGuid();
    char text[40];
    std::snprintf(text, sizeof text, "%08X%04X%04X%02X%02X-%lld", guid ? guid->data1 : 0, guid ? guid->data2 : 0,
                  guid ? guid->data3 : 0, guid ? guid->data4[0] : 0, guid ? guid->data4[1] : 0,
                  static_cast<long long>(ports_.clock.UtcNow().Seconds()));
    return text;
}

// A file that is missing, or that another program has changed, counts as no proof so far.
void MailProof::Load() {
    IgnoreErrors([this] {
        std::map<std::string, std::string> values;
        for (const std::string& line : Split(ports_.files.Read(file_).value_or(""), '\n')) {
            const std::size_t equals = line.find('=');
            if (equals != std::string::npos) values[line.substr(0, equals)] = TrimAll(line.substr(equals + 1));
        }
        const auto sent = DateTime::FromStored(values["sent"]);
        if (!sent || values["token"].empty()) return;
        proof_ = {values["day"], *sent, values["token"], State::Idle};
        for (const State state : {State::Waiting, State::Overdue, State::Unsent}) {
            if (values["state"] == kStates[static_cast<int>(state)]) proof_.state = state;
        }
        ports_.alertPath.Proof(proof_.state == State::Overdue);
    });
}

void MailProof::Save() {
    try {
        ports_.files.Replace(file_, "day=" + proof_.day + "\nsent=" + proof_.sent.Stored() + "\ntoken=" + proof_.token +
                                        "\nstate=" + kStates[static_cast<int>(proof_.state)] + "\n");
    } catch (const std::exception& error) {
        ports_.log.WriteLog(kLogFatal, kLogError, "ProveMail: " + std::string(error.what()));
    }
}

}  // namespace korvane
