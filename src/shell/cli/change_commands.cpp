// The commands that change entries. The rules are those of the editor: a change goes the way of an import of one row.
#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <map>

#include "base/error.h"
#include "base/text.h"
#include "shell/cli/entry_plan.h"
#include "shell/cli/session.h"
#include "shell/list/csv_text.h"
#include "shell/list/entry_acts.h"
#include "shell/list/entry_csv_columns.h"

namespace korvane {
namespace {

/// Returns the JSON as lines of CSV. Throws Error with the number of the entry for whatever is no list of entries.
std::string CsvOfJson(const std::string& text) {
    QJsonParseError problem{};
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text), &problem);
    if (document.isNull())
        throw Error("This is no JSON: " + problem.errorString().toStdString() + " at character " +
                    std::to_string(problem.offset) + ".");
    const QJsonValue list = document.isArray() ? QJsonValue(document.array()) : document.object().value("entries");
    if (!list.isArray() || list.toArray().isEmpty()) throw Error("The JSON has no list 'entries'.");
    QStringList columns;
    std::string csv;
    int number = 0;
    for (const QJsonValue each : list.toArray()) {
        const std::string where = "Entry " + std::to_string(++number) + ": ";
        if (!each.isObject()) throw Error(where + "it is no object.");
        const QJsonObject entry = each.toObject();
        if (columns.isEmpty()) {
            columns = entry.keys();
            std::vector<std::string> names;
            for (const QString& name : columns)
                names.push_back(name.toStdString());
            csv = CsvLine(names);
        }
        if (entry.keys() != columns) throw Error(where + "it has not the columns of the first entry.");
        std::vector<std::string> cells;
        for (const QString& name : columns) {
            const QJsonValue value = entry.value(name);
            if (value.isObject() || value.isArray())
                throw Error(where + "'" + name.toStdString() + "' is no text, number or truth.");
            cells.push_back(value.isBool() ? (value.toBool() ? "True" : "False") : value.toVariant().toString().toStdString());
        }
        csv += CsvLine(cells);
    }
    return csv;
}

std::string TextOfFile(Session& session, const std::string& name) {
    if (name == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
    Files& files = session.Place().ports.files;
    const auto identity = files.Identity(name);
    if (!identity) throw Error("There is no file " + name + ".");
    if (identity->size > static_cast<std::int64_t>(kMostCsvBytes)) throw Error("The file is too large for a list of entries.");
    return files.Read(name).value_or("");
}

/// Carries out the plan of one row and says what became of it.
int Carry(Session& session, const ImportPlan& plan) {
    const ImportRow& row = plan.rows.front();
    std::vector<std::string> ids{row.id};
    if (row.step != ImportStep::Unchanged) ids = ImportEntries(session.DeskForChanges(), plan);
    session.Notify();
    const std::string details = row.step == ImportStep::Unchanged ? "" : ", " + ReplaceAll(row.details, " \u2192 ", " -> ");
    const std::string word = row.step == ImportStep::Added ? "added" : row.step == ImportStep::Changed ? "changed" : "unchanged";
    const std::string sentence = Or(row.name, row.id) + " " + word + " (id " + ids.front() + details + ").";
    return session.Done(OneLine(sentence, sentence.size()), ids);
}

int Act(Session& session, std::string (EntryActs::*act)(const EntryActs::Ids& ids)) {
    const Desk& desk = session.DeskForChanges();
    const std::vector<std::string> ids = session.FindAll();
    EntryActs acts(desk);
    const std::string sentence = (acts.*act)(ids);
    session.Notify();
    return session.Done(sentence, ids);
}

}  // namespace

int RunAdd(Session& session) {
    session.DeskForChanges();
    return Carry(session, PlanOfOne(session, "", session.Given().arguments.front()));
}

int RunSet(Session& session) {
    if (session.Given().columns.empty())
        throw WrongWords("'set' needs at least one column=value.\n'korvanecore help set' lists them.");
    session.DeskForChanges();
    return Carry(session, PlanOfOne(session, session.Find(session.Given().arguments.front()).id, ""));
}

int RunRemove(Session& session) {
    const Desk& desk = session.DeskForChanges();
    const std::vector<std::string> ids = session.FindAll();
    EntryActs(desk).Delete(ids);
    const EntriesById left = ReadAllEntries(desk);
    for (const std::string& id : ids)
        if (left.contains(id)) throw Error("The entry " + id + " was not removed; the log of the day says why.");
    session.Notify();
    return session.Done(CountedEntries(ids.size()) + " removed.", ids);
}

int RunPause(Session& session) {
    return Act(session, &EntryActs::Pause);
}

int RunResume(Session& session) {
    return Act(session, &EntryActs::Resume);
}

int RunExport(Session& session) {
    const Desk& desk = session.TheDesk();
    const bool withPasswords = session.Given().Has("show-passwords");
    std::string text;
    if (session.Json()) {
        QJsonArray entries;
        for (const auto& [id, fields] : ReadAllEntries(desk)) {
            QJsonObject entry;
            for (const EntryInput* each : AllCsvColumns(desk, withPasswords))
                entry.insert(ForJson(std::string(CsvNameOf(each))), ForJson(each == nullptr ? id : CsvTextOf(*each, fields)));
            entries.append(entry);
        }
        text = QJsonDocument(QJsonObject{{"entries", entries}}).toJson().toStdString();
    } else {
        text = ExportEntries(desk, withPasswords);
    }
    if (session.Given().arguments.empty()) {
        session.Place().out << text;
        return kDone;
    }
    desk.files.Replace(session.Given().arguments.front(), text);
    session.Say("Written to " + session.Given().arguments.front() + ".");
    return kDone;
}

int RunImport(Session& session) {
    const Desk& desk = session.Given().Has("dry-run") ? session.TheDesk() : session.DeskForChanges();
    std::string text = TextOfFile(session, session.Given().arguments.front());
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    const auto begin = text.find_first_not_of(" \t\r\n");
    if (begin != std::string::npos && (text[begin] == '{' || text[begin] == '[')) text = CsvOfJson(text);
    const ImportPlan plan = PlanImport(desk, text);
    if (!plan.refusal.empty()) throw Error(plan.refusal + "\nNothing was imported.");
    for (const ImportRow& row : plan.rows)
        if (row.step == ImportStep::Refused)
            session.Place().errors << "korvanecore: line " << row.line << ": " << ReplaceAll(row.details, "\r\n", " ") << "\n";
    const bool refuses = plan.Count(ImportStep::Refused) > 0 && !session.Given().Has("skip-refused");
    if (refuses) throw Error(plan.Summary() + "\nNothing was imported; --skip-refused imports the other rows.");
    if (session.Given().Has("dry-run")) return session.Done(plan.Summary(), {});
    const std::vector<std::string> ids = ImportEntries(desk, plan);
    session.Notify();
    return session.Done(plan.Summary(), ids);
}

}  // namespace korvane
