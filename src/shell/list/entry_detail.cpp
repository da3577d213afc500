#include "shell/list/entry_detail.h"

#include <algorithm>
#include <utility>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/down_time.h"
#include "engine/outcome.h"
#include "engine/server_table.h"
#include "notify/global_email.h"
#include "notify/mail_message.h"
#include "shell/list/outage_starts.h"
#include "store/database_files.h"
#include "store/last_checks.h"

namespace korvane {
namespace {

constexpr int kHours = 24;
constexpr int kDays = 30;
constexpr double kMostNumber = 1e12;  ///< what is larger was not measured
constexpr std::chrono::seconds kTick{1};
constexpr std::chrono::seconds kPingTakes{2};
constexpr std::chrono::seconds kReplyTakes{22};
constexpr std::chrono::seconds kRetryWithoutOne{60};
constexpr std::int64_t kLongestWait = 100LL * 366 * 86400;  ///< longer ones mean never

std::string TextOf(Recordset& rs, const char* column) {
    std::string text;
    IgnoreErrors([&] { text = TrimAll(WithoutControls(ColumnText(rs, column))); });
    return text;
}

template <class T, class Read>
std::optional<T> Readable(Read read) {
    std::optional<T> value;
    IgnoreErrors([&] { value = read(); });
    return value;
}

std::optional<DateTime> MomentOf(Recordset& rs, const char* column) {
    return Readable<DateTime>([&] { return rs.Fields(column).Value().When(); });
}

std::optional<double> NumberOf(Recordset& rs, const char* column) {
    const auto number = Readable<double>([&] { return rs.Fields(column).Value().Double(); });
    return number && *number >= 0 && *number < kMostNumber ? number : std::nullopt;
}

/// A counter that was never written counts as zero.
std::optional<std::int64_t> CounterOf(Recordset& rs, const char* column) {
    const auto read = [&] {
        const Value value = rs.Fields(column).Value();
        return value.IsBlank() ? 0 : value.Int64();
    };
    return Readable<std::int64_t>(read);
}

// What cannot be read counts as yes, as it does for the cycle.
bool IsSet(Recordset& rs, const char* column) {
    return Readable<bool>([&] { return rs.Fields(column).Value().Bool(); }).value_or(true);
}

// By the index on entry and date; the table may have any number of rows. A page of failures keeps no more than fifty.
std::string FailuresOf(const std::string& id) {
    return "SELECT ID, nFailCount, nFailMax, strAction, strReason, dateFail FROM Failures WHERE IDParent = " + id +
           " ORDER BY dateFail DESC, ID DESC LIMIT 60";
}

// By the index on entry, kind and date. There is one row for each hour or day.
std::string ResponseOf(const std::string& id, const char* txtType, DateTime from) {
    return "SELECT id, dtCur, nAveResponse FROM Response WHERE idParent = " + id + " AND txtType = '" + txtType +
           "' AND dtCur >= '" + from.Stored() + "' ORDER BY dtCur DESC LIMIT 100";
}

void ReadFailures(const Desk& desk, Connection& conn, const std::string& id, EntryDetail& detail) {
    const auto rs = OpenRows(desk.store, conn, FailuresOf(id), CursorType::Static);
    for (; !rs->Eof(); rs->MoveNext())
        detail.failures.push_back({MomentOf(*rs, "dateFail"), CounterOf(*rs, "nFailCount"), CounterOf(*rs, "nFailMax"),
                                   TextOf(*rs, "strReason"), TextOf(*rs, "strAction")});
}

std::vector<EntryDetail::ResponseTime> Slots(DateTime newest, std::chrono::hours length, int count) {
    std::vector<EntryDetail::ResponseTime> slots;
    for (int i = count - 1; i >= 0; --i)
        slots.push_back({.from = newest - length * i, .ms = {}});
    return slots;
}

EntryDetail::ResponseTime* SlotOf(std::vector<EntryDetail::ResponseTime>& slots, const std::optional<DateTime>& when,
                                  std::chrono::hours length) {
    if (!when || *when < slots.front().from || *when >= slots.back().from + length) return nullptr;
    return &slots[static_cast<std::size_t>((*when - slots.front().from) / length)];
}

std::vector<EntryDetail::ResponseTime> ReadTimes(const Desk& desk, Connection& conn, const std::string& id, const char* txtType,
                                                 std::vector<EntryDetail::ResponseTime> slots, std::chrono::hours length,
                                                 const EntryDetail& detail) {
    const auto rs = OpenRows(desk.store, conn, ResponseOf(id, txtType, slots.front().from), CursorType::Static);
    for (; !rs->Eof(); rs->MoveNext()) {
        const auto ms = NumberOf(*rs, "nAveResponse");
        auto* const slot = SlotOf(slots, MomentOf(*rs, "dtCur"), length);
        if (slot != nullptr && !slot->ms && ms) slot->ms = ms;  // the newest of an hour counts
    }
    for (const EntryDetail::Failure& failure : detail.failures)
        if (auto* const slot = SlotOf(slots, failure.dateFail, length); slot != nullptr) slot->failed = true;
    return slots;
}

void AddRecipients(const std::string& list, std::vector<std::string>& recipients) {
    for (const std::string& part : Split(NormaliseRecipients(list), ';'))
        if (std::string recipient = Trim(part); !recipient.empty()) recipients.push_back(std::move(recipient));
}

std::string WhyNobody(const Desk& desk, Recordset& rs, const EntryDetail& detail) {
    if (detail.nTries && *detail.nTries < 1) return "with " + std::to_string(*detail.nTries) + " tries no failure is mailed";
    const std::string* server = desk.collection.Find("Server");
    if (!detail.recipients.empty() && (server == nullptr || Trim(*server).empty())) return "no mail server is set";
    // Without the outbox, the mailer sends nothing unless the first list has an address.
    if (!detail.recipients.empty() && !desk.outbox.IsOn() && TextOf(rs, "strEmailList1").empty())
        return "the first list is empty";
    if (!detail.recipients.empty()) return "";
    clsGlobalEmail global(desk.files, desk.dir);
    global.OpenFile();
    const bool has = !Trim(global.getToList1()).empty() || !Trim(global.getToList2()).empty();
    return has ? "the addresses for all entries have not been given to this one" : "";
}

void ReadNotified(const Desk& desk, Recordset& rs, EntryDetail& detail) {
    for (const char* list : {"strEmailList1", "strEmailList2"})
        AddRecipients(TextOf(rs, list), detail.recipients);
    detail.notifiesRecovery = IsSet(rs, "bSendUpNotify");
    detail.mailProblem = desk.alertPath.Problem();
    detail.whyNobody = WhyNobody(desk, rs, detail);
    if (!detail.whyNobody.empty()) detail.recipients.clear();
}

std::chrono::seconds FailingCheck(const std::string& strType, std::chrono::seconds timeout, const std::string& expected) {
    switch (CheckKindOf(strType)) {
        case CheckKind::Http:
        case CheckKind::Https:
            return timeout;
        case CheckKind::Ping:
            return kPingTakes;
        case CheckKind::Tcp:
            break;
    }
    const std::size_t elements = expected.empty() ? 0 : Split(expected, ',').size();
    return (timeout + std::chrono::seconds(1)) / 2 + kReplyTakes * static_cast<std::chrono::seconds::rep>((elements + 1) / 2);
}

std::chrono::seconds RetryDuration(const Desk& desk) {
    const auto retry = Readable<std::chrono::seconds>(
        [&] { return std::chrono::seconds(ParseWhole(desk.collection.getKvSettingsColVal("GlobalRetryDuration"))); });
    const bool guarded = desk.safeguards.IsOn("GuardBadEntries");
    return guarded && retry.value_or(std::chrono::seconds(0)) <= std::chrono::seconds(0) ? kRetryWithoutOne : retry.value();
}

std::optional<std::chrono::seconds> NoticedWithin(const Desk& desk, Recordset& rs) {
    const auto sum = [&] {
        const std::int64_t tries = std::max<std::int64_t>(1, TriesOf(rs).Int64());
        const std::int64_t stored = CounterOf(rs, "nIntervalSeconds").value();
        const std::chrono::seconds interval = std::min(LongestInterval(stored, 0), std::chrono::seconds(kLongestWait));
        const std::chrono::seconds retry = std::max(std::chrono::seconds(0), RetryDuration(desk));
        const std::chrono::seconds check =
            FailingCheck(TextOf(rs, "strType"), std::chrono::seconds(TimeoutOf(rs).Int16()), TextOf(rs, "strExpectedText"));
        return interval + tries * (kTick + check) + (tries - 1) * std::min(interval, retry);
    };
    const auto within = Readable<std::chrono::seconds>(sum);
    return within && within->count() < kLongestWait ? within : std::nullopt;
}

std::optional<DateTime> DownTimeStart(Recordset& rs, DateTime now) {
    for (const char* number : {"1", "2"}) {
        const std::string start = TextOf(rs, (std::string("strDownTime") + number).c_str());
        const std::string minutes = TextOf(rs, (std::string("nDownDuration") + number).c_str());
        if (!IsDownTime(start, minutes, now).bIsDown) continue;
        return Readable<DateTime>([&] { return DownTimeEnd(start, std::chrono::minutes(0), now); });
    }
    return std::nullopt;
}

void ReadLastCheck(const Desk& desk, Connection& conn, std::int64_t id, EntryDetail& detail) {
    if (!KeepsLastChecks(desk.collection)) return;
    if (auto check = LastChecks(desk.store).Read(conn, id)) detail.phases = std::move(check->phases);
}

void ReadRow(const Desk& desk, Recordset& rs, DateTime now, EntryDetail& detail) {
    const std::pair<const char*, std::string EntryDetail::*> texts[] = {
        {"strDesc", &EntryDetail::strDesc},           {"strAddress_IP", &EntryDetail::strAddress_IP},
        {"strCurStatus", &EntryDetail::strCurStatus}, {"strLastResponse", &EntryDetail::strLastResponse},
        {"strGroup", &EntryDetail::strGroup},         {"idCustomer", &EntryDetail::idCustomer}};
    for (const auto& [column, text] : texts)
        detail.*text = TextOf(rs, column);
    const std::pair<const char*, std::optional<DateTime> EntryDetail::*> moments[] = {
        {"dtNextCheck", &EntryDetail::dtNextCheck},
        {"datelastcheck", &EntryDetail::datelastcheck},
        {"datelastfail", &EntryDetail::datelastfail},
        {"datelastreset", &EntryDetail::datelastreset}};
    for (const auto& [column, moment] : moments)
        detail.*moment = MomentOf(rs, column);
    const std::pair<const char*, std::optional<std::int64_t> EntryDetail::*> counters[] = {
        {"nTriesCur", &EntryDetail::nTriesCur}, {"nSuccess", &EntryDetail::nSuccess}, {"nFail", &EntryDetail::nFail}};
    for (const auto& [column, counter] : counters)
        detail.*counter = CounterOf(rs, column);
    detail.nTries = Readable<std::int64_t>([&] { return TriesOf(rs).Int64(); });
    detail.nPercentUp = NumberOf(rs, "nPercentUp");
    detail.downTimeStart = DownTimeStart(rs, now);
    detail.bIsMonitoring = IsSet(rs, "bIsMonitoring");
    detail.noticedWithin = NoticedWithin(desk, rs);
    ReadNotified(desk, rs, detail);
}

}  // namespace

EntryDetail LoadEntryDetail(const Desk& desk, std::int64_t id, DateTime now) {
    EntryDetail detail;
    const std::string key = std::to_string(id);
    IgnoreErrors([&] {
        const auto conn = OpenDatabase(desk.store, desk.dir);
        const auto rs = OpenRows(desk.store, *conn, query::ById(id), CursorType::Static);
        if (rs->Eof()) return;
        detail.isThere = true;
        ReadRow(desk, *rs, now, detail);
        IgnoreErrors([&] { ReadFailures(desk, *conn, key, detail); });
        FindStart(detail);
        const std::chrono::seconds sinceHour = std::chrono::minutes(now.Minute()) + std::chrono::seconds(now.Second());
        detail.hours = Slots(now - sinceHour, std::chrono::hours(1), kHours);
        detail.days = Slots(now.Date(), std::chrono::hours(24), kDays);
        IgnoreErrors([&] { detail.hours = ReadTimes(desk, *conn, key, "hour", detail.hours, std::chrono::hours(1), detail); });
        IgnoreErrors([&] { detail.days = ReadTimes(desk, *conn, key, "day", detail.days, std::chrono::hours(24), detail); });
        if (desk.outbox.IsOn()) IgnoreErrors([&] { detail.mails = OutboxTable(desk.store, desk.dir).MailsOf(*conn, id); });
        IgnoreErrors([&] { ReadLastCheck(desk, *conn, id, detail); });
        detail.hasTrace = Readable<bool>([&] { return desk.files.Exists(desk.trace.GetTracertFile(id)); }).value_or(false);
    });
    return detail;
}

}  // namespace korvane
