#include "store/last_checks.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "store/database_files.h"

namespace korvane {
namespace {

using Duration = CheckPhases::Duration;

constexpr std::string_view kKeepPhases = "KeepPhases";
constexpr std::string_view kCertWarnDays = "CertWarnDays";
constexpr std::int64_t kMostDays = 1000;
constexpr std::size_t kLongestStep = 40;
constexpr double kMostMilliseconds = 1e9;  ///< what is larger was not measured

/// A row that is written again replaces the one before, in one statement that is prepared once.
constexpr std::string_view kCreatesChecks =
    "CREATE TABLE IF NOT EXISTS LastChecks (ID INTEGER PRIMARY KEY ON CONFLICT REPLACE, dtCheck TEXT, nName REAL, nConnect REAL, "
    "nTLS REAL, nFirstByte REAL, nWhole REAL, strSteps TEXT, dtCertificate TEXT)";
constexpr std::string_view kCreatesMails =
    "CREATE TABLE IF NOT EXISTS CertificateMails (ID INTEGER PRIMARY KEY, IDParent INTEGER, dtEnd TEXT, nHours INTEGER, dtMailed "
    "TEXT)";
constexpr std::string_view kForgetsChecks =
    "CREATE TRIGGER IF NOT EXISTS LastChecksOfDeleted AFTER DELETE ON Servers BEGIN DELETE FROM LastChecks WHERE ID = OLD.ID; "
    "END";
constexpr std::string_view kForgetsMails =
    "CREATE TRIGGER IF NOT EXISTS CertificateMailsOfDeleted AFTER DELETE ON Servers BEGIN DELETE FROM CertificateMails WHERE "
    "IDParent = OLD.ID; END";

constexpr std::string_view kWritesCheck = "INSERT INTO LastChecks VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)";

/// In the order of the table.
constexpr std::pair<const char*, std::optional<Duration> CheckPhases::*> kPhaseColumns[] = {
    {"nName", &CheckPhases::name},           {"nConnect", &CheckPhases::connect}, {"nTLS", &CheckPhases::tls},
    {"nFirstByte", &CheckPhases::firstByte}, {"nWhole", &CheckPhases::whole},
};

std::string TextOf(const SettingsCollection& settings, std::string_view key) {
    const std::string* value = settings.Find(key);
    return value == nullptr ? "" : Trim(*value);
}

std::optional<std::chrono::days> DaysIn(const std::string& text) {
    std::int64_t days = 0;
    IgnoreErrors([&] {
        if (std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) days = ParseWhole(text);
    });
    if (days < 1 || days > kMostDays) return std::nullopt;
    return std::chrono::days(days);
}

double Milliseconds(Duration duration) {
    return static_cast<double>(duration.count()) / 1000.0;
}

std::optional<Duration> DurationOf(double milliseconds) {
    if (!(milliseconds >= 0 && milliseconds < kMostMilliseconds)) return std::nullopt;
    return Duration(std::llround(milliseconds * 1000.0));
}

std::optional<DateTime> MomentOf(Recordset& rs, std::string_view column) {
    std::optional<DateTime> when;
    IgnoreErrors([&] { when = DateTime::FromStored(rs.Fields(column).Value().Text()); });
    return when;
}

// A line for each: "12.5 220".
std::string StepsText(const std::vector<CheckPhases::Step>& steps) {
    std::string text;
    for (const CheckPhases::Step& step : steps) {
        const std::string awaited =
            ReplaceAll(ReplaceAll(Left(WithoutControls(step.awaited), kLongestStep), "\r", " "), "\n", " ");
        text += (text.empty() ? "" : "\n") + FormatGeneral(Milliseconds(step.took)) + " " + awaited;
    }
    return text;
}

std::vector<CheckPhases::Step> StepsIn(const std::string& text) {
    std::vector<CheckPhases::Step> steps;
    if (text.empty()) return steps;
    for (const std::string& line : Split(text, '\n')) {
        const std::size_t blank = std::min(line.find(' '), line.size());
        IgnoreErrors([&] {
            if (const auto took = DurationOf(ParseNumber(line.substr(0, blank))))
                steps.push_back({line.substr(std::min(blank + 1, line.size())), *took});
        });
    }
    return steps;
}

LastCheck CheckIn(Recordset& rs) {
    LastCheck check;
    check.id = rs.Fields("ID").Value().Int64();
    check.when = MomentOf(rs, "dtCheck").value_or(DateTime());
    for (const auto& [column, phase] : kPhaseColumns) {
        IgnoreErrors([&, name = column, member = phase] {
            const Value value = rs.Fields(name).Value();
            if (!value.IsBlank()) check.phases.*member = DurationOf(value.Double());
        });
    }
    IgnoreErrors([&] { check.phases.steps = StepsIn(rs.Fields("strSteps").Value().Text()); });
    check.phases.certificateEnd = MomentOf(rs, "dtCertificate");
    return check;
}

/// Adds a row; creates its table if it cannot.
template <class Add>
void AddRow(Connection& conn, std::string_view createsTable, std::string_view createsTrigger, Add add) {
    if (IgnoreErrors(add)) return;
    conn.Execute(createsTable);
    conn.Execute(createsTrigger);
    add();
}

}  // namespace

std::vector<std::string> LastChecks::CheckStatements() {
    return {std::string(kCreatesChecks), std::string(kForgetsChecks)};
}

std::vector<std::string> LastChecks::MailStatements() {
    return {std::string(kCreatesMails), std::string(kForgetsMails)};
}

std::optional<std::chrono::days> CertWarnDays(const SettingsCollection& settings) {
    return DaysIn(TextOf(settings, kCertWarnDays));
}

std::string CertWarnDaysProblem(std::string_view value) {
    const std::string text = Trim(value);
    if (text.empty() || DaysIn(text)) return "";
    return std::string(kCertWarnDays) + ": '" + text + "' is not a number of days from 1 to " + std::to_string(kMostDays) + ".";
}

bool KeepsLastChecks(const SettingsCollection& settings) {
    return TextOf(settings, kKeepPhases) == "True" || CertWarnDays(settings);
}

std::string LastChecksProblem(const SettingsCollection& settings) {
    const std::string keeps = TextOf(settings, kKeepPhases);
    const std::string days = CertWarnDaysProblem(TextOf(settings, kCertWarnDays));
    std::string problem;
    if (!keeps.empty() && keeps != "True" && keeps != "False")
        problem = "KeepPhases: '" + keeps + "' is not \"True\" or \"False\". It is off.";
    if (!days.empty()) problem += (problem.empty() ? "" : " ") + days + " It is off.";
    return problem;
}

// One statement, because this is part of each check.
void LastChecks::Write(Connection& conn, const LastCheck& check) {
    std::vector<Value> row{check.id, check.when.Stored()};
    for (const auto& [column, phase] : kPhaseColumns) {
        const auto& took = check.phases.*phase;
        row.emplace_back();
        if (took) row.back() = Milliseconds(*took);
    }
    row.emplace_back(StepsText(check.phases.steps));
    row.emplace_back();
    if (check.phases.certificateEnd) row.back() = check.phases.certificateEnd->Stored();
    AddRow(conn, kCreatesChecks, kForgetsChecks, [&] { conn.Execute(kWritesCheck, row); });
}

std::map<std::int64_t, LastCheck> LastChecks::ReadRows(Connection& conn, const std::string& where) {
    std::map<std::int64_t, LastCheck> checks;
    const auto rs = OpenRows(store_, conn, "SELECT * FROM LastChecks" + where, CursorType::Static);
    for (; !rs->Eof(); rs->MoveNext())
        IgnoreErrors([&] {
            LastCheck check = CheckIn(*rs);
            checks.insert_or_assign(check.id, std::move(check));
        });
    return checks;
}

std::optional<LastCheck> LastChecks::Read(Connection& conn, std::int64_t id) {
    const auto rows = ReadRows(conn, " WHERE ID = " + std::to_string(id));
    return rows.empty() ? std::nullopt : std::optional(rows.begin()->second);
}

std::map<std::int64_t, LastCheck> LastChecks::ReadAll(Connection& conn) {
    return ReadRows(conn, "");
}

void LastChecks::AddMail(Connection& conn, const CertificateMail& mail) {
    AddRow(conn, kCreatesMails, kForgetsMails, [&] {
        const auto rs = OpenRows(store_, conn, "SELECT * FROM CertificateMails WHERE ID < 0");
        rs->AddNew();
        rs->Fields("IDParent") = mail.idEntry;
        rs->Fields("dtEnd") = mail.end.Stored();
        rs->Fields("nHours") = std::int64_t{mail.limit.count()};
        rs->Fields("dtMailed") = mail.mailed.Stored();
        rs->Update();
    });
}

std::vector<CertificateMail> LastChecks::MailsOf(Connection& conn, std::int64_t id) {
    std::vector<CertificateMail> mails;
    const auto rs =
        OpenRows(store_, conn, "SELECT * FROM CertificateMails WHERE IDParent = " + std::to_string(id), CursorType::Static);
    for (; !rs->Eof(); rs->MoveNext()) {
        const auto end = MomentOf(*rs, "dtEnd"), mailed = MomentOf(*rs, "dtMailed");
        IgnoreErrors([&] {
            const std::chrono::hours limit(rs->Fields("nHours").Value().Int64());
            if (end && mailed) mails.push_back({id, *end, limit, *mailed});
        });
    }
    return mails;
}

}  // namespace korvane
