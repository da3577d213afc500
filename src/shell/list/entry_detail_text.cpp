#include "shell/list/entry_detail_text.h"

#include <string_view>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "shell/list/server_list.h"

namespace korvane {
namespace {

constexpr std::string_view kUnknown = "unknown";
constexpr std::chrono::seconds kMailAfter{300};

constexpr std::string_view kMarks[] = {"<ul>", "</ul>", "<b>", "</b>", "<font color=red>", "</font>"};

/// The beginnings of what stands in a row of `Failures`, and what the operator reads instead; an empty replacement stands for
/// the whole of it.
struct Phrase {
    std::string_view begin;
    std::string_view shown;
    bool whole = false;
};
constexpr Phrase kPhrases[] = {
    {"None.", "", true},
    {"No commands are configured", "No command is set.", true},
    {"Server DOWN Email Notification successfully sent to: ", "Mail sent to "},
    {"Server DOWN Email Notification is in the outbox for: ", "Mail put into the outbox for "},
    {"Server DOWN Email Notification FAILED  because ", "Mail FAILED: "},
    {"Server configured so a Server UP Notification", "", true},  // shown for each entry
};

std::string MomentText(const std::optional<DateTime>& when) {
    return when ? when->Text() : std::string(kUnknown);
}

std::string ShortMoment(const std::optional<DateTime>& when, DateTime now) {
    return when && when->Date() == now.Date() ? when->TimeText() : MomentText(when);
}

std::string NumberText(const std::optional<std::int64_t>& number) {
    return number ? FormatGrouped(static_cast<double>(*number), 0) : std::string(kUnknown);
}

std::string Ago(const std::optional<DateTime>& when, DateTime now) {
    return when ? " (" + LengthInWords(now - *when) + " ago)" : "";
}

std::string Shown(const std::string& sentence) {
    for (const Phrase& phrase : kPhrases) {
        if (!sentence.starts_with(phrase.begin)) continue;
        return std::string(phrase.shown) + (phrase.whole ? "" : sentence.substr(phrase.begin.size()));
    }
    return sentence;
}

/// Returns what the row says in sentences without mark-up.
std::string ActionInWords(std::string strAction) {
    for (const std::string_view mark : kMarks)
        strAction = ReplaceAll(strAction, mark, "");
    std::string sentences;
    for (const std::string& item : Split(ReplaceAll(strAction, "<li>", "\x1f"), '\x1f')) {
        const std::string shown = Shown(TrimAll(item));
        if (!shown.empty()) sentences += (sentences.empty() ? "" : " ") + shown;
    }
    return sentences;
}

std::string OutboxWords(const OutboxTable::Receipt& mail, DateTime now) {
    const std::string head = " Mail of " + ShortMoment(mail.created, now) + " to " + mail.recipients + ": ";
    const std::string taken = mail.receipt.empty() ? "taken." : "taken (" + mail.receipt + ").";
    if (mail.state == "sent") return head + taken;
    const std::string error = mail.lastError.empty() ? "." : " (" + mail.lastError + ").";
    return head + (mail.state == "waiting" ? "waits for " + mail.left : Or(mail.state, std::string(kUnknown))) + error;
}

// The mail is written while the failure is.
std::string MailOf(const EntryDetail& detail, const EntryDetail::Failure& failure, DateTime now) {
    for (const OutboxTable::Receipt& mail : detail.mails) {
        const bool known = mail.event != MailEvent::Recovery && mail.created && failure.dateFail;
        if (known && std::chrono::abs(*mail.created - *failure.dateFail) <= kMailAfter) return OutboxWords(mail, now);
    }
    return "";
}

std::string Done(const EntryDetail& detail, DateTime now) {
    for (const EntryDetail::Failure& failure : detail.failures) {
        const std::string action = ActionInWords(failure.strAction);
        if (action.empty()) continue;
        return "At " + ShortMoment(failure.dateFail, now) + ": " + action + MailOf(detail, failure, now) +
               (detail.hasTrace ? " Route traced." : "");
    }
    return "";
}

std::string SinceOutage(const EntryDetail& detail, DateTime now) {
    const std::string begin = detail.sinceEarlier ? " since before " : " since ";
    const std::string length = detail.since ? " (" + LengthInWords(now - *detail.since) + ")" : "";
    const std::string count = NumberText(detail.nTriesCur);
    const bool down = detail.strCurStatus == status::kDown;
    const std::string failures = down ? count + (count == "1" ? " failure" : " failures in a row")
                                      : count + " of " + NumberText(detail.nTries) + " tries failed";
    return begin + MomentText(detail.since) + length + ", " + failures;
}

std::string SinceLastFailure(const EntryDetail& detail, DateTime now) {
    const std::optional<DateTime> last =
        detail.datelastfail || detail.failures.empty() ? detail.datelastfail : detail.failures.front().dateFail;
    if (detail.nFail != 0 && (last || !detail.failures.empty())) return ", last failure " + MomentText(last) + Ago(last, now);
    return detail.nFail == 0 && detail.datelastreset ? ", no failure since " + detail.datelastreset->Text()
                                                     : ", no failure on record";
}

std::string Since(const EntryDetail& detail, DateTime now) {
    const std::string& strCurStatus = detail.strCurStatus;
    if (strCurStatus == status::kDown || strCurStatus == status::kFailing) return SinceOutage(detail, now);
    if (strCurStatus == status::kUp) return SinceLastFailure(detail, now);
    const std::string until = " until " + MomentText(detail.dtNextCheck);
    if (strCurStatus == status::kDownTime)
        return (detail.downTimeStart ? " since " + detail.downTimeStart->TimeText() : "") + until;
    return ", last checked " + MomentText(detail.datelastcheck) + Ago(detail.datelastcheck, now);
}

std::string Reason(const EntryDetail& detail) {
    const RowIcon state = StateOf(detail.strCurStatus);
    if (state != RowIcon::Bad && state != RowIcon::Warn) return "";
    const bool fails = detail.strCurStatus == status::kDown || detail.strCurStatus == status::kFailing;
    const bool told = fails && !detail.failures.empty() && !detail.failures.front().strReason.empty();
    return told ? detail.failures.front().strReason : detail.strLastResponse;
}

std::string Notified(const EntryDetail& detail) {
    if (detail.recipients.empty()) return "Nobody is notified" + (detail.whyNobody.empty() ? "" : ": " + detail.whyNobody) + ".";
    std::string all;
    for (const std::string& recipient : detail.recipients)
        all += (all.empty() ? "" : ", ") + recipient;
    const std::string what = detail.notifiesRecovery ? ": failures and recoveries" : ": failures, not recoveries";
    return "Mailed to " + all + what + (detail.mailProblem.empty() ? "" : " (" + detail.mailProblem + ")");
}

std::string NextCheck(const EntryDetail& detail, DateTime now) {
    if (!detail.dtNextCheck) return "next check unknown";
    const std::chrono::seconds left = *detail.dtNextCheck - now;
    if (left.count() == 0) return "check due now";
    return left.count() > 0 ? "next check in " + LengthInWords(left) : "check overdue by " + LengthInWords(left);
}

// Rounded up to whole minutes, so that the sentence stays true.
std::string NoticedWords(const EntryDetail& detail) {
    if (!detail.bIsMonitoring) return "outages are not noticed";
    if (!detail.noticedWithin) return "how soon an outage is noticed is unknown";
    const std::int64_t minutes = (detail.noticedWithin->count() + 59) / 60;
    return "an outage is noticed within " + LengthInWords(std::chrono::minutes(minutes));
}

std::string Figures(const EntryDetail& detail, DateTime now, bool monitoring) {
    std::string upTime = "Not checked yet";
    if (!detail.nSuccess || !detail.nFail || *detail.nSuccess + *detail.nFail != 0)
        upTime = "Up-time " + (detail.nPercentUp ? FormatFixed(*detail.nPercentUp, 2) + " %" : std::string(kUnknown));
    if (!monitoring) return upTime + " · monitoring is stopped, so nothing is checked";
    return upTime + " · " + NextCheck(detail, now) + " · " + NoticedWords(detail);
}

std::string Measured(const CheckPhases& phases) {
    std::string words;
    for (const auto& [name, took] : PhasesInWords(phases))
        words += (words.empty() ? "Last check: " : " · ") + name + " " + took;
    return words;
}

std::string FailureLine(const EntryDetail::Failure& failure, DateTime now) {
    const std::string action = ActionInWords(failure.strAction);
    return ShortMoment(failure.dateFail, now) + "  " + NumberText(failure.nFailCount) + " of " + NumberText(failure.nFailMax) +
           "  " + Or(failure.strReason, "no reason given") + (action.empty() ? "" : "  " + action);
}

}  // namespace

std::vector<std::pair<std::string, std::string>> PhasesInWords(const CheckPhases& phases) {
    std::vector<std::pair<std::string, std::string>> words;
    const auto add = [&](const std::string& name, const std::optional<CheckPhases::Duration>& took) {
        if (!took) return;
        const double ms = static_cast<double>(took->count()) / 1000.0;
        words.emplace_back(name, FormatGrouped(ms, ms < 100 ? 1 : 0) + " ms");
    };
    add("name", phases.name);
    add("connect", phases.connect);
    add("TLS", phases.tls);
    add("first byte", phases.firstByte);
    for (const CheckPhases::Step& step : phases.steps)
        add("'" + step.awaited + "'", step.took);
    const bool hasParts = !words.empty();
    add("whole", phases.whole);
    if (hasParts) add("left over", phases.LeftOver());
    return words;
}

std::string CertificateInWords(const CheckPhases& phases, DateTime now) {
    if (!phases.certificateEnd) return "";
    const DateTime end = *phases.certificateEnd;
    return (end > now ? "ends in " + LengthInWords(end - now) : "has ended " + LengthInWords(now - end) + " ago") + ", on " +
           end.Text();
}

std::string LengthInWords(std::chrono::seconds length) {
    const std::int64_t all = length.count() < 0 ? -length.count() : length.count();
    const auto pair = [](std::int64_t large, const char* unit, std::int64_t small, const char* smallUnit) {
        return std::to_string(large) + unit + (small == 0 ? "" : " " + std::to_string(small) + smallUnit);
    };
    if (all < 60) return std::to_string(all) + " s";
    if (all < 3600) return std::to_string(all / 60) + " min";
    if (all < 86400) return pair(all / 3600, " h", all % 3600 / 60, " min");
    return pair(all / 86400, " d", all % 86400 / 3600, " h");
}

EntrySentences InSentences(const EntryDetail& detail, DateTime now, bool monitoring) {
    if (!detail.isThere) return {.title = "This server cannot be read."};
    EntrySentences sentences{
        .title = detail.strDesc.empty() ? detail.strAddress_IP : detail.strDesc + " · " + detail.strAddress_IP,
        .state = Or(detail.strCurStatus, std::string(kUnknown)),
        .since = Since(detail, now),
        .reason = Reason(detail),
        .done = Done(detail, now),
        .notified = Notified(detail),
        .figures = Figures(detail, now, monitoring),
        .measured = Measured(detail.phases),
    };
    if (const std::string certificate = CertificateInWords(detail.phases, now); !certificate.empty())
        sentences.certificate = "Certificate " + certificate;
    for (const EntryDetail::Failure& failure : detail.failures)
        sentences.failures.push_back(FailureLine(failure, now));
    return sentences;
}

std::string MillisecondsInWords(const std::optional<double>& ms) {
    return ms ? FormatGrouped(*ms, *ms < 10 ? 1 : 0) + " ms" : "no data";
}

std::string InWords(const std::vector<EntryDetail::ResponseTime>& times) {
    std::string words;
    for (const EntryDetail::ResponseTime& time : times) {
        if (!time.ms && !time.failed) continue;
        words += (words.empty() ? "" : "; ") + time.from.Text() + ": " + MillisecondsInWords(time.ms) +
                 (time.failed ? ", failures" : "");
    }
    return words;
}

}  // namespace korvane
