// The commands that look at all entries: list and status.
#include <QJsonArray>
#include <map>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "shell/cli/session.h"
#include "shell/list/entry_detail_text.h"
#include "shell/list/list_filter.h"
#include "store/database_files.h"
#include "store/instances.h"
#include "store/last_checks.h"

namespace korvane {
namespace {

/// What `list` shows of a row: head, name in JSON, and column.
struct Shown {
    const char* head;
    const char* json;
    column::Column column;
};
constexpr Shown kShown[] = {
    {"ID", "id", column::ServerID},
    {"Status", "status", column::Status},
    {"Name", "name", column::ShortName},
    {"Address", "address", column::FullName},
    {"Type", "type", column::Type},
    {"Group", "group", column::Group},
    {"Every", "interval", column::Interval},
    {"Next check", "next", column::NextTry},
    {"Last response", "lastResponse", column::LastResponse},
};

SharedRows RowsOf(Session& session) {
    const Desk& desk = session.TheDesk();
    SharedRows rows;
    for (ServerRow& row : LoadServerList(desk, false))
        rows.push_back(std::make_shared<const ServerRow>(std::move(row)));
    PutProblemsFirst(rows);
    return rows;
}

ListFilter FilterOf(const Session& session) {
    ListFilter filter;
    for (const std::string& word : session.Given().arguments)
        filter.text += word + " ";
    const std::string wanted = session.Given().Option("state");
    std::vector<std::string> words;
    for (const RowIcon state : kRowStates) {
        words.push_back(ToLower(StateWord(state)));
        if (EqualsNoCase(words.back(), wanted)) filter.states.insert(state);
    }
    if (!wanted.empty() && filter.states.empty())
        throw WrongWords("there is no state '" + wanted + "'." + Nearest(wanted, words));
    return filter;
}

QJsonObject JsonOf(const ServerRow& row) {
    QJsonObject object{{"state", ForJson(std::string(StateWord(StateOf(row.strCurStatus))))}, {"monitored", row.isMonitored}};
    for (const Shown& each : kShown)
        object.insert(each.json, ForJson(row.cells[each.column]));
    return object;
}

/// Those that end within the days of the setting. They change no state, and so not the exit status either.
std::vector<std::string> EndingCertificates(Session& session, const SharedRows& rows) {
    std::vector<std::string> lines;
    const Desk& desk = session.TheDesk();
    const auto days = CertWarnDays(desk.collection);
    if (!days) return lines;
    const DateTime now = desk.clock.Now();
    const auto connection = OpenDatabase(desk.store, desk.dir);
    std::map<std::int64_t, LastCheck> checks;
    IgnoreErrors([&] { checks = LastChecks(desk.store).ReadAll(*connection); });  // before the first check there is no table
    for (const auto& row : rows) {
        const auto found = checks.find(ParseWhole(row->Id()));
        if (found == checks.end() || !found->second.phases.certificateEnd) continue;
        if (*found->second.phases.certificateEnd - now > *days) continue;
        lines.push_back(row->Name() + ": certificate " + CertificateInWords(found->second.phases, now));
    }
    return lines;
}

std::vector<std::string> InstanceLines(Session& session) {
    const Desk& desk = session.TheDesk();
    if (!desk.isShared) return {};
    std::vector<std::string> lines = Instances(desk.store).Lines(*OpenDatabase(desk.store, desk.dir));
    for (std::string& line : lines)
        line.insert(0, "Instance ");
    return lines;
}

}  // namespace

int RunList(Session& session) {
    const ListFilter filter = FilterOf(session);
    const SharedRows rows = Filtered(RowsOf(session), filter);
    if (session.Json()) {
        QJsonArray entries;
        for (const auto& row : rows)
            entries.append(JsonOf(*row));
        session.PrintJson({{"entries", entries}});
        return kDone;
    }
    std::vector<std::vector<std::string>> table;
    if (!session.Quiet()) {
        table.emplace_back();
        for (const Shown& each : kShown)
            table.back().emplace_back(each.head);
    }
    for (const auto& row : rows) {
        table.emplace_back();
        for (const Shown& each : kShown)
            table.back().push_back(row->cells[each.column]);
        if (session.Quiet()) table.back() = {row->Id()};
    }
    if (!table.empty()) session.PrintTable(table);
    return kDone;
}

// In the form of monitoring plugins: one line with figures after a bar, then the entries that fail.
int RunStatus(Session& session) {
    constexpr const char* kWords[] = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};
    SharedRows rows;
    int end = kWrongWords;
    std::string why;
    std::vector<std::string> certificates, instances;
    try {
        rows = RowsOf(session);
        certificates = EndingCertificates(session, rows);
        instances = InstanceLines(session);
        const StateCounts counts = CountStates(rows);
        const bool runs = session.Runs();
        end = counts[0] > 0 ? 2 : counts[1] > 0 ? 1 : rows.empty() || !runs ? 3 : 0;
        why = rows.empty() ? "there are no entries" : !runs ? "no monitor runs with this home" : "";
    } catch (const std::exception& error) {
        why = ReplaceAll(error.what(), "\n", " ");
    }
    std::string text, figures;
    const StateCounts counts = CountStates(rows);
    QJsonObject object{{"exit", end}, {"word", kWords[end]}, {"why", ForJson(why)}};
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const std::string word = ToLower(StateWord(kRowStates[i]));
        text += (i == 0 ? "" : ", ") + std::to_string(counts[i]) + " " + word;
        figures += (i == 0 ? "" : " ") + word + "=" + std::to_string(counts[i]);
        object.insert(ForJson(word), counts[i]);
    }
    if (session.Json()) {
        if (!certificates.empty()) object.insert("certificates", ForJson(certificates));
        if (!instances.empty()) object.insert("instances", ForJson(instances));
        session.PrintJson(object);
        return end;
    }
    const auto say = [&](const std::string& line) { session.Say(OneLine(line, line.size())); };
    session.Say("KORVANE " + std::string(kWords[end]) + " - " + text + (why.empty() ? "" : "; " + why) + " | " + figures);
    for (const auto& row : rows)
        if (StateOf(row->strCurStatus) == RowIcon::Bad || StateOf(row->strCurStatus) == RowIcon::Warn)
            say(row->cells[column::Status] + ": " + row->Name() + ", " + row->cells[column::LastResponse]);
    for (const std::string& line : certificates)
        say(line);
    for (const std::string& line : instances)
        say(line);
    return end;
}

}  // namespace korvane
