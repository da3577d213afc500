// The command that says where the list is, and copies it between the file and a server.
#include <iomanip>
#include <ostream>

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"
#include "shell/cli/session.h"
#include "shell/list/entry_acts.h"
#include "shell/list/list_copy.h"
#include "store/database_files.h"
#include "store/instances.h"

namespace korvane {
namespace {

constexpr const char* kFile = "file";
constexpr const char* kUnfinished = ".new";

/// An end of a copy while it is open.
struct End {
    std::unique_ptr<Store> store;
    std::unique_ptr<Connection> connection;

    ListPlace Place() const { return {*store, *connection}; }
};

End OpenEnd(const Session& session, const std::string& word, const std::string& file) {
    End end{session.Place().storeAt(word == kFile ? "" : word), nullptr};
    end.connection = end.store->NewConnection();
    end.connection->SetConnectionString(FileConnectionText(file));
    end.connection->Open();
    return end;
}

std::int64_t EntriesIn(const std::vector<CopiedTable>& tables) {
    return tables.empty() ? 0 : tables.front().rows;
}

class Report {
public:
    explicit Report(const Session& session) : session_(session) {}

    void Add(const CopiedTable& table) {
        tables_.push_back(table);
        rows_.insert(ForJson(table.name), static_cast<qint64>(table.rows));
        if (session_.Json() || session_.Quiet()) return;
        session_.Place().out << std::left << std::setw(16) << table.name << std::right << std::setw(12)
                             << FormatGrouped(static_cast<double>(table.rows), 0) << std::endl;
    }

    int End(const std::string& what, bool done) const {
        const std::string sentence = CountedEntries(static_cast<std::size_t>(EntriesIn(tables_))) + " " + what;
        if (session_.Json())
            session_.PrintJson({{"done", done}, {"tables", rows_}, {"text", ForJson(sentence)}});
        else
            session_.Say(sentence);
        return kDone;
    }

private:
    const Session& session_;
    std::vector<CopiedTable> tables_;
    QJsonObject rows_;
};

// Both keep their hold until the process ends.
void HoldHome(Session& session) {
    if (session.Runs() || !session.TheDesk().files.HoldFolder(session.Home()))
        throw Error("A monitor runs with this home, and nothing was copied. End it first.");
}

int DryRun(const Session& session, const End& from) {
    Report report(session);
    for (const CopiedTable& table : CountList(from.Place()))
        report.Add(table);
    return report.End("would be copied. Nothing was.", false);
}

void CopyToServer(Session& session, const End& from, const std::string& address, Report& report) {
    const End to = OpenEnd(session, address, DatabasePath(session.Home()));
    CopyList(from.Place(), to.Place(), [&](const CopiedTable& table) { report.Add(table); });
}

// The file that is there may be an empty one, which a start has made.
void CopyToFile(Session& session, const End& from, Report& report) {
    const Desk& desk = session.TheDesk();
    const std::string file = DatabasePath(desk.dir), unfinished = file + kUnfinished;
    if (desk.files.Exists(file)) {
        const End present = OpenEnd(session, kFile, file);
        for (const CopiedTable& table : CountList(present.Place()))
            if (table.rows > 0) throw Error("The file " + file + " is not empty, and nothing was copied. Move it away first.");
    }
    RemoveJournals(desk.files, unfinished);
    desk.files.Remove(unfinished);
    desk.files.Copy(desk.dataDir + "/" + std::string(kEmptyDatabaseFile), unfinished);
    {
        const End to = OpenEnd(session, kFile, unfinished);
        CopyList(from.Place(), to.Place(), [&](const CopiedTable& table) { report.Add(table); });
    }
    RemoveJournals(desk.files, file);
    desk.files.Rename(unfinished, file);
    RemoveJournals(desk.files, unfinished);  // an empty one stays
}

int Copy(Session& session, const std::string& fromWord, const std::string& toWord) {
    if (fromWord == toWord) throw WrongWords("'" + fromWord + "' cannot be copied to itself.");
    const bool isDry = session.Given().Has("dry-run"), usesFile = fromWord == kFile || toWord == kFile;
    const Desk& desk = usesFile && !isDry ? session.DeskForChanges() : session.TheDesk();
    if (usesFile && !isDry) HoldHome(session);
    if (fromWord == kFile && !desk.files.Exists(DatabasePath(desk.dir))) throw Error("This home has no file with a list.");
    const End from = OpenEnd(session, fromWord, DatabasePath(desk.dir));
    if (isDry) return DryRun(session, from);
    Report report(session);
    toWord == kFile ? CopyToFile(session, from, report) : CopyToServer(session, from, toWord, report);
    return report.End("copied.\n" + std::string(toWord == kFile ? "A home whose setting Database is blank uses them."
                                                                : "A home whose setting Database has that address uses them."),
                      true);
}

int Tell(Session& session) {
    const Desk& desk = session.TheDesk();
    const auto connection = OpenDatabase(desk.store, desk.dir);
    const std::string server = connection->Server();
    const std::int64_t entries = EntriesIn(CountList({desk.store, *connection}));
    const std::vector<std::string> instances = Instances(desk.store).Lines(*connection);
    if (session.Json()) {
        session.PrintJson(
            {{"database", ForJson(server)}, {"entries", static_cast<qint64>(entries)}, {"instances", ForJson(instances)}});
        return kDone;
    }
    const std::string where =
        server.empty() ? "in the file " + std::string(kDatabaseFile) + " of this home" : "on a server: " + server;
    session.Say("The list is " + where + ".\n" + CountedEntries(static_cast<std::size_t>(entries)) + ".");
    for (const std::string& line : instances)
        session.Say("Instance " + line);
    return kDone;
}

}  // namespace

int RunDatabase(Session& session) {
    const auto& words = session.Given().arguments;
    if (words.empty()) return Tell(session);
    if (words.front() != "copy")
        throw WrongWords("'" + words.front() + "' is not understood." + Nearest(words.front(), {"copy"}) +
                         "\nUsage: korvanecore database [copy <from> <to>]");
    if (words.size() != 3) throw WrongWords("something is missing after 'copy'.\nUsage: korvanecore database copy <from> <to>");
    return Copy(session, words[1], words[2]);
}

}  // namespace korvane
