// Whether an alert can reach anybody. With any safeguard on, an entry whose outage would be mailed to nobody is shown in red where
// its state is shown: in the list and in the pages. With the outbox on, they and the service manager's status say when a mail was
// taken last.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "platform/connection.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"

namespace korvane {

class AlertPath {
public:
    /// Both must outlive this.
    AlertPath(const Safeguards& safeguards, const SettingsCollection& settings) : safeguards_(safeguards), settings_(settings) {}
    AlertPath(const AlertPath&) = delete;
    AlertPath& operator=(const AlertPath&) = delete;

    /// The result of the operator's last test mail.
    void TestMail(bool sent) {
        testFailed_ = !sent;
        if (onProblem_) onProblem_();
    }
    /// Whether the proof of the day is overdue.
    void Proof(bool overdue) {
        proofOverdue_ = overdue;
        if (onProblem_) onProblem_();
    }
    /// Called after each of the two.
    void OnProblem(std::function<void()> onProblem) { onProblem_ = std::move(onProblem); }

    /// A sentence of the outbox.
    void SetProven(const std::string& text) { proven_ = text; }
    /// "Alert path last proven 11/21/2026 3:00:02 PM."; empty while the outbox is off.
    std::string Proven() const { return safeguards_.IsOn("MailOutbox") ? proven_ : ""; }

    bool IsShown() const { return safeguards_.AnyOn(); }

    /// Returns what is wrong, for an entry that is monitored, as a few words after its state; empty if nothing is, or if that
    /// cannot be read.
    std::string WarningOf(Recordset& entry) const;
    /// The same for what concerns all entries: "test mail failed" or "mail proof overdue".
    std::string Problem() const;

private:
    const Safeguards& safeguards_;
    const SettingsCollection& settings_;
    std::function<void()> onProblem_;
    std::string proven_;
    bool testFailed_ = false;
    bool proofOverdue_ = false;
};

}  // namespace korvane
