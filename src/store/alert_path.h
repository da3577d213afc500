// Whether an alert can reach anybody. With any safeguard on, an entry whose outage would be mailed to nobody is shown in red where
// its state is shown: in the list and in the pages. With the outbox on, they and the service manager's status say when it was proven
// last that mail goes out.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "base/datetime.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/files.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"

namespace korvane {

class AlertPath {
public:
    struct Ports {
        const Safeguards& safeguards;
        const SettingsCollection& settings;
        Files& files;
        const Clock& clock;
    };

    AlertPath(const Ports& ports, const std::string& dir) : ports_(ports), file_(dir + "/kvalertpath.dat") {}
    AlertPath(const AlertPath&) = delete;
    AlertPath& operator=(const AlertPath&) = delete;

    /// Continues with what `<dir>/kvalertpath.dat` says of earlier runs; that file is neither read nor written while all safeguards
    /// are off.
    void Load();

    /// The result of the operator's last test mail.
    void TestMail(bool sent);
    /// Whether the proof of the day is overdue; and that its mail has come back.
    void Proof(bool overdue);
    void ProofArrived();
    /// A server has taken a mail of the outbox, which keeps that itself; in an earlier run, if something else is known to be later.
    void Taken(DateTime when) { proven_ = when; }
    void TakenBefore(std::optional<DateTime> when);

    /// Called after each of the first three.
    void OnProblem(std::function<void()> onProblem) { onProblem_ = std::move(onProblem); }

    /// "Alert path last proven 11/21/2026 3:00:02 PM."
    std::string ProvenText() const;
    /// The same; empty while the outbox is off.
    std::string Proven() const { return ports_.safeguards.IsOn("MailOutbox") ? ProvenText() : ""; }

    bool IsShown() const { return ports_.safeguards.AnyOn(); }

    /// Returns what is wrong, for an entry that is monitored, as a few words after its state; empty if nothing is, or if that
    /// cannot be read.
    std::string WarningOf(Recordset& entry) const;
    /// The same for what concerns all entries: "test mail failed" or "mail proof overdue".
    std::string Problem() const;

private:
    void Keep();
    void Tell() {
        if (onProblem_) onProblem_();
    }

    Ports ports_;
    std::string file_;
    std::function<void()> onProblem_;
    std::optional<DateTime> proven_;
    bool testFailed_ = false;
    bool proofOverdue_ = false;
};

}  // namespace korvane
