// The store's texts and its file: queries in the program's own form, other programs, files that are no database, a full disk, and
// compaction amid all that.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <sstream>

#include "base/text.h"
#include "platform/qt/sql_store.h"
#include "platform/qt/sql_text.h"
#include "platform/real_ports.h"
#include "store/database_files.h"
#include "store/schema.h"
#include "support/child_process.h"
#include "support/test_database.h"

namespace korvane::store_test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace std::string_literals;

/// Another SQLite program, which does not wait.
struct AnyProgram : QSqlDatabase {
    explicit AnyProgram(const std::string& path) : QSqlDatabase("QSQLITE") {
        setDatabaseName(QString::fromStdString(path));
        setConnectOptions("QSQLITE_BUSY_TIMEOUT=0");
        open();
    }
    /// The first value of the result, or the error.
    std::string Run(const std::string& sql) {
        QSqlQuery query(*this);
        if (!query.exec(QString::fromStdString(sql))) return query.lastError().databaseText().toStdString();
        return query.next() ? query.value(0).toString().toStdString() : "";
    }
};

TEST(SqlText, IsReadInTheProgramsOwnForm) {
    EXPECT_EQ(DatabaseFileOf("DRIVER={SQLite};DBQ=/a b/kvdata2.mdb;DefaultDir=/a b/;UID=admin;PWD=;"), "/a b/kvdata2.mdb");
    EXPECT_EQ(DatabaseFileOf(R"(Provider=SQLite; Data Source="/a\"b;DBQ=c\\" ;Persist Security Info=False;)"), R"(/a"b;DBQ=c\)");
    EXPECT_THROW(DatabaseFileOf("DRIVER={SQLite};UID=admin;PWD=;"), Error);
    const SelectText dates =
        ParseSelect("a = '#1/2/2026' and [b#1] = \"#\" and `#` = 'it''s #' or c > #9/5/2026 9:05:30 am# #1/2/2026#'#");
    EXPECT_EQ(dates.query, "a = '#1/2/2026' and [b#1] = \"#\" and `#` = 'it''s #' or c > ? ?'#");
    EXPECT_EQ(dates.moments, (std::vector<std::string>{"2026-09-05 09:05:30", "2026-01-02 00:00:00"}));
    for (const char* query : {"dt < #11/21/2026", "dt < #2/30/2026#", "dt < ##", "dt < #' or ''='#"})
        EXPECT_THROW(ParseSelect(query), Error) << query;
    SelectText select = ParseSelect("SELECT id,a from [R]\nwhere a='order' or b in (select c from d order by c) limit 1 ; ");
    select.OrderBy("k");
    EXPECT_EQ(select.Selecting("`ID`"),
              "SELECT `ID` FROM `R` where a='order' or b in (select c from d order by c)  ORDER BY k limit 1");
}

struct StoreFile : testing::Test {
    std::unique_ptr<Connection> Connect(const std::string& file) {
        auto opened = store.NewConnection();
        opened->SetConnectionString((std::ostringstream() << "DBQ=" << std::quoted(file)).str());
        opened->Open();
        return opened;
    }
    std::unique_ptr<Recordset> Open(const std::string& query = "SELECT * FROM Servers", CursorType cursor = CursorType::Keyset) {
        if (!connection) connection = Connect(path);
        return OpenRows(store, *connection, query, cursor);
    }
    std::string OpenError(const std::string& file) {
        return ErrorOf([&] { Connect(file); });
    }
    /// Its error in a process whose files can't grow beyond that.
    static bool HasNoRoom(std::size_t size, const std::function<void()>& work) {
        return PassesInChild([&] {
            const rlimit limit{size, size};
            std::signal(SIGXFSZ, SIG_IGN);
            setrlimit(RLIMIT_FSIZE, &limit);
            return Holds(ErrorOf(work), "cannot be read or written");
        });
    }
    void FillFailures() {
        other.Run(
            "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000) INSERT INTO Failures (ID, IDParent, dateFail, "
            "strReason) SELECT i, i % 7, '2026-11-21 08:00:00', printf('%0100d', i) FROM n");
    }

    TestDatabase database;
    QtSqlStore store{KindOfColumn, 20ms};
    const std::string path = database.Path(), copy = database.Folder() + "/copy 50%25.mdb";
    const std::string locked = "The database '" + path + "' is locked by another program.";
    AnyProgram other{path};
    std::unique_ptr<Connection> connection;
};

TEST_F(StoreFile, GivesWhatFitsNoColumnAsText) {
    database.Add({});
    other.Run("UPDATE Servers SET nTries = 'many', nTimeout = 70000, bIsMonitoring = -1, dtNextCheck = 'soon'");
    const Row strays = {{"nTries", "many"}, {"nTimeout", 70000}, {"bIsMonitoring", true}, {"dtNextCheck", "soon"}};
    for (const CursorType cursor : {CursorType::Keyset, CursorType::Static})
        for (const auto& [column, read] : strays)
            EXPECT_EQ(Open("SELECT * FROM Servers", cursor)->Fields(column).Value(), read) << column;
}

TEST_F(StoreFile, MayHaveAnyNameMayBeReplacedAndIsUntouchedWhenItIsNoDatabase) {
    for (const std::string name : {"a b;c.mdb", "50%25?x=1#y&mode=memory.mdb", "\xC3\xA4'.mdb", "file:x", "quote\"s\""}) {
        fs::copy_file(path, database.Folder() + "/" + name);
        EXPECT_EQ(OpenError(database.Folder() + "/./" + name), "");
    }
    for (int round = 0; round < 4; ++round) {
        TestDatabase replacement;
        replacement.Add({.strDesc = std::to_string(round)});
        if (round % 2 == 1) AnyProgram(replacement.Path()).Run("ALTER TABLE Servers DROP COLUMN strCMD");
        fs::copy_file(replacement.Path(), round < 2 ? copy : path, fs::copy_options::overwrite_existing);
        if (round < 2) fs::rename(copy, path);
        EXPECT_EQ(Open()->Fields("strDesc").Value(), Value(std::to_string(round)));
        EXPECT_EQ(ErrorOf([&] { Open()->Fields("strCMD").Value(); }).empty(), round % 2 == 0);
        connection->Close();
        connection.reset();
    }
    EXPECT_EQ(OpenError(path + "x"), "Could not find file '" + path + "x'.");
    for (const std::string& content : {""s, "SQLite"s, "\0\1\0\0Another DB\0"s, std::string(8192, '\0')}) {
        std::ofstream(copy) << content;
        std::ofstream(copy + "-journal") << "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7" + std::string(5000, 'j');
        EXPECT_EQ(OpenError(copy), "The file '" + copy + "' is not an SQLite 3 database. It was left untouched.");
        EXPECT_EQ(ReadAll(copy), content);
    }
}

TEST_F(StoreFile, LocksAreToldAndAnOpenRecordsetHoldsNobodyUp) {
    database.Add({});
    other.Run("BEGIN EXCLUSIVE");
    EXPECT_EQ(OpenError(path), locked);
    other.Run("COMMIT");
    const auto rs = Open();
    rs->Fields("nTimeout") = 99;
    EXPECT_EQ(other.Run("UPDATE Servers SET nTries = 4"), "");
    EXPECT_EQ(rs->Fields("nTries").Value(), Value(4)) << "a keyset reads a row when it is looked at";
    other.Run("BEGIN");
    other.Run("SELECT * FROM Servers");  // a reader holds up the end of a change
    EXPECT_EQ(ErrorOf([&] { connection->TryWriting(); }), locked);
    connection->BeginTrans();
    rs->Update();
    EXPECT_EQ(ErrorOf([&] { connection->CommitTrans(); }), locked);
    other.Run("COMMIT");
    EXPECT_EQ(other.Run("UPDATE Servers SET nTries = 5"), "") << "nothing of the transaction is left";
    const std::string before = ReadAll(path);
    connection->TryWriting();
    EXPECT_TRUE(ReadAll(path) == before);
    for (const int timeout : {20, 30}) {
        connection->BeginTrans();
        rs->Fields("nTimeout") = timeout;
        rs->Update();
        timeout == 20 ? connection->CommitTrans() : connection->Close();
    }
    EXPECT_EQ(other.Run("SELECT nTimeout FROM Servers"), "20") << "a closed connection drops what was not committed";
}

TEST_F(StoreFile, CompactedItHoldsTheSameInLessRoomAndWhoeverHasItOpenGoesOn) {
    FillFailures();
    database.Add({});
    other.Run("DELETE FROM Failures WHERE ID % 4 > 0");
    const std::string before = ReadAll(path), kept = path + ".BAK";
    const auto rs = Open();
    rs->Fields("nTries") = 9;
    std::ofstream(copy + "-journal") << "left by a program that was killed";
    fs::permissions(path, fs::perms(0640));
    store.Compact(path, copy, [&] {
        EXPECT_TRUE(ReadAll(path) == before);
        EXPECT_EQ(other.Run("INSERT INTO Failures (ID) VALUES (5000)"), "database is locked");
        fs::rename(copy, kept);
    });
    for (const std::string& file : {path, kept}) {
        EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640)) << file;
        EXPECT_LT(fs::file_size(file), before.size() / 2) << file;
        EXPECT_EQ(AnyProgram(file).Run("SELECT count(*) || ' ' || sum(ID) FROM Failures"), "500 501000");
    }
    rs->Update();
    EXPECT_EQ(other.Run("SELECT nTries FROM Servers"), "9");
}

TEST_F(StoreFile, ACompactionThatFailsLeavesEverythingAsItWas) {
    FillFailures();
    const auto compact = [&] { store.Compact(path, copy, [] { throw Error("the copy can't be kept"); }); };
    const auto refuses = [&](const std::string& why) {
        const std::string before = ReadAll(path), error = ErrorOf(compact);
        return Holds(error, why) && ReadAll(path) == before && !fs::exists(copy) && !fs::exists(copy + "-journal");
    };
    other.Run("BEGIN");
    other.Run("SELECT * FROM Failures");
    EXPECT_TRUE(refuses(locked));
    other.Run("COMMIT");
    EXPECT_TRUE(refuses("the copy can't be kept"));
    EXPECT_TRUE(HasNoRoom(fs::file_size(path) / 2, compact));
    EXPECT_TRUE(HasNoRoom(fs::file_size(path) + 4096, [&] {
        for (int id = 3000;; ++id)
            database.AddRow("Failures", {{"ID", id}, {"strReason", std::string(2000, 'x')}});
    }));
    EXPECT_EQ(other.Run("PRAGMA integrity_check"), "ok");
    const std::string whole = ReadAll(path);
    for (std::size_t page = 1; page < whole.size() / 4096; page += 9) {
        std::ofstream(path) << std::string(whole).replace(page * 4096, 8, 8, '\x55');
        EXPECT_TRUE(refuses("The database '" + path + "' is damaged: ")) << page;
    }
}

}  // namespace korvane::store_test
