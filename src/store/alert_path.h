// Whether an alert can reach anybody. With any safeguard on, an entry whose outage would be mailed to nobody is shown in red where
// its state is shown: in the list and in the pages.
#pragma once

#include <string>

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
    void TestMail(bool sent) { testFailed_ = !sent; }

    bool IsShown() const { return safeguards_.AnyOn(); }

    /// Returns what is wrong, for an entry that is monitored, as a few words after its state; empty if nothing is, or if that
    /// cannot be read.
    std::string WarningOf(Recordset& entry) const;

private:
    const Safeguards& safeguards_;
    const SettingsCollection& settings_;
    bool testFailed_ = false;
};

}  // namespace korvane
