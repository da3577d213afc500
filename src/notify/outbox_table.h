// The table `MailOutbox`: mails that are due, each with what has become of it. People and other tools may read and change it, so
// nothing in it is relied on: a row that cannot be used is named and left out.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/datetime.h"
#include "notify/dispatcher.h"
#include "platform/connection.h"

namespace korvane {

/// What a mail is about.
enum class MailEvent { Failure, Recovery, Other };

struct OutboxMail {
    std::int64_t idEntry = 0;  ///< 0: none
    MailEvent event = MailEvent::Other;
    std::int64_t nOutage = 0;                  ///< the number of failures of the entry when the outage began
    Notification mail = {};                    ///< `strTo1` is its first recipient, the subject is dated, `strTo2` unused
    std::vector<std::string> recipients = {};  ///< that have not got it
    std::string messageId = {};
    DateTime created = {};
    bool untouched = true;  ///< no server has taken it for anybody
};

class OutboxTable {
public:
    /// `dir` is the folder of the database.
    OutboxTable(Store& store, std::string dir) : store_(store), dir_(std::move(dir)) {}

    /// Returns the statement that creates the table.
    static std::vector<std::string> Statements();

    // All throw Error for the store's reason. Those without a connection open one of their own.

    /// Adds a mail that waits, and returns its ID; creates the table if there is none.
    std::int64_t Add(Connection& conn, const OutboxMail& mail);
    std::int64_t Add(const OutboxMail& mail);

    /// Replaces subject and body of a mail that waits.
    void Rewrite(Connection& conn, std::int64_t id, const Notification& mail);

    /// Returns a mail that waits; nothing when the row is gone or no longer a mail that can be sent.
    std::optional<OutboxMail> Read(std::int64_t id);

    /// Notes what a server has taken, or why none took it. Does nothing when the row is gone.
    void NoteTaken(std::int64_t id, const std::vector<std::string>& left, const std::string& receipt, DateTime now);
    void NoteFailure(std::int64_t id, int tries, DateTime nextTry, const std::string& reason);
    void NoteGivenUp(std::int64_t id, DateTime now);

    struct Waiting {
        std::int64_t id;
        OutboxMail mail;  ///< without its text
    };
    struct Contents {
        std::vector<Waiting> waiting;  ///< in order of creation
        std::string lastReceipt;
        std::optional<DateTime> lastTaken;
    };
    /// Returns nothing at all when there is no table.
    Contents Look();

    /// What has become of a mail about an entry.
    struct Receipt {
        MailEvent event = MailEvent::Other;
        std::optional<DateTime> created;
        std::string recipients;  ///< all of them, with ";" between
        std::string left;        ///< those that have not got it
        std::string state;       ///< "waiting", "sent" or "given up"
        std::string receipt;     ///< the answer of the server that took it
        std::string lastError;
    };
    /// Returns the newest few mails about the entry among the last thousand of the table, the newest first. Empty without a table.
    std::vector<Receipt> MailsOf(Connection& conn, std::int64_t idEntry);

    /// Removes what was sent or given up before that moment.
    void Forget(DateTime before);

private:
    bool Exists(Connection& conn);
    template <class Change>
    void ChangeRow(std::int64_t id, Change change);

    Store& store_;
    std::string dir_;
};

}  // namespace korvane
