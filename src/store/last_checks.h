// What the last check of each entry measured, in the table `LastChecks`, and the mails about the ends of certificates, in
// `CertificateMails`. Both are created when they are first written, and nothing is kept unless a setting asks for it. When an entry
// is deleted, by whatever program, the database removes its rows.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/check_phases.h"
#include "platform/connection.h"
#include "store/settings_collection.h"

namespace korvane {

/// Returns whether last checks are kept: `KeepPhases` is "True", or `CertWarnDays` is set.
bool KeepsLastChecks(const SettingsCollection& settings);
/// Returns how many days before the end of a certificate the first mail goes out, 1 to 1000; nothing when the setting is blank or
/// unusable.
std::optional<std::chrono::days> CertWarnDays(const SettingsCollection& settings);
/// Returns what is wrong with the value, for the operator; empty if nothing is.
std::string CertWarnDaysProblem(std::string_view value);
/// Returns what is wrong with the two settings, for the operator; empty if nothing is.
std::string LastChecksProblem(const SettingsCollection& settings);

struct LastCheck {
    std::int64_t id = 0;  ///< of the entry
    DateTime when;
    CheckPhases phases;
};

/// A mail about a certificate of an entry.
struct CertificateMail {
    std::int64_t idEntry = 0;
    DateTime end;                 ///< of the certificate
    std::chrono::hours limit{0};  ///< so long before the end it was due
    DateTime mailed;
};

class LastChecks {
public:
    explicit LastChecks(Store& store) : store_(store) {}

    /// Return the statements that create a table and what belongs to it.
    static std::vector<std::string> CheckStatements();
    static std::vector<std::string> MailStatements();

    // All throw Error for the store's reason, those that read also when there is no table.

    /// Replaces what is kept of the entry.
    void Write(Connection& conn, const LastCheck& check);
    std::optional<LastCheck> Read(Connection& conn, std::int64_t id);
    /// Returns those of all entries, by ID.
    std::map<std::int64_t, LastCheck> ReadAll(Connection& conn);

    void AddMail(Connection& conn, const CertificateMail& mail);
    std::vector<CertificateMail> MailsOf(Connection& conn, std::int64_t id);

private:
    std::map<std::int64_t, LastCheck> ReadRows(Connection& conn, const std::string& where);

    Store& store_;
};

}  // namespace korvane
