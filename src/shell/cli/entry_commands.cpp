// The commands that look at one entry: show, and why, which explains its state from its rows and the log: what led there, who was
// notified, which command ran, what comes next, and what must happen until the next mail.
#include <QJsonArray>
#include <algorithm>
#include <fstream>
#include <ostream>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "shell/cli/print_phases.h"
#include "shell/cli/session.h"
#include "shell/entry/entry_inputs.h"
#include "shell/list/entry_csv_columns.h"
#include "shell/list/entry_detail_text.h"

namespace korvane {
namespace {

constexpr std::size_t kMostChecks = 10;
constexpr std::size_t kMostCommands = 6;
constexpr std::string_view kCommandRan = "frmMonitor:RunCommand: ";

/// The entry that the command names, with all that is known about it.
struct Look {
    Session::Entry entry;
    DateTime now;
    EntryDetail detail;
    EntrySentences says;
    EntryFields fields;
};

Look LookAtEntry(Session& session) {
    const Session::Entry entry = session.Find(session.Given().arguments.front());
    const Desk& desk = session.TheDesk();
    const DateTime now = desk.clock.Now();
    const EntryDetail detail = LoadEntryDetail(desk, ParseWhole(entry.id), now);
    return {entry, now, detail, InSentences(detail, now), ReadAllEntries(desk).at(entry.id)};
}

std::string ShownText(const Session& session, const EntryInput& input, const EntryFields& fields) {
    const std::string text = CsvTextOf(input, fields);
    const bool hides = input.text == &EntryFields::strPassword && !session.Given().Has("show-passwords");
    return hides && !text.empty() ? kHidden : text;
}

struct Part {
    const char* head;
    const char* json;
    std::vector<std::string> lines;
};

std::string EventWord(MailEvent event) {
    return event == MailEvent::Failure ? "failure" : event == MailEvent::Recovery ? "recovery" : "other";
}

std::string MailLine(const OutboxTable::Receipt& mail) {
    const std::string head =
        (mail.created ? mail.created->Text() : "?") + "  " + EventWord(mail.event) + " mail to " + mail.recipients;
    const std::string error = mail.lastError.empty() ? "" : " (" + mail.lastError + ")";
    if (mail.state == "sent") return head + ": taken by the server" + (mail.receipt.empty() ? "" : " (" + mail.receipt + ")");
    if (mail.state == "waiting") return head + ": waits for " + mail.left + error;
    return head + ": " + mail.state + error;
}

bool IsFailing(const EntryDetail& detail) {
    return detail.strCurStatus == status::kDown || detail.strCurStatus == status::kFailing;
}

/// The failures of this outage, the oldest first; for an entry that is up, the last ones.
std::vector<std::string> Checks(const EntryDetail& detail) {
    std::vector<std::string> lines;
    for (const EntryDetail::Failure& each : detail.failures) {
        if (lines.size() == kMostChecks || (IsFailing(detail) && each.dateFail && detail.since &&
                                            *each.dateFail < *detail.since && detail.strCurStatus == status::kFailing))
            break;
        const auto number = [](const std::optional<std::int64_t>& count) { return count ? std::to_string(*count) : "?"; };
        lines.push_back((each.dateFail ? each.dateFail->Text() : "?") + "  failure " + number(each.nFailCount) + " of " +
                        number(each.nFailMax) + ": " + Or(WithoutControls(each.strReason), "no reason given"));
    }
    std::ranges::reverse(lines);
    return lines;
}

std::vector<std::string> Mails(const EntryDetail& detail, const EntrySentences& says) {
    std::vector<std::string> lines;
    for (const OutboxTable::Receipt& mail : detail.mails)
        lines.push_back(MailLine(mail));
    if (lines.empty() && !says.done.empty()) lines.push_back(says.done);
    return lines;
}

/// What the log of these days says of the commands, the newest last.
std::vector<std::string> CommandsRun(const Desk& desk, const EntryFields& fields, const std::vector<DateTime>& days) {
    std::vector<std::string> lines;
    for (const DateTime& day : days) {
        std::ifstream log(desk.log.PathOf(day));
        for (std::string line; std::getline(log, line);) {
            const auto at = line.find(kCommandRan);
            const auto names = [&](const std::string& command) {
                return !Trim(command).empty() && line.find(command, at) != std::string::npos;
            };
            if (at == std::string::npos || !(names(fields.strCMD) || names(fields.strCMDUP))) continue;
            lines.push_back(line.substr(0, line.find("M ") + 1) + "  " + line.substr(at + kCommandRan.size()));
        }
    }
    if (lines.size() > kMostCommands) lines.erase(lines.begin(), lines.end() - kMostCommands);
    if (lines.empty() && Trim(fields.strCMD).empty() && Trim(fields.strCMDUP).empty()) lines.emplace_back("No command is set.");
    return lines;
}

std::vector<DateTime> DaysOf(const EntryDetail& detail, DateTime now) {
    std::vector<DateTime> days{now.Date()};
    for (const auto& each : {detail.since, detail.datelastfail})
        if (each && std::ranges::find(days, each->Date()) == days.end()) days.push_back(each->Date());
    std::ranges::sort(days);
    return days;
}

std::string NextCheck(const EntryDetail& detail, bool runs, DateTime now) {
    if (!detail.bIsMonitoring) return "It is paused and not checked: 'korvanecore resume' changes that.";
    const std::string unless = runs ? "" : " No monitor runs with this home, so nothing happens until it is started.";
    if (!detail.dtNextCheck) return "When it is checked next is not known." + unless;
    const auto left = *detail.dtNextCheck - now;
    const std::string when = left.count() <= 0 ? "now (it is due)" : "in " + LengthInWords(left);
    return "It is checked " + when + ", at " + detail.dtNextCheck->Text() + "." + unless;
}

std::string AfterFailures(std::int64_t count, const EntryDetail& detail) {
    const std::string within =
        detail.noticedWithin ? ", which takes " + LengthInWords(*detail.noticedWithin) + " at most from the start of an outage"
                             : "";
    return "after " + std::to_string(count) + (count == 1 ? " more failure" : " more failures") + " in a row" + within;
}

/// Why no mail goes out now, and what would have to happen.
std::string NextMail(const EntryDetail& detail) {
    if (!detail.bIsMonitoring) return "None, because it is paused.";
    if (detail.recipients.empty())
        return "None: nobody is notified" + (detail.whyNobody.empty() ? ". 'korvanecore set <entry> to=<address>' changes that."
                                                                      : ", because " + detail.whyNobody + ".");
    if (!detail.nTries || !detail.nTriesCur) return "This cannot be told: its number of tries cannot be read.";
    if (detail.strCurStatus == status::kDown)
        return "The failure mail of this outage was due at failure " + std::to_string(*detail.nTries) +
               ", and there is one an outage. " +
               (detail.notifiesRecovery ? "The next one tells of the recovery, with its first good check."
                                        : "Recoveries are not mailed, so the next one belongs to the next outage.");
    if (detail.strCurStatus == status::kFailing)
        return "Not yet, because " + std::to_string(*detail.nTriesCur) + " of " + std::to_string(*detail.nTries) +
               " tries have failed. It goes out " + AfterFailures(*detail.nTries - *detail.nTriesCur, detail) +
               "; a good check before that ends it without a mail.";
    if (detail.strCurStatus == status::kDownTime) return "None in the down time, in which it is not checked.";
    if (detail.strCurStatus == status::kOwnNetworkDown) return "None while this machine's own network is down.";
    return "Not yet, because it does not fail. It goes out " + AfterFailures(std::max<std::int64_t>(1, *detail.nTries), detail) +
           ".";
}

}  // namespace

int RunShow(Session& session) {
    const auto [entry, now, detail, says, fields] = LookAtEntry(session);
    const Desk& desk = session.TheDesk();
    QJsonObject columns;
    std::vector<std::vector<std::string>> table;
    for (const EntryInput* each : AllCsvColumns(desk, true)) {
        const std::string text = each == nullptr ? entry.id : ShownText(session, *each, fields);
        columns.insert(ForJson(std::string(CsvNameOf(each))), ForJson(text));
        if (!text.empty()) table.push_back({std::string(CsvNameOf(each)), text});
    }
    if (session.Json()) {
        QJsonArray failures;
        for (const std::string& each : says.failures)
            failures.append(ForJson(each));
        session.PrintJson({{"state", ForJson(says.state)},
                           {"since", ForJson(says.since)},
                           {"reason", ForJson(says.reason)},
                           {"lastResponse", ForJson(detail.strLastResponse)},
                           {"done", ForJson(says.done)},
                           {"notified", ForJson(says.notified)},
                           {"figures", ForJson(says.figures)},
                           {"failures", failures},
                           {"lastCheck", PhasesForJson(detail.phases)},
                           {"columns", columns}});
        return kDone;
    }
    for (const std::string& line : {says.title, says.state + says.since, says.reason, says.done, says.notified, says.figures,
                                    says.measured, says.certificate})
        if (!line.empty()) session.Say(line);
    session.Say("");
    session.PrintTable(table);
    return kDone;
}

int RunWhy(Session& session) {
    const auto [entry, now, detail, says, fields] = LookAtEntry(session);
    const Desk& desk = session.TheDesk();
    const std::string reason = says.reason.empty() ? "" : "Reason: " + says.reason;
    const Part parts[] = {
        {"State", "state", {says.state + says.since, reason}},
        {IsFailing(detail) ? "Checks that led there" : "Last failures", "checks", Checks(detail)},
        {"Mails", "mails", Mails(detail, says)},
        {"Commands", "commands", CommandsRun(desk, fields, DaysOf(detail, now))},
        {"Next check", "nextCheck", {NextCheck(detail, session.Runs(), now)}},
        {"Next mail", "nextMail", {detail.recipients.empty() ? "" : says.notified, NextMail(detail)}},
    };
    QJsonObject object{{"id", ForJson(entry.id)}, {"name", ForJson(entry.name)}, {"address", ForJson(entry.address)}};
    std::string text = says.title + " (" + fields.strType + ", id " + entry.id + ")";
    for (const Part& part : parts) {
        QJsonArray lines;
        text += "\n" + std::string(part.head) + ":";
        for (const std::string& line : part.lines) {
            if (line.empty()) continue;
            text += "\n  " + WithoutControls(line);
            lines.append(ForJson(line));
        }
        if (lines.isEmpty()) text += "\n  none";
        object.insert(part.json, lines);
    }
    session.Json() ? session.PrintJson(object) : session.Say(text);
    return kDone;
}

}  // namespace korvane
