// The store against a model of it: recordsets that are opened, read, written, moved, extended and closed at random, three at a time
// on the same rows, beside a std::map of those rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>

#include "platform/real_ports.h"
#include "store/database_files.h"
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

struct StoreModel : testing::TestWithParam<unsigned> {
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

    // What an operation does to the model; false when it is refused and changes nothing.
    bool Update(ModelCursor& c) {
        const bool isNew = c.at == At::New;
        if (!isNew && c.pending.empty()) return true;
        ModelRows rows = versions.back();
        const std::int64_t unnamed = !isNew ? c.key : rows.empty() ? 1 : rows.rbegin()->first + 1;
        const std::int64_t id = c.pending.contains("ID") ? c.pending["ID"].Int64() : unnamed;
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
        KeptValue value = kKeptValues[Below(std::size(kKeptValues))];
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

    TestDatabase database;
    std::unique_ptr<Connection> connection = OpenDatabase(database.TheStore(), database.Folder());
    ModelCursor cursors[3];
    std::vector<ModelRows> versions{1};
    std::int64_t lastId = 0;
    std::mt19937 random{GetParam()};
};

/// The seeds.
INSTANTIATE_TEST_SUITE_P(Random, StoreModel, testing::Range(10U, std::getenv("KORVANE_LONG") != nullptr ? 210U : 15U));

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
        const auto stored = Rows("SELECT quote("s + column + ") AS q FROM Servers", CursorType::Static);
        EXPECT_EQ(stored->Fields("q").Value(), Value(inFile)) << column;
    }
}

}  // namespace korvane::store_model_test
