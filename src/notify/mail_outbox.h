// The outbox: with the safeguard `MailOutbox` on, mail is written to the database in the transaction of the change that made it
// due, and goes out beside the cycle, in a child process for each try. A mail that no server takes waits, is tried again after
// pauses of one to fifteen minutes, and is given up after two days. What a server has taken is noted at once, for each recipient.
#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "notify/mail_errand.h"
#include "notify/outbox_table.h"
#include "platform/clock.h"
#include "platform/guid_source.h"
#include "platform/own_program.h"
#include "platform/timer.h"
#include "store/alert_path.h"
#include "store/duty.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// What windows, pages and the status line show of the outbox.
struct OutboxState {
    std::size_t waiting = 0;
    std::size_t givenUp = 0;              ///< since the start
    std::string lastReceipt;              ///< the answer of the server that took a mail last
    std::string alertPath;                ///< "Alert path last proven 11/21/2026 3:00:02 PM."
    std::string lastError;                ///< empty after a success
    std::vector<std::string> unnotified;  ///< entries that would notify nobody
    std::string problem;                  ///< of the alert path, for all entries

    /// "2 mails wait in the outbox. Alert path last proven 11/21/2026 3:00:02 PM."
    std::string Text() const;
    /// Returns whether somebody should look after it.
    bool IsAlarming() const { return !unnotified.empty() || !problem.empty() || !lastError.empty() || givenUp > 0; }
};

class MailOutbox {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        Timers& timers;
        GuidSource& guids;
        OwnProgram& program;
        Operator& person;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        Safeguards& safeguards;
        std::string dir;                        ///< folder of the database
        std::function<std::string()> hostName;  ///< of this machine, for the Message-ID
        AlertPath& alertPath;
        std::function<void()> changed;  ///< the state may be another one
        Duty* duty = nullptr;           ///< to send what waits, where instances share the list
    };

    explicit MailOutbox(const Ports& ports);

    bool IsShared() const { return ports_.duty != nullptr; }
    /// With a shared list it always is: only what is written with the outcome of a check is sent once, whoever made the check.
    bool IsOn() const { return IsShared() || ports_.safeguards.IsOn("MailOutbox"); }

    /// Called once the database is there, and when the settings have changed: continues with what waits, also from earlier runs, or
    /// stops at once. Does nothing if the safeguard was never on.
    void Follow();

    /// Takes a mail over. It is written by the next WriteWith, or by itself after some seconds. Returns false when it names
    /// nobody; nothing waits then.
    bool Put(const Notification& mail, MailEvent event = MailEvent::Other, std::int64_t idEntry = 0, std::int64_t nOutage = 0);

    /// Takes a mail over and writes it at once; from memory it goes out if the store refuses it. Returns false while the safeguard
    /// is off, or when it names nobody. Throws nothing.
    bool Post(const Notification& mail);

    /// Writes what was taken over inside the caller's transaction, which Commit then ends: the mails go out from then on, from
    /// memory if the store refused them. WriteWith throws nothing, Commit what CommitTrans throws. With a shared list those of
    /// entries then stay taken over until DropUnwritten or Flush: the check is made again, perhaps by another instance.
    bool HasUnwritten() const { return !takenOver_.empty(); }
    void WriteWith(Connection& conn);
    void Commit(Connection& conn);
    /// The same in a transaction of its own. Throws nothing.
    void Flush();
    /// Forgets what was taken over about entries.
    void DropUnwritten();

    /// Called when an older copy has taken the place of the database: a mail whose row is gone goes out from memory, and says that its
    /// text is lost.
    void FollowRestoredDatabase();

    const OutboxState& State() const { return state_; }
    /// Called when the alert path has a new problem or is good again.
    void LookAtPath() {
        if (IsOn()) Changed();
    }

private:
    using Moment = std::chrono::milliseconds;  ///< of the tick count, which no change of the clock moves

    struct Item {
        std::int64_t id = 0;  ///< of its row; 0: it is only in memory
        OutboxMail mail;      ///< without its text if it has a row
        int tries = 0;
        Moment born{0};
        Moment nextTry{0};
        std::set<std::string> taken = {};  ///< recipients who have it
        bool unnoted = false;              ///< the store refused to note some of them
        std::string strError = {};         ///< of its latest try
    };
    struct Unwritten {
        OutboxMail mail;
        Moment since;
        std::int64_t id = 0;     ///< its row in the transaction under way
        std::int64_t joins = 0;  ///< the row of the failure that it was joined with instead
    };
    struct ServerRest {
        int timeOuts = 0;
        Moment until{0};
    };
    /// The mail that is being sent, through one server after the other.
    struct Round {
        Item* item;
        OutboxMail mail;
        std::vector<MailServer> servers;  ///< the current one is the first
        Moment heard{0};                  ///< when the current attempt began or the child last spoke
        bool timedOut = false;
        bool greeted = false;
        std::string strError = {};
        std::unique_ptr<OwnProgram::Work> work = {};
    };

    void Load();
    void Share();
    void Rest();
    void Settle(bool committed, bool isLast = false);
    void timer_Timer();
    void Rearm();
    void LookAfter();
    void NameUnnotified();
    void GiveUpOld();
    Moment AgeOf(const OutboxMail& mail) const;
    Item* FailureThatWaits(const OutboxMail& recovery);
    static Notification Joined(const OutboxMail& failure, const OutboxMail& recovery);

    void SendNext();
    bool Begin(Item& item);
    std::vector<MailServer> AwakeServers() const;
    void Attempt();
    void Heard(const std::string& line);
    void Take(const MailAnswer& answer);
    void Ended(const std::string& problem);
    void NoteServer(bool timedOut);
    std::string NameOf(MailServer server) const;
    void Sent();
    void Failed();
    void Drop(const Item& item);

    Moment Now() const { return ports_.clock.GetTickCount(); }
    ServerRest& RestOf(MailServer server) { return rests_[server == MailServer::Primary ? 0 : 1]; }
    void LogError(const std::string& text) { ports_.log.WriteLog(kLogOrdinary, kLogError, "MailOutbox: " + text); }
    void Changed();

    Ports ports_;
    OutboxTable table_;
    std::unique_ptr<Timer> timer_;
    bool loaded_ = false;  ///< what waits from earlier runs
    bool hasDuty_ = true;
    Moment nextShare_{0};
    std::vector<Unwritten> takenOver_;
    std::list<Item> items_;  ///< in order of creation
    std::optional<Round> round_;
    std::array<ServerRest, 2> rests_;
    int away_ = 0;           ///< tries in a row in which no server greeted
    Moment pausedUntil_{0};  ///< because of that
    std::optional<Moment> lookedAfter_;
    std::set<std::string> named_;  ///< entries that were named
    OutboxState state_;
};

}  // namespace korvane
