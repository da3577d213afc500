// Keeps what each check measured, while a setting asks for it, and mails the recipients of an entry when the certificate that its
// check has seen is about to end: once at the number of days that `CertWarnDays` says, at half of it, at three days, at one, and
// when it has ended. The state of the entry is none of its business.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/check_result.h"
#include "notify/dispatcher.h"
#include "notify/mail_outbox.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "store/last_checks.h"
#include "store/log.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

class CheckKeeper {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        MailOutbox& outbox;
        std::function<SendOutcome(const Notification& mail)> send;  ///< while the outbox is off
    };

    explicit CheckKeeper(Ports ports) : ports_(std::move(ports)), table_(ports_.store) {}

    /// Returns whether checks are measured.
    bool Wanted() const { return KeepsLastChecks(ports_.settings); }

    /// Called after each check with its row. Forgets an earlier one that was not written.
    void Take(Recordset& rs, const CheckResult& result);

    /// Called before the transaction of the row. Sends or hands over a mail that is due; waits as mails do. Throws nothing. A mail
    /// that no server took is tried again after an hour, with the next check.
    void Prepare(Recordset& rs, Connection& conn);

    /// Writes what was taken inside the caller's transaction; Committed is called when that has succeeded. Throws nothing: an
    /// outcome is stored without it, too.
    bool HasUnwritten() const { return taken_ || !mailed_.empty(); }
    void WriteWith(Connection& conn);
    void Committed();
    /// Forgets the mails that are not written: another instance may make the check again.
    void Drop() { mailed_.clear(); }

private:
    using Limit = std::chrono::hours;

    std::optional<Limit> LimitOf(DateTime end, std::chrono::days first) const;
    bool IsMailed(Connection& conn, const CertificateMail& mail);
    bool Mail(Recordset& rs, const CertificateMail& mail);
    void Tell(const std::string& text, std::string_view messageClass);

    Ports ports_;
    LastChecks table_;
    std::optional<LastCheck> taken_;
    bool keepsCertificate_ = false;                              ///< the check saw none, because it came to no answer
    std::vector<CertificateMail> mailed_;                        ///< that are not noted in the store yet
    bool noted_ = false;                                         ///< all of them were, if the transaction succeeds
    std::map<std::int64_t, std::chrono::milliseconds> nextTry_;  ///< tick counts, by entry, after a mail that failed
    std::string toldSetting_;                                    ///< the last problem of each kind
    std::string toldRefusal_;
};

}  // namespace korvane
