// Compaction: the copy, who is kept out meanwhile, and everything that must leave the file as it was.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>

#include "base/error.h"
#include "base/text.h"
#include "platform/qt/sql_store.h"
#include "platform/sql_other_program.h"
#include "store/schema.h"
#include "support/temporary_folder.h"
#include "support/test_database.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// A connection of another program that stays open.
struct IdleProgram : QSqlDatabase {
    explicit IdleProgram(const std::string& path) : QSqlDatabase("QSQLITE") {
        setDatabaseName(QString::fromStdString(path));
        setConnectOptions("QSQLITE_BUSY_TIMEOUT=0");
        open();
    }
    std::string ErrorOf(const QString& statement) {
        QSqlQuery query(*this);
        return query.exec(statement) ? "" : query.lastError().databaseText().toStdString();
    }
};

class SqlCompaction : public testing::Test {
protected:
    void SetUp() override {
        RunSql(path,
               "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000) INSERT INTO Failures (ID, IDParent, "
               "dateFail, strReason) SELECT i, i % 7, '2026-11-21 08:00:00', printf('%0100d', i) FROM n");
    }

    void Compact(const std::function<void()>& copied) { store.Compact(path, copy, copied); }

    /// The error of a compaction after which everything is as it was.
    std::string Refusal() {
        const std::string before = ReadAll(path);
        std::string why = "(none)";
        try {
            Compact([] { ADD_FAILURE() << "there was a copy"; });
        } catch (const Error& error) {
            why = error.what();
        }
        EXPECT_TRUE(ReadAll(path) == before) << why;
        EXPECT_FALSE(fs::exists(copy) || fs::exists(copy + "-journal")) << why;
        return why;
    }

    TestDatabase database;
    QtSqlStore store{KindOfColumn, 20ms};
    const std::string path = database.Path();
    const std::string copy = database.Folder() + "/copy 50%25.mdb";
};

TEST_F(SqlCompaction, FileAndCopyHoldTheSameInLessRoom) {
    const std::string kept = path + ".BAK";
    RunSql(path, "PRAGMA user_version=7");
    RunSql(path, "DELETE FROM Failures WHERE ID % 4 > 0");
    const std::string before = ReadAll(path);
    std::ofstream(copy) << "left by a program that was killed";
    std::ofstream(copy + "-journal") << "this too";
    chmod(path.c_str(), 0640);
    Compact([&] {
        EXPECT_TRUE(ReadAll(path) == before);
        fs::rename(copy, kept);
    });
    for (const std::string& file : {path, kept}) {
        struct stat status {};
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0640U) << file;
        EXPECT_LT(static_cast<std::size_t>(status.st_size), before.size() / 2) << file;
        EXPECT_EQ(RunSql(file, "PRAGMA integrity_check"), "ok");
        EXPECT_EQ(RunSql(file, "PRAGMA user_version"), "7");
        EXPECT_EQ(RunSql(file, "SELECT count(*) || ' ' || sum(ID) FROM Failures"), "500 501000");
    }
    EXPECT_FALSE(fs::exists(copy) || fs::exists(copy + "-journal"));
}

TEST_F(SqlCompaction, WhoeverHasTheFileOpenGoesOn) {
    IdleProgram idle(path);
    const QString insert = "INSERT INTO Failures (ID) VALUES (%1)";
    EXPECT_EQ(idle.ErrorOf(insert.arg(5000)), "");
    database.Add({});
    const auto connection = store.NewConnection();
    connection->SetConnectionString(database.DriverString());
    connection->Open();
    const auto row = store.NewRecordset();
    row->Open("SELECT * FROM Servers", *connection, CursorType::Keyset, LockType::Pessimistic);
    row->Fields("nTries") = 9;
    Compact([&] { EXPECT_EQ(idle.ErrorOf(insert.arg(5001)), "database is locked"); });
    row->Fields("nTimeout") = 8;
    row->Update();
    EXPECT_EQ(database.Server(1).at("nTries"), Value(9));
    EXPECT_EQ(idle.ErrorOf(insert.arg(5002)), "");
    EXPECT_EQ(RunSql(path, "SELECT count(*) FROM Failures WHERE ID >= 5000"), "2");
}

TEST_F(SqlCompaction, ADamagedFileIsToldAndLeftUntouched) {
    const std::string whole = ReadAll(path);
    constexpr std::size_t kPage = 4096;
    for (std::size_t page = 1; page < whole.size() / kPage; page += 9) {
        std::string damaged = whole;
        damaged.replace(page * kPage, 8, 8, '\x55');
        std::ofstream(path, std::ios::binary) << damaged;
        const std::string why = Refusal();
        EXPECT_TRUE(Holds(why, "The database '" + path + "' is damaged: ")) << page << why;
    }
}

TEST_F(SqlCompaction, AFileThatIsLockedIsLeftUntouched) {
    const auto holding = [&](const char* lock) {
        return [this, lock](const std::function<void()>& sayReady) {
            IdleProgram holder(path);
            if (holder.ErrorOf(lock).empty() && holder.ErrorOf("SELECT * FROM Failures").empty()) sayReady();
            pause();
        };
    };
    const std::string locked = "The database '" + path + "' is locked by another program.";
    {
        OtherProcess other(holding("BEGIN EXCLUSIVE"));
        ASSERT_EQ(other.Said(), "ready");
        EXPECT_EQ(Refusal(), locked);
    }
    const std::string before = ReadAll(path);
    OtherProcess reader(holding("BEGIN"));
    ASSERT_EQ(reader.Said(), "ready");
    EXPECT_THROW(Compact([] {}), Error);
    EXPECT_TRUE(ReadAll(path) == before);
    EXPECT_FALSE(fs::exists(copy));
}

TEST_F(SqlCompaction, AFullDiskLeavesNothingBehind) {
    OtherProcess other([&](const std::function<void()>&) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{fs::file_size(path) / 2, fs::file_size(path) / 2};
        setrlimit(RLIMIT_FSIZE, &limit);
        Compact([] { throw Error("there was a copy"); });
    });
    EXPECT_TRUE(Holds(other.Said(), "cannot be read or written"));
    EXPECT_FALSE(fs::exists(copy) || fs::exists(copy + "-journal"));
    EXPECT_EQ(RunSql(path, "SELECT count(*) FROM Failures"), "2000");
}

TEST_F(SqlCompaction, NothingIsCompactedWhenTheCopyCannotBeKept) {
    const std::string before = ReadAll(path);
    EXPECT_THROW(Compact([] { throw Error("cannot rename"); }), Error);
    EXPECT_FALSE(fs::exists(copy));
    fs::create_directory(copy);
    EXPECT_THROW(Compact([] { ADD_FAILURE(); }), Error);
    EXPECT_TRUE(ReadAll(path) == before);
}

}  // namespace
}  // namespace korvane
