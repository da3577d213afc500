#include "notify/mail_outbox.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "store/database_files.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kTickBusy = 1s;
constexpr auto kTickIdle = 600s;  ///< only to look after the table
constexpr auto kShareEvery = 5s;  ///< for mails of other instances
constexpr auto kLookAfterEvery = 600s;
constexpr auto kLongestUnwritten = 3s;  ///< a mail that no transaction takes along
constexpr auto kFirstPause = 1min;
constexpr auto kLongestPause = 15min;
constexpr auto kRest = 5min;
constexpr int kTimeOutsBeforeRest = 2;
constexpr auto kGivenUpAfter = 48h;
constexpr auto kKeptFor = 24h * 30;  ///< receipts
/// A child that prints nothing for so long hangs: the mailers' own limits for one recipient are shorter.
constexpr auto kLongestSilence = 10min;

constexpr std::size_t kShortestBackup = 6;  ///< a shorter name counts as not set

constexpr std::string_view kUnnotified =
    "SELECT ID, strDesc FROM Servers WHERE bIsMonitoring AND trim(ifnull(strEmailList1, '') || ifnull(strEmailList2, '')) = ''";

std::chrono::milliseconds PauseAfter(int tries) {
    std::chrono::milliseconds pause = kFirstPause;
    for (; tries > 1 && pause < kLongestPause; --tries)
        pause *= 2;
    return std::min<std::chrono::milliseconds>(pause, kLongestPause);
}

std::vector<std::string> RecipientsOf(const Notification& mail) {
    std::vector<std::string> recipients;
    for (const std::string* list : {&mail.strTo1, &mail.strTo2})
        for (const std::string& part : Split(NormaliseRecipients(WithoutLineEnds(*list)), ';'))
            if (std::string recipient = Trim(part); !recipient.empty()) recipients.push_back(std::move(recipient));
    return recipients;
}

}  // namespace

std::string OutboxState::Text() const {
    const std::string mails = waiting == 0   ? "No mail waits"
                              : waiting == 1 ? "1 mail waits"
                                             : std::to_string(waiting) + " mails wait";
    const std::string nobody =
        unnotified.empty() ? "" : " " + std::to_string(unnotified.size()) + " of the entries would notify nobody.";
    return mails + " in the outbox. " + alertPath + nobody + (problem.empty() ? "" : " Warning: " + problem + ".");
}

MailOutbox::MailOutbox(const Ports& ports)
    : ports_(ports), table_(ports.store, ports.dir), timer_(ports.timers.NewTimer("MailOutbox")) {
    hasDuty_ = !IsShared();
    timer_->OnTick([this] { IgnoreErrors([this] { timer_Timer(); }); });
}

void MailOutbox::Follow() {
    if (IsOn()) {
        Load();
        Changed();
    } else if (loaded_) {
        Flush();
        Rest();
    }
}

// Mails of this run may be there already.
void MailOutbox::Load() {
    if (loaded_ || !hasDuty_) return;
    try {
        const OutboxTable::Contents contents = table_.Look();
        loaded_ = true;
        state_.lastReceipt = contents.lastReceipt;
        ports_.alertPath.TakenBefore(contents.lastTaken);
        std::list<Item> earlier;
        for (const OutboxTable::Waiting& waiting : contents.waiting)
            if (std::none_of(items_.begin(), items_.end(), [&](const Item& item) { return item.id == waiting.id; }))
                earlier.push_back({.id = waiting.id, .mail = waiting.mail, .born = Now() - AgeOf(waiting.mail)});
        items_.splice(items_.begin(), earlier);
    } catch (const std::exception& error) {
        LogError("the mails that wait could not be read: " + std::string(error.what()));
    }
}

void MailOutbox::FollowRestoredDatabase() {
    for (Item& item : items_) {
        if (item.id == 0 || item.mail.mail.strSubject.empty())
            continue;  // those of an earlier run have nothing here but their row
        std::optional<OutboxMail> row;
        IgnoreErrors([&] { row = table_.Read(item.id); });
        if (row && row->messageId == item.mail.messageId) continue;
        item.id = 0;
        item.mail.mail.strBody = "The text of this mail was lost with the database.";
    }
}

// Another instance may send what waits, or have added to it.
void MailOutbox::Share() {
    if (!IsShared() || Now() < nextShare_) return;
    nextShare_ = Now() + kShareEvery;
    hasDuty_ = ports_.duty->Take();
    if (!hasDuty_) items_.remove_if([&](const Item& item) { return item.id != 0 && !(round_ && round_->item == &item); });
    loaded_ = false;
    Load();
}

// A mail on its way stays waiting, and goes out under the same Message-ID when the outbox is on again.
void MailOutbox::Rest() {
    round_.reset();
    timer_->SetEnabled(false);
    ports_.person.SetMailState("", false);
    ports_.changed();
}

bool MailOutbox::Put(const Notification& mail, MailEvent event, std::int64_t idEntry, std::int64_t nOutage) {
    OutboxMail taken{.idEntry = idEntry, .event = event, .nOutage = nOutage, .recipients = RecipientsOf(mail)};
    if (taken.recipients.empty()) return false;
    taken.created = ports_.clock.Now();
    taken.mail = {taken.recipients.front(), "", WithoutLineEnds(mail.strFrom),
                  WithoutLineEnds(Or(mail.strSubject, "Korvane Notify")) + " " + taken.created.Text(), mail.strBody};
    taken.messageId = NewMessageId(ports_.guids, ports_.hostName());
    takenOver_.push_back({std::move(taken), Now()});
    Rearm();
    return true;
}

bool MailOutbox::Post(const Notification& mail) {
    if (!IsOn() || !Put(mail)) return false;
    Flush();
    return true;
}

void MailOutbox::WriteWith(Connection& conn) {
    for (Unwritten& unwritten : takenOver_) {
        try {
            Item* const failure = FailureThatWaits(unwritten.mail);
            if (failure == nullptr || failure->id == 0) {
                unwritten.id = table_.Add(conn, unwritten.mail);
                continue;
            }
            const auto whole = table_.Read(failure->id);
            if (!whole) {
                unwritten.id = table_.Add(conn, unwritten.mail);
                continue;
            }
            table_.Rewrite(conn, failure->id, Joined(*whole, unwritten.mail));
            unwritten.joins = failure->id;
        } catch (const std::exception& error) {
            LogError("a mail could not be written and is sent from memory: " + std::string(error.what()));
        }
    }
}

void MailOutbox::Commit(Connection& conn) {
    try {
        conn.CommitTrans();
    } catch (const std::exception&) {
        Settle(false);
        throw;
    }
    Settle(true);
}

void MailOutbox::Settle(bool committed, bool isLast) {
    if (takenOver_.empty()) return;
    for (Unwritten& unwritten : std::exchange(takenOver_, {})) {
        const bool isWritten = committed && (unwritten.id != 0 || unwritten.joins != 0);
        if (IsShared() && unwritten.mail.idEntry != 0 && !isWritten && !isLast) {
            unwritten.id = unwritten.joins = 0;
            takenOver_.push_back(std::move(unwritten));
            continue;
        }
        if (committed && unwritten.joins != 0) {
            for (Item& item : items_)
                if (item.id == unwritten.joins) item.mail.event = MailEvent::Other;
            continue;
        }
        Item item{.id = committed ? unwritten.id : 0, .mail = std::move(unwritten.mail), .born = unwritten.since};
        if (item.id != 0) item.mail.mail.strBody.clear();
        items_.push_back(std::move(item));
    }
    pausedUntil_ = Now();  // a new mail asks at once whether a server is there again
    Changed();
}

void MailOutbox::Flush() {
    if (takenOver_.empty()) return;
    IgnoreErrors([&] {
        const auto conn = OpenDatabase(ports_.store, ports_.dir);
        conn->BeginTrans();
        WriteWith(*conn);
        Commit(*conn);
    });
    Settle(false, true);  // the store cannot even be opened
}

void MailOutbox::DropUnwritten() {
    std::erase_if(takenOver_, [](const Unwritten& unwritten) { return unwritten.mail.idEntry != 0; });
    for (Unwritten& unwritten : takenOver_)
        unwritten.id = unwritten.joins = 0;
}

// The mail about the failure must not be on its way, and nobody may have it: who has it gets the recovery as a mail of its own. So
// does everybody when the recipients are others now, perhaps because those of the failure were wrong.
MailOutbox::Item* MailOutbox::FailureThatWaits(const OutboxMail& recovery) {
    if (recovery.event != MailEvent::Recovery) return nullptr;
    for (Item& item : items_) {
        const bool same = item.mail.event == MailEvent::Failure && item.mail.idEntry == recovery.idEntry &&
                          item.mail.recipients == recovery.recipients;
        if (same && item.mail.untouched && item.taken.empty() && !(round_ && round_->item == &item)) return &item;
    }
    return nullptr;
}

Notification MailOutbox::Joined(const OutboxMail& failure, const OutboxMail& recovery) {
    Notification joined = failure.mail;
    joined.strSubject = recovery.mail.strSubject + " (failed " + failure.created.Text() + ")";
    joined.strBody = recovery.mail.strBody +
                     "\r\n\r\nThe outage is over. No mail server took the mail about its beginning in time; it was:"
                     "\r\n-------------------------------\r\n" +
                     failure.mail.strSubject + "\r\n\r\n" + failure.mail.strBody;
    return joined;
}

void MailOutbox::timer_Timer() {
    if (!IsOn()) return Rest();
    if (!takenOver_.empty() && Now() - takenOver_.front().since >= kLongestUnwritten) Flush();
    Share();
    if (!lookedAfter_ || Now() - *lookedAfter_ >= kLookAfterEvery) LookAfter();
    if (round_ && Now() - round_->heard >= kLongestSilence) {
        round_->work.reset();
        Ended("The process that sends it was silent for " +
              std::to_string(std::chrono::duration_cast<std::chrono::minutes>(kLongestSilence).count()) + " minutes.");
    }
    GiveUpOld();
    SendNext();
    Rearm();
}

void MailOutbox::Rearm() {
    const std::chrono::milliseconds tick =
        items_.empty() && takenOver_.empty() && lookedAfter_ && !IsShared() ? kTickIdle : kTickBusy;
    if (tick != timer_->Interval()) timer_->SetInterval(tick);
    timer_->SetEnabled(true);
}

void MailOutbox::LookAfter() {
    lookedAfter_ = Now();
    Load();
    IgnoreErrors([&] { table_.Forget(ports_.clock.Now() - kKeptFor); });
    IgnoreErrors([&] { NameUnnotified(); });
    Changed();
}

// The alert that was never wired is otherwise found in the next outage.
void MailOutbox::NameUnnotified() {
    const auto conn = OpenDatabase(ports_.store, ports_.dir);
    const auto rs = OpenRows(ports_.store, *conn, kUnnotified, CursorType::Static);
    state_.unnotified.clear();
    for (; !rs->Eof(); rs->MoveNext()) {
        const std::string name = rs->Fields("strDesc").Value().Text();
        state_.unnotified.push_back(name);
        if (!named_.insert(name).second) continue;
        const std::string text = "The entry '" + name + "' would notify nobody: it has no email address.";
        LogError(text);
        ports_.status.setStatusMSG(text);
    }
}

// Only once is the clock asked for the age of a mail of an earlier run. It may have been wrong at either time, so each mail is tried
// in this run before.
std::chrono::milliseconds MailOutbox::AgeOf(const OutboxMail& mail) const {
    return std::max<Moment>(0s, ports_.clock.Now() - mail.created);
}

void MailOutbox::GiveUpOld() {
    const DateTime now = ports_.clock.Now();
    for (auto item = items_.begin(); item != items_.end();) {
        const auto next = std::next(item);
        const bool tried = item->tries > 0 || away_ > 0;
        const bool old = Now() - item->born >= kGivenUpAfter;
        if (tried && old && !(round_ && round_->item == &*item)) {
            const std::string what = "A mail of " + item->mail.created.Text() +
                                     " was given up after two days: " + Or(item->strError, state_.lastError);
            LogError(what);
            ports_.safeguards.Acted("MailOutbox", what);
            IgnoreErrors([&] { table_.NoteGivenUp(item->id, now); });
            ++state_.givenUp;
            items_.erase(item);
            Changed();
        }
        item = next;
    }
}

void MailOutbox::SendNext() {
    if (!IsOn() || round_ || Now() < pausedUntil_ || AwakeServers().empty()) return;
    for (auto item = items_.begin(); item != items_.end();) {
        const auto next = std::next(item);
        if (item->nextTry <= Now() && (hasDuty_ || item->id == 0) && Begin(*item)) return;
        item = next;
    }
}

// Returns false if the mail cannot be sent now; it may then be gone.
bool MailOutbox::Begin(Item& item) {
    OutboxMail mail = item.mail;
    if (item.id != 0) {
        try {
            auto read = table_.Read(item.id);
            if (!read) {
                LogError("row " + std::to_string(item.id) +
                         " was changed by another program and is no mail that waits any more.");
                Drop(item);
                return false;
            }
            mail = std::move(*read);
        } catch (const std::exception& error) {
            LogError("row " + std::to_string(item.id) + " could not be read: " + error.what());
            item.nextTry = Now() + PauseAfter(++item.tries);
            return false;
        }
    }
    std::erase_if(mail.recipients, [&](const std::string& recipient) { return item.taken.contains(recipient); });
    if (mail.recipients.empty()) {
        item.nextTry = Now() + kFirstPause;
        if (IgnoreErrors([&] { table_.NoteTaken(item.id, {}, state_.lastReceipt, ports_.clock.Now()); })) Drop(item);
        return false;
    }
    round_.emplace(Round{.item = &item, .mail = std::move(mail), .servers = AwakeServers()});
    Attempt();
    return true;
}

std::vector<MailServer> MailOutbox::AwakeServers() const {
    std::vector<MailServer> awake;
    if (rests_[0].until <= Now()) awake.push_back(MailServer::Primary);
    const std::string* const backup = ports_.settings.Find("ServerBackup");
    if (backup != nullptr && backup->size() >= kShortestBackup && rests_[1].until <= Now()) awake.push_back(MailServer::Backup);
    return awake;
}

void MailOutbox::Attempt() {
    round_->heard = Now();
    round_->timedOut = false;
    MailErrand errand = MailErrand::With(ports_.settings);
    errand.server = round_->servers.front();
    errand.mail = round_->mail.mail;
    errand.recipients = round_->mail.recipients;
    errand.messageId = round_->mail.messageId;
    try {
        round_->work = ports_.program.Start(kSendMail, errand.Text(),
                                            {.line = [this](const std::string& line) { Heard(line); },
                                             .ended = [this](const std::string& problem) { Ended(problem); }});
    } catch (const std::exception& error) {
        Ended(error.what());
    }
}

void MailOutbox::Heard(const std::string& line) {
    const auto answer = MailAnswer::Parse(line);
    if (!round_ || !answer || answer->recipient >= round_->mail.recipients.size()) return;
    const Moment took = Now() - std::exchange(round_->heard, Now());
    round_->greeted = round_->greeted || answer->greeted || answer->taken;
    if (answer->taken) return Take(*answer);
    round_->timedOut = round_->timedOut || took >= kSilentServer;
    round_->strError =
        round_->mail.recipients[answer->recipient] + ": " + answer->words + " using " + NameOf(round_->servers.front());
}

// The places of the recipients must stay until the child has ended.
void MailOutbox::Take(const MailAnswer& answer) {
    Item& item = *round_->item;
    const std::string& recipient = round_->mail.recipients[answer.recipient];
    item.taken.insert(recipient);
    std::vector<std::string> left = round_->mail.recipients;
    std::erase_if(left, [&](const std::string& other) { return item.taken.contains(other); });
    if (item.id != 0) {
        try {
            table_.NoteTaken(item.id, left, answer.words, ports_.clock.Now());
            item.unnoted = false;
        } catch (const std::exception& error) {
            item.unnoted = true;
            LogError("what a server has taken could not be noted: " + std::string(error.what()));
        }
    }
    state_.lastReceipt = answer.words;
    ports_.alertPath.Taken(ports_.clock.Now());
    state_.lastError.clear();
    ports_.log.Info("MailOutbox: '" + round_->mail.mail.strSubject + "' was taken for " + recipient + ": " + answer.words);
}

void MailOutbox::Ended(const std::string& problem) {
    if (!round_) return;
    const auto work = std::move(round_->work);  // lives until this returns: it is the caller
    const bool sent = std::all_of(round_->mail.recipients.begin(), round_->mail.recipients.end(),
                                  [&](const std::string& recipient) { return round_->item->taken.contains(recipient); });
    if (sent) return Sent();
    if (!problem.empty()) round_->strError = problem;
    NoteServer(round_->timedOut || Now() - round_->heard >= kSilentServer);
    round_->servers.erase(round_->servers.begin());
    std::erase_if(round_->mail.recipients, [&](const std::string& recipient) { return round_->item->taken.contains(recipient); });
    if (round_->servers.empty()) return Failed();
    Attempt();
}

void MailOutbox::NoteServer(bool timedOut) {
    const MailServer server = round_->servers.front();
    ServerRest& rest = RestOf(server);
    rest.timeOuts = timedOut ? rest.timeOuts + 1 : 0;
    if (rest.timeOuts < kTimeOutsBeforeRest) return;
    rest = {.timeOuts = 0, .until = Now() + kRest};
    const std::string text =
        "The mail server '" + NameOf(server) + "' did not answer twice in a row and is left alone for five minutes.";
    LogError(text);
    ports_.status.setStatusMSG(text);
}

std::string MailOutbox::NameOf(MailServer server) const {
    const std::string* const name = ports_.settings.Find(server == MailServer::Primary ? "Server" : "ServerBackup");
    return name == nullptr ? "" : *name;
}

// A server is there again: whatever waited only for that is due.
void MailOutbox::Sent() {
    RestOf(round_->servers.front()).timeOuts = 0;
    away_ = 0;
    pausedUntil_ = Now();
    Item& item = *round_->item;
    round_.reset();
    if (Now() - item.born >= kFirstPause)
        ports_.safeguards.Acted("MailOutbox", "A mail that no server had taken at first went out later.");
    item.nextTry = Now() + kFirstPause;
    if (!item.unnoted) Drop(item);
    SendNext();
}

void MailOutbox::Failed() {
    Item& item = *round_->item;
    const bool greeted = round_->greeted;
    item.strError = state_.lastError = round_->strError;
    away_ = greeted ? 0 : away_ + 1;
    const int tries = greeted ? ++item.tries : away_;
    const Moment pause = PauseAfter(tries);
    (greeted ? item.nextTry : pausedUntil_) = Now() + pause;
    const std::string subject = round_->mail.mail.strSubject;
    round_.reset();
    if (item.id != 0)
        IgnoreErrors([&] {
            table_.NoteFailure(item.id, tries, ports_.clock.Now() + std::chrono::duration_cast<std::chrono::seconds>(pause),
                               state_.lastError);
        });
    LogError("'" + subject + "' was not taken for " + state_.lastError);
    ports_.status.setStatusMSG("Email failed because " + state_.lastError);
    Changed();
    if (greeted) SendNext();
}

void MailOutbox::Drop(const Item& item) {
    items_.remove_if([&](const Item& other) { return &other == &item; });
    Changed();
}

void MailOutbox::Changed() {
    Rearm();
    const std::size_t waiting = items_.size();
    state_.problem = ports_.alertPath.Problem();
    state_.alertPath = ports_.alertPath.ProvenText();
    if (std::exchange(state_.waiting, waiting) != waiting) ports_.status.setStatusMSG(state_.Text());
    ports_.person.SetMailState(state_.Text(), state_.IsAlarming());
    ports_.changed();
}

}  // namespace korvane
