// What the rows of one entry tell: its state and since when, its failures with what was done about them, its response times, who
// is notified, and how long an outage can last before it is noticed. What another program has made unreadable is missing here
// and hides nothing else.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/datetime.h"
#include "notify/outbox_table.h"
#include "platform/check_phases.h"
#include "shell/run/desk.h"

namespace korvane {

struct EntryDetail {
    struct Failure {
        std::optional<DateTime> dateFail;
        std::optional<std::int64_t> nFailCount;
        std::optional<std::int64_t> nFailMax;
        std::string strReason;
        std::string strAction;  ///< with the mark-up of the pages

        bool IsDown() const { return nFailCount && nFailMax && *nFailCount >= *nFailMax; }
    };

    /// An hour or a day.
    struct ResponseTime {
        DateTime from;
        std::optional<double> ms;  ///< average; nothing: none is stored
        bool failed = false;       ///< one of the failures is in it
    };

    bool isThere = false;  ///< false: there is no such entry, or the store cannot be read
    std::string strDesc;
    std::string strAddress_IP;
    std::string strCurStatus;
    std::string strLastResponse;
    bool bIsMonitoring = false;
    std::string strGroup;
    std::string idCustomer;

    std::optional<DateTime> since;  ///< start of the outage or of the failing
    bool sinceEarlier = false;      ///< it began earlier: older rows are gone
    std::optional<std::int64_t> nTriesCur;
    std::optional<std::int64_t> nTries;
    std::optional<std::int64_t> nSuccess;
    std::optional<std::int64_t> nFail;
    std::optional<double> nPercentUp;
    std::optional<DateTime> dtNextCheck;
    std::optional<DateTime> datelastcheck;
    std::optional<DateTime> datelastfail;
    std::optional<DateTime> datelastreset;
    std::optional<DateTime> downTimeStart;  ///< of the window of today that holds now

    std::vector<Failure> failures;            ///< the newest first, a few dozen at most
    std::vector<OutboxTable::Receipt> mails;  ///< the newest first; with the outbox on
    bool hasTrace = false;
    CheckPhases phases;  ///< of the last check, and its certificate; empty unless a setting keeps them

    std::vector<ResponseTime> hours;  ///< the last 24, the oldest first; the last one contains now
    std::vector<ResponseTime> days;   ///< the last 30

    std::vector<std::string> recipients;  ///< of a failure mail; empty: nobody is notified
    std::string whyNobody;                ///< in a few words, where there are lists that do not help; else empty
    bool notifiesRecovery = false;
    std::string mailProblem;  ///< of all mails: "test mail failed"; else empty

    /// The longest time from the beginning of an outage to the failure actions. The worst moment for a server to stop answering
    /// is just after a good check. Then
    ///
    ///   - its next check is due after its interval (LongestInterval; the stagger only makes it earlier),
    ///   - each of the `nTries` checks begins up to a second after it is due, since the cycle ticks once a second, and takes as
    ///     long as a check without an answer does: the time-out for a web page; for a conversation half of the time-out to
    ///     connect, and 22 s for each awaited text (the limit of 21 s, in whole seconds of the clock); 2 s for a ping,
    ///   - the cycle waits between two of them for the shorter of the interval and the setting GlobalRetryDuration.
    ///
    /// That is: interval + nTries * (1 s + check) + (nTries - 1) * min(interval, retry). Down times, and the time for which other
    /// entries, mails and reports hold the cycle up, are not in it. Nothing if a value in it is unreadable.
    std::optional<std::chrono::seconds> noticedWithin;
};

/// Reads the entry, a few dozen of its newest failures, and its response times: five queries by key or index, which take the
/// same time however many rows there are. Blocks for some milliseconds at most; throws nothing.
EntryDetail LoadEntryDetail(const Desk& desk, std::int64_t id, DateTime now);

}  // namespace korvane
