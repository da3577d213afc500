// The commands that only look: list, show, status, failures, log and help.
#include <QJsonArray>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <ostream>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "shell/cli/help.h"
#include "shell/cli/print_phases.h"
#include "shell/cli/session.h"
#include "shell/entry/entry_inputs.h"
#include "shell/list/entry_acts.h"
#include "shell/list/entry_csv_columns.h"
#include "shell/list/entry_detail_text.h"
#include "shell/list/list_filter.h"
#include "store/database_files.h"
#include "store/last_checks.h"

namespace korvane {
namespace {

constexpr int kMostLines = 100'000;

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
    for (ServerRow& row : LoadServerList(desk.store, OdbcConnectionText(desk.dir), desk.clock.Now(), false, &desk.alertPath))
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

int LinesOf(const Session& session, int otherwise) {
    const std::string text = session.Given().Option("lines", std::to_string(otherwise));
    std::int64_t lines = 0;
    IgnoreErrors([&] { lines = ParseWhole(text); });
    if (lines < 1 || lines > kMostLines)
        throw WrongWords("--lines: '" + text + "' is not a number from 1 to " + std::to_string(kMostLines) + ".");
    return static_cast<int>(lines);
}

std::string ShownText(const Session& session, const EntryInput& input, const EntryFields& fields) {
    const std::string text = CsvTextOf(input, fields);
    const bool hides = input.text == &EntryFields::strPassword && !session.Given().Has("show-passwords");
    return hides && !text.empty() ? kHidden : text;
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

int RunShow(Session& session) {
    const Session::Entry entry = session.Find(session.Given().arguments.front());
    const Desk& desk = session.TheDesk();
    const DateTime now = desk.clock.Now();
    const EntryDetail detail = LoadEntryDetail(desk, ParseWhole(entry.id), now);
    const EntrySentences says = InSentences(detail, now);
    const EntryFields fields = ReadAllEntries(desk).at(entry.id);
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

// Those that end within the days of the setting. They change no state, and so not the exit status either.
static std::vector<std::string> EndingCertificates(Session& session, const SharedRows& rows) {
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

// In the form of monitoring plugins: one line with figures after a bar, then the entries that fail.
int RunStatus(Session& session) {
    constexpr const char* kWords[] = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};
    SharedRows rows;
    int end = kWrongWords;
    std::string why;
    std::vector<std::string> certificates;
    try {
        rows = RowsOf(session);
        certificates = EndingCertificates(session, rows);
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
        QJsonArray ending;
        for (const std::string& line : certificates)
            ending.append(ForJson(line));
        if (!ending.isEmpty()) object.insert("certificates", ending);
        session.PrintJson(object);
        return end;
    }
    session.Say("KORVANE " + std::string(kWords[end]) + " - " + text + (why.empty() ? "" : "; " + why) + " | " + figures);
    for (const auto& row : rows)
        if (StateOf(row->strCurStatus) == RowIcon::Bad || StateOf(row->strCurStatus) == RowIcon::Warn)
            session.Say(row->cells[column::Status] + ": " + row->Name() + ", " +
                        WithoutControls(row->cells[column::LastResponse]));
    for (const std::string& line : certificates)
        session.Say(WithoutControls(line));
    return end;
}

int RunFailures(Session& session) {
    const int most = LinesOf(session, 20);
    const Desk& desk = session.TheDesk();
    std::string query = "SELECT * FROM Failures";
    if (!session.Given().arguments.empty()) query += " WHERE IDParent = " + session.Find(session.Given().arguments.front()).id;
    query += " ORDER BY dateFail DESC, ID DESC LIMIT " + std::to_string(most);
    std::vector<std::vector<std::string>> table{{"Time", "Entry", "Name", "Address", "Failure", "Reason"}};
    QJsonArray failures;
    const auto connection = OpenDatabase(desk.store, desk.dir);
    for (const auto row = OpenRows(desk.store, *connection, query, CursorType::Static); !row->Eof(); row->MoveNext()) {
        const auto text = [&](const char* column) {
            std::string read;
            IgnoreErrors([&] { read = ColumnText(*row, column); });
            return read;
        };
        const std::string count = text("nFailCount") + " of " + text("nFailMax");
        table.push_back({text("dateFail"), text("IDParent"), text("strDesc"), text("strAddress_IP"), count, text("strReason")});
        failures.append(QJsonObject{{"time", ForJson(text("dateFail"))},
                                    {"entry", ForJson(text("IDParent"))},
                                    {"name", ForJson(text("strDesc"))},
                                    {"address", ForJson(text("strAddress_IP"))},
                                    {"count", ForJson(text("nFailCount"))},
                                    {"tries", ForJson(text("nFailMax"))},
                                    {"reason", ForJson(text("strReason"))}});
    }
    if (session.Json()) {
        session.PrintJson({{"failures", failures}});
    } else if (table.size() == 1) {
        session.Say("No failure is on record.");
    } else {
        session.PrintTable(table);
    }
    return kDone;
}

int RunLog(Session& session) {
    using namespace std::chrono_literals;
    const int most = LinesOf(session, 10);
    const Desk& desk = session.TheDesk();
    std::ostream& out = session.Place().out;
    std::string path = desk.log.TodaysFile();
    const std::string all = desk.files.Read(path).value_or("");
    if (all.empty()) session.Place().errors << "The log of today is empty." << std::endl;
    std::size_t begin = all.size();
    for (int i = 0; i <= most && begin != std::string::npos && begin > 0; ++i)
        begin = all.rfind('\n', begin - 1);
    out << (all.empty() ? "" : all.substr(begin == std::string::npos || begin == 0 ? 0 : begin + 1)) << std::flush;
    auto at = static_cast<std::streamoff>(all.size());
    while (session.Given().Has("follow") && out) {
        desk.events.Sleep(300ms);
        const std::string today = desk.log.TodaysFile();
        if (std::ifstream later(path, std::ios::binary); later.seekg(at)) {
            const std::string more(std::istreambuf_iterator<char>(later), {});
            at += static_cast<std::streamoff>(more.size());
            if (!more.empty()) out << more << std::flush;
        }
        if (today != path) at = 0;  // after midnight, when the end of the former day has been printed
        path = today;
    }
    return kDone;
}

// Beside the help there are texts for the manual page and the completion of the shell.
int RunHelp(Session& session) {
    const auto& arguments = session.Given().arguments;
    std::ostream& out = session.Place().out;
    const std::string word = arguments.empty() ? "" : arguments.front();
    if (word == "completion") {
        out << CompletionWords(arguments.size() > 1 ? arguments[1] : "");
    } else if (word == "manual-page") {
        out << ManualPageText();
    } else if (word.empty()) {
        out << HelpText();
    } else {
        out << HelpOf(*ReadWords({word, "--help"}).command);
    }
    return kDone;
}

}  // namespace korvane
