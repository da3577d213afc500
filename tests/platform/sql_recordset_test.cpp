// What a Recordset over an SQLite file reads, writes and keeps.
#include <gtest/gtest.h>

#include <functional>

#include "base/error.h"
#include "base/text.h"
#include "platform/sql_other_program.h"
#include "support/test_database.h"

namespace korvane {
namespace {

using enum CursorType;
using namespace std::string_literals;

class SqlRecordset : public testing::Test {
protected:
    std::unique_ptr<Recordset> Open(const std::string& source, CursorType cursor = Keyset, LockType lock = LockType::Optimistic) {
        if (!connection) {
            connection = database.TheStore().NewConnection();
            connection->SetConnectionString(database.ProviderString());
            connection->Open();
        }
        auto rs = database.TheStore().NewRecordset();
        rs->Open(source, *connection, cursor, lock);
        return rs;
    }

    void Sql(const std::string& statement) { RunSql(database.Path(), statement); }

    /// The values of one column of the rows that are left; "-" for a blank.
    static std::string Walk(Recordset& rs, const std::string& column) {
        std::string all;
        for (; !rs.Eof(); rs.MoveNext()) {
            const Value value = rs.Fields(column).Value();
            all += (value.IsBlank() ? "-" : value.Text()) + ' ';
        }
        return Trim(all);
    }

    static std::string ErrorOf(const std::function<void()>& work) {
        try {
            work();
        } catch (const Error& error) {
            return error.what();
        }
        return "";
    }

    TestDatabase database;
    std::unique_ptr<Connection> connection;
};

TEST_F(SqlRecordset, ColumnsKeepWhatIsWrittenInTheirKind) {
    database.Add({.id = 9'007'199'254'740'993});
    const DateTime when = DateTime::Of(2026, 11, 21, 15, 4, 5);
    const std::string odd = "quote' \" \\ \n\t\x01 \xC3\xA4\xF0\x9F\x98\x80 nul\0 end"s;
    const struct {
        const char* column;
        Value written;
        Value kept;
        const char* inFile;
    } cases[] = {
        {"strDesc", odd, odd, nullptr},
        {"strDesc", std::string(300'000, 'x'), std::string(300'000, 'x'), nullptr},
        {"strDesc", "", "", "''"},
        {"strDesc", Value(), Value(), "NULL"},
        {"strDesc", when, "11/21/2026 3:04:05 PM", "'11/21/2026 3:04:05 PM'"},
        {"strPort", 8080, "8080", "'8080'"},
        {"nTries", " 12 ", 12, "12"},
        {"nTries", 2.5, 2, "2"},
        {"nTries", Value(), Value(), "NULL"},
        {"nSuccess", 2147483647, 2147483647, "2147483647"},
        {"idCustomer", "9007199254740993", std::int64_t{9007199254740993}, "9007199254740993"},
        {"nAveResponse", "0.1", 0.1, "0.1"},
        {"nAveResponse", 7, 7.0, "7.0"},
        {"bIsMonitoring", "True", true, "1"},
        {"BISMONITORING", "0", false, "0"},
        {"dtNextCheck", when, when, "'2026-11-21 15:04:05'"},
        {"dtnextcheck", "11/21/2026", when.Date(), "'2026-11-21 00:00:00'"},
        {"dtNextCheck", "", Value(), "NULL"},
    };
    for (const auto& c : cases) {
        auto rs = Open("SELECT * FROM Servers");
        rs->Fields(c.column) = c.written;
        EXPECT_EQ(rs->Fields(c.column).Value(), c.kept) << c.column;
        rs->Update();
        EXPECT_EQ(Open("SELECT * FROM Servers")->Fields(c.column).Value(), c.kept) << c.column;
        EXPECT_EQ(Open("SELECT * FROM Servers", Static)->Fields(c.column).Value(), c.kept) << c.column;
        const std::string stored = std::string("SELECT quote(") + c.column + ") AS q FROM Servers";
        if (c.inFile != nullptr) {
            EXPECT_EQ(Open(stored, Static)->Fields("q").Value(), Value(c.inFile)) << c.column;
        }
    }
    EXPECT_EQ(Open("SELECT * FROM Servers")->Fields("id").Value(), Value(std::int64_t{9'007'199'254'740'993}));
}

TEST_F(SqlRecordset, WhatDoesNotFitAColumnIsRefused) {
    database.Add({.nTries = 3, .dtNextCheck = DateTime::Of(2026, 1, 1)});
    const auto rs = Open("SELECT * FROM Servers");
    for (const char* column : {"nTries", "nSuccess", "nAveResponse", "bIsMonitoring", "ID"}) {
        for (const char* text : {"", "abc", "1 2"})
            EXPECT_THROW(rs->Fields(column) = text, TypeMismatchError) << column << text;
    }
    EXPECT_THROW(rs->Fields("nTries") = 32768, OverflowError);
    EXPECT_THROW(rs->Fields("nSuccess") = std::int64_t{2147483648}, OverflowError);
    EXPECT_THROW(rs->Fields("nAveResponse") = std::numeric_limits<double>::infinity(), OverflowError);
    EXPECT_THROW(rs->Fields("dtNextCheck") = "tomorrow", TypeMismatchError);
    EXPECT_THROW(rs->Fields("dtNextCheck") = 5, TypeMismatchError);
    rs->Update();
    EXPECT_EQ(rs->Fields("nTries").Value(), Value(3));
    EXPECT_EQ(database.Server(1).at("dtNextCheck"), Value(DateTime::Of(2026, 1, 1)));
}

TEST_F(SqlRecordset, StrayValuesOfOtherProgramsAreReadAsTheyAre) {
    database.Add({});
    const struct {
        const char* column;
        const char* stored;
        Value read;
    } cases[] = {
        {"nTries", "'many'", "many"},        {"nTries", "70000", 70000},
        {"nAveResponse", "'it''s'", "it's"}, {"bIsMonitoring", "'True'", "True"},
        {"bIsMonitoring", "-1", true},       {"dtNextCheck", "'soon'", "soon"},
        {"dtNextCheck", "''", Value()},      {"dtNextCheck", "20261121", "20261121"},
        {"nTries", "x'3132'", "12"},
    };
    for (const auto& c : cases) {
        Sql("UPDATE Servers SET "s + c.column + " = " + c.stored);
        for (const CursorType cursor : {Keyset, Static}) {
            const auto rs = Open("SELECT * FROM Servers", cursor);
            EXPECT_EQ(rs->Fields(c.column).Value(), c.read) << c.column << " = " << c.stored;
            EXPECT_EQ(rs->Fields("nTimeout").Value(), Value(15));
        }
    }
}

TEST_F(SqlRecordset, AddedRowsStartWithTheDefaultsAndBecomeCurrent) {
    const auto rs = Open("SELECT * FROM Servers where id < 0");
    EXPECT_TRUE(rs->Eof());
    EXPECT_EQ(rs->RecordCount(), 0);
    EXPECT_NE(ErrorOf([&] { rs->Fields("strDesc").Value(); }), "");
    rs->AddNew();
    EXPECT_FALSE(rs->Eof());
    EXPECT_EQ(rs->Fields("strGroup").Value(), Value("Group1"));
    EXPECT_EQ(rs->Fields("nPercentUP").Value(), Value(100.0));
    EXPECT_EQ(rs->Fields("bIsMonitoring").Value(), Value(true));
    EXPECT_TRUE(rs->Fields("dtNextCheck").Value().IsBlank());
    rs->Fields("ID") = "71121341";
    rs->Fields("strDesc") = "new";
    EXPECT_EQ(rs->RecordCount(), 0);
    EXPECT_EQ(database.Count("Servers"), 0);
    rs->Update();
    EXPECT_EQ(rs->RecordCount(), 1);
    EXPECT_EQ(rs->Fields("strGroup").Value(), Value("Group1"));
    rs->Fields("nTries") = 7;
    rs->Update();
    EXPECT_EQ(database.Server(71121341).at("nTries"), Value(7));

    rs->AddNew();  // without an ID it gets one
    rs->Fields("strDesc") = "second";
    rs->MoveNext();
    EXPECT_TRUE(rs->Eof());
    rs->AddNew();
    rs->Fields("ID") = 71121341;
    EXPECT_NE(ErrorOf([&] { rs->Update(); }), "");  // there already
    rs->Fields("ID") = 5;
    rs->Update();
    EXPECT_EQ(rs->RecordCount(), 3);
    EXPECT_EQ(Walk(*Open("SELECT * FROM Servers ORDER BY id"), "strDesc"), "- new second");

    for (const CursorType cursor : {Keyset, Static}) {  // an added row comes behind all others
        const auto rows = Open("SELECT * FROM Servers", cursor);
        rows->AddNew();
        rows->MoveNext();
        EXPECT_TRUE(rows->Eof());
    }
}

TEST_F(SqlRecordset, UpdateWritesTheChangedColumnsOnly) {
    for (const CursorType cursor : {Keyset, Static}) {
        const std::int64_t id = database.Add({.strDesc = "old", .nSuccess = 1});
        const auto check = Open("SELECT * FROM Servers WHERE id = " + std::to_string(id), cursor);
        EXPECT_EQ(check->Fields("strDesc").Value(), Value("old"));
        check->Fields("nSuccess") = 2;
        EXPECT_EQ(check->Fields("nSuccess").Value(), Value(2));
        EXPECT_EQ(database.Server(id).at("nSuccess"), Value(1));
        database.Change("Servers", id, {{"strDesc", "edited"}});
        check->Update();
        check->Update();
        EXPECT_EQ(database.Server(id).at("nSuccess"), Value(2));
        EXPECT_EQ(database.Server(id).at("strDesc"), Value("edited"));

        check->Fields("id") = id + 10;  // is followed
        check->Update();
        check->Fields("nTries") = 9;
        check->Update();
        check->Fields("nSuccess") = 3;
        check->Close();
        EXPECT_EQ(database.Server(id + 10).at("nTries"), Value(9));
        EXPECT_EQ(database.Server(id + 10).at("nSuccess"), Value(2));
    }
}

TEST_F(SqlRecordset, MoveNextUpdatesFirstAndDeleteStaysBeforeTheNextRow) {
    for (int i = 1; i <= 5; ++i)
        database.Add({.strDesc = std::to_string(i)});
    for (const CursorType cursor : {Keyset, Static}) {
        const auto rs = Open("SELECT * FROM Servers ORDER BY id", cursor);
        const int count = rs->RecordCount();
        rs->Fields("strDesc") = "moved";
        rs->MoveNext();
        const std::string deleted = rs->Fields("strDesc").Value().Text();
        rs->Delete();
        EXPECT_EQ(rs->RecordCount(), count - 1);
        EXPECT_FALSE(rs->Eof());
        EXPECT_NE(ErrorOf([&] { rs->Fields("strDesc").Value(); }), "");
        rs->MoveNext();
        EXPECT_EQ(rs->Fields("strDesc").Value().Text(), std::to_string(std::stoi(deleted) + 1));
    }
    EXPECT_EQ(Walk(*Open("SELECT * FROM Servers ORDER BY id"), "strDesc"), "moved 4 5");
    const auto all = Open("SELECT * FROM Servers");
    for (; !all->Eof(); all->MoveNext())
        all->Delete();
    EXPECT_EQ(database.Count("Servers"), 0);
    EXPECT_NE(ErrorOf([&] { all->MoveNext(); }), "");
}

TEST_F(SqlRecordset, KeysetsReadWhenLookedAtAndStaticRowsStay) {
    for (int i = 1; i <= 150; ++i)
        database.Add({.strDesc = "old"});
    const auto keyset = Open("SELECT * FROM Servers ORDER BY id");
    const auto copy = Open("SELECT * FROM Servers ORDER BY id", Static);
    database.Add({.strDesc = "late"});
    for (int changed = 5; changed <= 150; changed += 10)
        database.Change("Servers", changed, {{"strDesc", "new"}});
    int row = 1;
    for (; !keyset->Eof(); keyset->MoveNext(), copy->MoveNext(), ++row) {
        ASSERT_EQ(keyset->Fields("strDesc").Value(), Value(row % 10 == 5 ? "new" : "old"));
        ASSERT_EQ(copy->Fields("strDesc").Value(), Value("old"));
        if (row % 40 != 0) continue;
        // A second column fetches the row anew, with what a writer beside the walk has done to it.
        Sql("UPDATE Servers SET nTries = 9, strDesc = 'newer' WHERE id = " + std::to_string(row));
        EXPECT_EQ(keyset->Fields("nTries").Value(), Value(9));
        EXPECT_EQ(keyset->Fields("strDesc").Value(), Value("newer"));
    }
    EXPECT_EQ(row, 151);
}

TEST_F(SqlRecordset, ARowThatIsGoneIsTold) {
    for (int i = 1; i <= 3; ++i)
        database.Add({});
    const auto rs = Open("SELECT * FROM Servers ORDER BY id");
    rs->Fields("nTries") = 9;
    database.Remove("Servers", 1);
    database.Remove("Servers", 2);
    const std::string gone = "Row cannot be located for updating. Some values may have been changed since it was last read.";
    EXPECT_EQ(ErrorOf([&] { rs->Update(); }), gone);
    EXPECT_EQ(ErrorOf([&] { rs->MoveNext(); }), gone);  // still pending
    EXPECT_EQ(ErrorOf([&] { rs->Delete(); }), gone);
    EXPECT_EQ(rs->Fields("nTries").Value(), Value(9));
    const auto other = Open("SELECT * FROM Servers");
    database.Remove("Servers", 3);
    EXPECT_NE(ErrorOf([&] { other->Fields("nTries").Value(); }), "");
}

TEST_F(SqlRecordset, PessimisticRowsAreLockedWithinTheProgram) {
    database.Add({});
    database.Add({});
    const std::string query = "SELECT * FROM Servers ORDER BY id";
    const auto first = Open(query, Keyset, LockType::Pessimistic);
    auto second = Open("SELECT * FROM SERVERS ORDER BY id", Keyset, LockType::Pessimistic);
    const auto writes = [](Recordset& rs) { return ErrorOf([&] { rs.Fields("nTries") = 5; }); };
    EXPECT_EQ(writes(*first), "");
    EXPECT_EQ(writes(*first), "");
    EXPECT_EQ(writes(*second), "Could not update; currently locked.");
    EXPECT_EQ(second->Fields("nTries").Value(), Value(3));
    EXPECT_EQ(writes(*Open(query)), "");
    first->Update();
    EXPECT_NE(writes(*second), "");  // until the cursor leaves the row
    second->MoveNext();
    EXPECT_EQ(writes(*second), "");
    first->MoveNext();
    EXPECT_NE(writes(*first), "");
    EXPECT_EQ(writes(*Open(query, Static, LockType::Pessimistic)), "");
    second.reset();
    EXPECT_EQ(writes(*first), "");
}

TEST_F(SqlRecordset, ColumnsThatAreNotThereAreNamed) {
    database.Add({});
    database.TheStore().Rest();
    Sql("ALTER TABLE Servers DROP COLUMN strCMDUP");
    Sql("ALTER TABLE Servers ADD COLUMN strNote TEXT DEFAULT 'note'");
    for (const CursorType cursor : {Keyset, Static}) {
        const auto rs = Open("SELECT * FROM Servers", cursor);
        EXPECT_EQ(rs->Fields("strnote").Value(), Value("note"));
        EXPECT_EQ(rs->Fields("nTries").Value(), Value(3));
        for (const char* column : {"strCMDUP", "", "a`b]'\"", "frmMonitor: 1st Scheduled DownTime (starts at 9:00)"}) {
            for (const auto& use :
                 {std::function([&] { rs->Fields(column).Value(); }), std::function([&] { rs->Fields(column) = 1; })}) {
                const std::string error = ErrorOf(use);
                EXPECT_TRUE(Holds(error, "Item cannot be found")) << error;
                EXPECT_TRUE(Holds(error, std::string("'") + column + "' in ")) << error;
            }
        }
        rs->Fields("strCMD") = "run";
        rs->Update();
    }
    const auto added = Open("SELECT * FROM Servers WHERE id < 0");
    added->AddNew();
    EXPECT_NE(ErrorOf([&] { added->Fields("strCMDUP") = ""; }), "");
}

TEST_F(SqlRecordset, OtherQueriesAreReadOnlyCopies) {
    for (const char* group : {"b", "a", "B", "c"})
        database.Add({.strGroup = group});
    database.AddRow("ResponseFailText", {{"id", 1}, {"idParent", 2}, {"strFailText", "oops"}});
    const auto distinct = Open("SELECT distinct strGroup, idCustomer FROM Servers where idCustomer = 0 order by strGroup desc");
    EXPECT_EQ(distinct->RecordCount(), 3);
    EXPECT_EQ(distinct->Fields("idcustomer").Value(), Value(0));
    EXPECT_NE(ErrorOf([&] { distinct->Fields("strGroup") = "x"; }), "");
    EXPECT_NE(ErrorOf([&] { distinct->AddNew(); }), "");
    EXPECT_NE(ErrorOf([&] { distinct->Delete(); }), "");
    EXPECT_EQ(ToLower(Walk(*distinct, "STRGROUP")), "c b a");

    const auto join = Open(
        "SELECT s.strDesc, f.strFailText, s.dtNextCheck, count(*) AS n, avg(nTries) AS m "
        "FROM Servers s JOIN ResponseFailText f ON f.idParent = s.ID GROUP BY s.ID;");
    EXPECT_EQ(join->Fields("strFailText").Value(), Value("oops"));
    EXPECT_EQ(join->Fields("n").Value(), Value(1));
    EXPECT_EQ(join->Fields("m").Value(), Value(3.0));

    Sql("CREATE TABLE Named (n INTEGER, name TEXT PRIMARY KEY)");
    Sql("INSERT INTO Named VALUES (1, 'b'), (2, 'a')");
    Sql("CREATE VIEW Seen AS SELECT * FROM Named");
    EXPECT_EQ(Walk(*Open("SELECT * FROM Named", Static), "n"), "2 1");
    EXPECT_EQ(Walk(*Open("SELECT n FROM Seen where n > 1"), "n"), "2");

    const auto list = Open("SELECT id,idparent,strFailText,strFailCommand from ResponseFailText where idParent =2");
    list->Fields("strFailText") = "rule";
    list->MoveNext();
    EXPECT_EQ(database.Rows("ResponseFailText").front().at("strFailText"), Value("rule"));
    for (const char* query :
         {"SELECT * FROM NoSuchTable", "SELECT * FROM Servers WHERE id =", "DELETE FROM Servers", "", "SELECT 'a"})
        EXPECT_NE(ErrorOf([&] { Open(query); }), "") << query;
    EXPECT_TRUE(Holds(ErrorOf([&] { Open("SELECT * FROM NoSuchTable"); }), "NoSuchTable"));
    EXPECT_EQ(database.Count("Servers"), 4);
}

}  // namespace
}  // namespace korvane
