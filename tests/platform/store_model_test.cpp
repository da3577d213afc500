// The store, in a file and on a server, against a model of it: recordsets that are opened, read, written, moved, extended and closed at random, three at a time
// on the same rows, beside a std::map of those rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>

#include "platform/real_ports.h"
#include "store/database_files.h"
#include "support/shared_home.h"
#include "support/test_database.h"

namespace korvane::store_model_test {

using namespace std::string_literals;
using ModelRows = std::map<std::int64_t, Row>;
const DateTime kMoment = DateTime::Of(2026, 11, 21, 15, 4, 5);
const std::string kOddText = "quote' \" \\ \n\t\x01 \xC3\xA4\xF0\x9F\x98\x80 nul\0 end"s;

/// What a column makes of a value that is written to it, and how that stands in the file.
const struct KeptValue {
    const char* column;
    Value written, kept;
    const char* inFile = nullptr;
    bool fits = true;
} kKeptValues[] = {{"strDesc", kOddText, kOddText},
                   {"strgroup", "B", "B"},
                   {"strGroup", "b", "b"},
                   {"nTries", " 12 ", 12, "12"},
                   {"nTries", 32768, {}, nullptr, false},
                   {"nSuccess", 2147483648.0, {}, nullptr, false},
                   {"nSuccess", "", {}, nullptr, false},
                   {"idCustomer", "9007199254740993", std::int64_t{9007199254740993}, "9007199254740993"},
                   {"nAveResponse", "0.1", 0.1, "0.1"},
                   {"nAveResponse", HUGE_VAL, {}, nullptr, false},
                   {"bIsMonitoring", "True", true, "1"},
                   {"BISMONITORING", "0", false, "0"},
                   {"bIsMonitoring", "", {}, nullptr, false},
                   {"dtNextCheck", kMoment, kMoment, "'2026-11-21 15:04:05'"},
                   {"dtnextcheck", "11/22/2026", DateTime::Of(2026, 11, 22), "'2026-11-22 00:00:00'"},
                   {"dtNextCheck", "", {}, "NULL"},
                   {"dtNextCheck", "tomorrow", {}, nullptr, false}};
const Row kDefaults = {
    {"ID", {}},      {"strGroup", "Group1"}, {"strDesc", {}},       {"strPort", "80"},       {"nTries", 3},
    {"nSuccess", 0}, {"idCustomer", 0},      {"nAveResponse", 0.0}, {"bIsMonitoring", true}, {"dtNextCheck", {}}};

/// Queries, and which rows they give; all come in order of the primary key.
const std::pair<const char*, bool (*)(Row row)> kModelQueries[] = {
    {"SELECT * FROM Servers", [](Row) { return true; }},
    {"SELECT * FROM Servers ORDER BY iD", [](Row) { return true; }},
    {"select * from[servers]where NTRIES > 3 ; ", [](Row row) { return row["nTries"] == 12; }},
    {"SELECT * FROM Servers WHERE STRGROUP='b'", [](Row row) { return ToLower(row["strGroup"].Text()) == "b"; }},
    {"SELECT * FROM Servers WHERE dtNextCheck <= #11/21/2026 3:04:05 PM#",
     [](Row row) { return row["dtNextCheck"] == kMoment; }}};

/// A recordset and what it must show.
struct ModelCursor {
    enum class At { None, Deleted, Stored, New };

    std::unique_ptr<Recordset> rs = nullptr;
    bool isStatic = false, pessimistic = false, added = false, locks = false;
    std::size_t opened = 0, next = 0;  ///< version of the rows, and place in `keys`
    std::vector<std::int64_t> keys = {};
    int count = 0;
    At at = At::None;
    std::int64_t key = 0;
    Row own = {}, pending = {};

    void Leave(At to) {
        at = to;
        locks = false;
        own = pending = {};
        added = to == At::New || (to == At::Deleted && added);
    }
    void Advance() {
        const bool atEnd = added || next == keys.size();
        Leave(atEnd ? At::None : At::Stored);
        if (!atEnd) key = keys[next++];
    }
};

/// On a server?, seed.
struct StoreModel : testing::TestWithParam<std::tuple<bool, unsigned>> {
    using At = ModelCursor::At;

    std::size_t Below(std::size_t bound) { return random() % bound; }
    std::unique_ptr<Recordset> Rows(const std::string& query, CursorType cursor, LockType lock = LockType::Optimistic) {
        return OpenRows(database.TheStore(), *connection, query, cursor, lock);
    }
    void Open(ModelCursor& c) {
        const auto& [text, holds] = kModelQueries[Below(std::size(kModelQueries))];
        c = {.isStatic = Below(2) == 0, .pessimistic = Below(2) == 0, .opened = versions.size() - 1};
        for (const auto& [id, row] : versions.back())
            if (holds(row)) c.keys.push_back(id);
        c.count = static_cast<int>(c.keys.size());
        c.rs = Rows(text, c.isStatic ? CursorType::Static : CursorType::Keyset,
                    c.pessimistic ? LockType::Pessimistic : LockType::Optimistic);
        c.Advance();
    }

    // A file continues after the highest; a server counts, and continues after the highest when it meets one that was given.
    std::int64_t NextId(const ModelRows& rows) {
        const std::int64_t highest = rows.empty() ? 0 : rows.rbegin()->first;
        return counted = !server || rows.contains(counted + 1) ? highest + 1 : counted + 1;
    }
    // A server has no place for a NUL.
    const KeptValue AnyValue() {
        KeptValue value = kKeptValues[Below(std::size(kKeptValues))];
        if (server && value.written == Value(kOddText)) value.written = value.kept = ReplaceAll(kOddText, "\0"s, "");
        return value;
    }

    // What an operation does to the model; false when it is refused and changes nothing.
    bool Update(ModelCursor& c) {
        const bool isNew = c.at == At::New;
        if (!isNew && c.pending.empty()) return true;
        ModelRows rows = versions.back();
        const std::int64_t id = c.pending.contains("ID") ? c.pending["ID"].Int64() : isNew ? NextId(rows) : c.key;
        const auto old = rows.extract(isNew ? 0 : c.key);
        if (old.empty() != isNew || rows.contains(id)) return false;
        Row& row = rows[id] = isNew ? kDefaults : old.mapped();
        for (const auto& [column, value] : c.pending)
            row[column] = value;
        row["ID"] = c.key = id;
        versions.push_back(rows);
        c.count += isNew ? 1 : 0;
        c.at = At::Stored;
        c.pending.clear();
        return true;
    }
    bool Delete(ModelCursor& c) {
        if (c.at < At::Stored || (c.at == At::Stored && !versions.back().contains(c.key))) return false;
        versions.push_back(versions.back());
        if (c.at == At::Stored) c.count -= static_cast<int>(versions.back().erase(c.key));
        c.Leave(At::Deleted);
        return true;
    }
    bool Write(ModelCursor& c, const KeptValue& value) {
        const auto locked = [&](const ModelCursor& other) { return &other != &c && other.locks && other.key == c.key; };
        const bool needsLock = c.pessimistic && c.at == At::Stored;
        if (c.at < At::Stored || !value.fits || (needsLock && std::any_of(cursors, cursors + 3, locked))) return false;
        c.locks = c.locks || needsLock;
        c.own[value.column] = c.pending[value.column] = value.kept;
        return true;
    }

    /// The store does what the model does: it refuses, or not.
    static void Both(bool goes, const std::function<void()>& work) { EXPECT_EQ(ErrorOf(work).empty(), goes); }
    /// A keyset reads rows when they are looked at, or some ahead: it may show any of their values since it was opened.
    void Read(const ModelCursor& c, const std::string& column) {
        std::vector<Value> values;
        const bool isCopy = c.isStatic && !c.added && versions[c.opened].contains(c.key);
        for (std::size_t i = c.opened; i < (isCopy ? c.opened + 1 : versions.size()); ++i)
            if (versions[i].contains(c.key)) values.push_back(versions[i].at(c.key).at(column));
        if (c.at == At::New) values = {kDefaults.at(column)};
        if (c.own.contains(column)) values = {c.own.at(column)};
        Value shown;
        const std::string error = ErrorOf([&] { shown = c.rs->Fields(column).Value(); });
        const bool mayFail = c.at < At::Stored || (c.at == At::Stored && !versions.back().contains(c.key));
        const bool isRight = error.empty() ? std::find(values.begin(), values.end(), shown) != values.end() : mayFail;
        EXPECT_TRUE(isRight) << column << ": " << shown.Text() << error;
    }
    void Step() {
        ModelCursor& c = cursors[Below(3)];
        if (!c.rs || Below(30) == 0) return Open(c);
        KeptValue value = AnyValue();
        // A new row may ask for an ID that is taken; one that is stored gets one that never was.
        const auto id = c.at == At::New ? static_cast<std::int64_t>(Below(20) + 1) : lastId += 1'000'000;
        if (Below(8) == 0) value = {"id", std::to_string(id), id};
        const std::size_t chosen = Below(versions.back().size() > 8 ? 7 : 6);
        if (chosen < 3) Both(Write(c, value), [&] { c.rs->Fields(value.column) = value.written; });
        const bool updates = chosen > 2 && chosen < 6 && (chosen > 3 || c.at != At::None) && Update(c);
        if (chosen == 3) Both(updates, [&] { c.rs->MoveNext(); });
        if (chosen == 3 && updates) c.Advance();
        if (chosen == 4) Both(updates, [&] { c.rs->AddNew(); });
        if (chosen == 4 && updates) c.Leave(At::New);
        if (chosen == 5) Both(updates, [&] { c.rs->Update(); });
        if (chosen == 6) Both(Delete(c), [&] { c.rs->Delete(); });
        EXPECT_EQ(c.rs->RecordCount(), c.count);
        EXPECT_EQ(c.rs->Eof(), c.at == At::None);
        const std::size_t only = Below(2 * kDefaults.size());
        for (std::size_t i = 0; const auto& [column, standard] : kDefaults)
            if (only >= kDefaults.size() || only == i++) Read(c, column);
    }

    const std::unique_ptr<SharedHome> server{std::get<0>(GetParam()) ? new SharedHome : nullptr};
    const std::unique_ptr<TestDatabase> file{server ? nullptr : new TestDatabase};
    TestDatabase& database = server ? server->rows : *file;
    std::unique_ptr<Connection> connection = OpenDatabase(database.TheStore(), database.Folder());
    ModelCursor cursors[3];
    std::vector<ModelRows> versions{1};
    std::int64_t lastId = 0, counted = 0;
    std::mt19937 random{std::get<1>(GetParam())};
};

INSTANTIATE_TEST_SUITE_P(Random, StoreModel,
                         testing::Combine(testing::Bool(),
                                          testing::Range(10U, std::getenv("KORVANE_LONG") != nullptr ? 210U : 15U)));

TEST_P(StoreModel, ShowsWhatTheModelShows) {
    for (int step = 0; step < 600 && !HasFailure(); ++step)
        Step();
    EXPECT_GT(versions.size(), 50U) << "too little was written";
}

TEST_P(StoreModel, ColumnsKeepWhatFitsThemInTheirForm) {
    database.Add({});
    const auto rs = Rows("SELECT * FROM Servers", CursorType::Keyset);
    for (const auto& [column, written, kept, inFile, fits] : kKeptValues) {
        Both(fits, [&, name = column, value = written] { rs->Fields(name) = value; });
        rs->Update();
        if (inFile == nullptr) continue;
        EXPECT_EQ(database.Rows("Servers").front().at(column), kept) << column;
        if (server) continue;
        const auto stored = Rows("SELECT quote("s + column + ") AS q FROM Servers", CursorType::Static);
        EXPECT_EQ(stored->Fields("q").Value(), Value(inFile)) << column;
    }
}

TEST_P(StoreModel, AnswersOtherQueriesInTheSameOrderAndNamesWhatIsNotThere) {
    database.AddMany({{.strGroup = "b"}, {.strGroup = "a"}, {.strGroup = "B"}, {.strGroup = "c"}});
    database.AddMany(
        {{.strGroup = "_", .dtNextCheck = Value()}, {.strGroup = "d e", .bIsMonitoring = false, .dtNextCheck = Value()}});
    const auto groups = Rows("SELECT distinct strGroup FROM Servers order by strGroup desc", CursorType::Static);
    EXPECT_EQ(groups->RecordCount(), 5);
    EXPECT_EQ(groups->Fields("STRGROUP").Value(), Value("d e"));
    EXPECT_THROW(groups->AddNew(), Error);
    const std::pair<std::string, std::string> orders[] = {
        {"order by dtNextCheck ", "561234"},
        {"order by dtNextCheck asc limit 3", "561"},
        {"order by strGroup", "521346"},
        {"ORDER BY ifnull(strCurStatus, '') DESC, ID DESC", "654321"},
        {"where bIsMonitoring and trim(strGroup || 'x') <> 'Bx' order by id", "1245"}};
    for (const auto& [order, ids] : orders) {
        std::string found;
        for (const auto rs = Rows("SELECT * FROM Servers " + order, CursorType::Keyset); !rs->Eof(); rs->MoveNext())
            found += rs->Fields("ID").Value().Text();
        EXPECT_EQ(found, ids) << order;
    }
    EXPECT_EQ(ErrorOf([&] { Rows("SELECT * FROM Servers", CursorType::Keyset)->Fields("a`b]'\"") = 1; }),
              "Item cannot be found in the collection corresponding to the requested name or ordinal: 'a`b]'\"' in Servers.");
    for (const char* query : {"SELECT * FROM NoTable", "SELECT * FROM Servers WHERE id =", "DELETE FROM Servers", "SELECT 'a",
                              "SELECT * FROM Servers; DROP TABLE Failures"})
        EXPECT_THROW(Rows(query, CursorType::Keyset), Error) << query;
    EXPECT_TRUE(connection->HasTable("FAILURES") && !connection->HasTable("NoTable"));
}

TEST_P(StoreModel, AFailureInATransactionTakesNothingElseWithItAndTablesComeInIt) {
    const auto write = [&](double value) {
        const auto rs = Rows("SELECT * FROM Kept WHERE id < 0", CursorType::Keyset);
        rs->AddNew();
        rs->Fields("ID") = 7;
        rs->Fields("nValue") = value;
        rs->Update();
    };
    database.Add({.id = 7});
    connection->BeginTrans();
    const auto entry = Rows("SELECT * FROM Servers", CursorType::Keyset);
    entry->Fields("nTries") = 9;
    entry->Update();
    EXPECT_THROW(write(1), Error);
    connection->Execute(
        "CREATE TABLE IF NOT EXISTS Kept (ID INTEGER PRIMARY KEY ON CONFLICT REPLACE, nValue REAL, strText TEXT)");
    connection->Execute(
        "CREATE TRIGGER IF NOT EXISTS KeptOfDeleted AFTER DELETE ON Servers BEGIN DELETE FROM Kept WHERE ID = OLD.ID; END");
    write(1.5);
    write(2.5);
    connection->CommitTrans();
    EXPECT_EQ(database.Server(7).at("nTries"), Value(9));
    const auto kept = Rows("SELECT * FROM Kept", CursorType::Static);
    EXPECT_EQ(kept->RecordCount(), 1);
    EXPECT_EQ(kept->Fields("nValue").Value(), Value(2.5));
    entry->Delete();
    EXPECT_EQ(Rows("SELECT count(*) AS n FROM Kept", CursorType::Static)->Fields("n").Value(), Value(0));
}

}  // namespace korvane::store_model_test
