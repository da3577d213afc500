// The database file: what is no database, what changes between two uses, other programs, a full disk, sudden death.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>

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

void Write(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

class SqlStore : public testing::Test {
protected:
    /// The error of opening the database, and then the query; empty when both go well.
    static std::string ErrorOf(Store& store, const std::string& path, const std::string& query = "SELECT * FROM Servers") {
        try {
            const auto connection = store.NewConnection();
            connection->SetConnectionString("DBQ=\"" + path + "\"");
            connection->Open();
            store.NewRecordset()->Open(query, *connection, CursorType::Keyset, LockType::Optimistic);
        } catch (const Error& error) {
            return error.what();
        }
        return "";
    }

    void AddFailures(int count) {
        for (int i = 1; i <= count; ++i)
            database.AddRow("Failures", {{"ID", i}, {"strReason", "reason"}});
    }

    /// A connection that is open.
    std::unique_ptr<Connection> Connect() {
        auto connection = store.NewConnection();
        connection->SetConnectionString(database.DriverString());
        connection->Open();
        return connection;
    }

    TestDatabase database;
    QtSqlStore store{KindOfColumn, 50ms};
    const std::string path = database.Path();
};

TEST_F(SqlStore, FilesThatAreNoDatabaseStayUntouched) {
    EXPECT_EQ(ErrorOf(store, path + "x"), "Could not find file '" + path + "x'.");
    EXPECT_FALSE(fs::exists(path + "x"));
    EXPECT_EQ(ErrorOf(store, path + "/x"), "Could not find file '" + path + "/x'.");
    const std::string magic("SQLite format 3\0", 16);
    for (const std::string& content : {std::string(), std::string("SQLite"), std::string("a text\n"),
                                       std::string("\0\1\0\0Another DB\0", 15), std::string(8192, '\0')}) {
        Write(path, content);
        Write(path + "-journal", std::string("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8) + std::string(5000, 'j'));
        const std::string error = ErrorOf(store, path);
        EXPECT_TRUE(Holds(error, "'" + path + "'") && Holds(error, "left untouched")) << error;
        EXPECT_EQ(ReadAll(path), content);
    }
    fs::remove(path + "-journal");
    EXPECT_TRUE(Holds(ErrorOf(store, database.Folder()), "left untouched"));
    Write(path, magic + std::string(8176, '\7'));
    EXPECT_NE(ErrorOf(store, path), "");
    EXPECT_EQ(ErrorOf(store, ""), "The connection string names no database file.");
}

TEST_F(SqlStore, OddFileNamesAreOpened) {
    for (const char* name : {"a b;c.mdb", "50%25?x=1#y&mode=memory.mdb", "\xC3\xA4'.mdb", "file:x"}) {
        fs::copy_file(path, database.Folder() + "/" + name);
        EXPECT_EQ(ErrorOf(store, database.Folder() + "/" + name), "");
        EXPECT_EQ(ErrorOf(store, "/" + database.Folder() + "/./" + name), "");
    }
}

TEST_F(SqlStore, TheFileMayBeReplacedBetweenTwoUses) {
    const auto first = [this](const char* column) {
        const auto connection = Connect();
        const auto rs = store.NewRecordset();
        rs->Open("SELECT * FROM Servers", *connection, CursorType::Keyset, LockType::Optimistic);
        return rs->Fields(column).Value();
    };
    const auto replaceBy = [this](TestDatabase& other) {
        fs::copy_file(other.Path(), path, fs::copy_options::overwrite_existing);
    };
    database.Add({.strCMD = "start"});
    EXPECT_EQ(first("strCMD"), Value("start"));
    TestDatabase newer;
    newer.Add({.strCMD = "run"});
    TestDatabase older;
    older.Add({.strDesc = "three"});
    RunSql(older.Path(), "ALTER TABLE Servers DROP COLUMN strCMD");
    for (int round = 0; round < 2; ++round) {
        replaceBy(older);
        EXPECT_THROW(first("strCMD"), Error);
        EXPECT_EQ(first("strDesc"), Value("three"));
        replaceBy(newer);
        EXPECT_EQ(first("strDesc"), Value("entry"));
        EXPECT_EQ(first("strCMD"), Value("run"));
    }
}

TEST_F(SqlStore, AFileLockedByAnotherProcessIsToldAfterTheTimeout) {
    database.Add({});
    {
        OtherProcess other([&](const std::function<void()>& sayReady) {
            QSqlDatabase locking = QSqlDatabase::addDatabase("QSQLITE", "locking");
            locking.setDatabaseName(QString::fromStdString(path));
            if (locking.open() && QSqlQuery(locking).exec("BEGIN EXCLUSIVE")) sayReady();
            pause();
        });
        ASSERT_EQ(other.Said(), "ready");
        EXPECT_EQ(ErrorOf(store, path), "The database '" + path + "' is locked by another program.");
    }
    EXPECT_EQ(ErrorOf(store, path), "");
}

TEST_F(SqlStore, AnOpenRecordsetHoldsNobodyUp) {
    database.Add({});
    const auto connection = Connect();
    std::vector<std::unique_ptr<Recordset>> open;
    for (const CursorType cursor : {CursorType::Keyset, CursorType::Static}) {
        open.push_back(store.NewRecordset());
        open.back()->Open("SELECT * FROM Servers", *connection, cursor, LockType::Pessimistic);
        open.back()->Fields("nTries").Value();
        if (cursor == CursorType::Keyset) open.back()->Fields("nTimeout") = 99;  // pending
    }
    EXPECT_THROW(open.back()->Fields("nTimeout") = 1, Error);
    OtherProcess other([&](const std::function<void()>&) { database.Change("Servers", 1, {{"nTries", 8}}); });
    EXPECT_EQ(other.Said(), "");
    open.front()->Update();
    EXPECT_EQ(database.Server(1).at("nTries"), Value(8));
    EXPECT_EQ(database.Server(1).at("nTimeout"), Value(99));
}

TEST_F(SqlStore, AFullDiskChangesNothing) {
    AddFailures(20);
    OtherProcess other([&](const std::function<void()>&) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{fs::file_size(path) + 4096, fs::file_size(path) + 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        for (int id = 1000;; ++id)
            database.AddRow("Failures", {{"ID", id}, {"strReason", std::string(2000, 'x')}});
    });
    EXPECT_TRUE(Holds(other.Said(), "cannot be read or written"));
    const auto added = database.Count("Failures", "ID >= 1000");
    EXPECT_GT(added, 0);
    EXPECT_EQ(database.Count("Failures", "strReason = 'reason'"), 20);
    database.AddRow("Failures", {{"ID", 2000}});
}

// Many pages, so that most of the time goes into writing them.
std::size_t TextSize(int count) {
    return static_cast<std::size_t>(count % 7) * 40'000;
}

TEST_F(SqlStore, SuddenDeathLeavesWholeAccounts) {
    database.Add({.nSuccess = 0, .nFail = 0});
    std::mt19937 random(42);
    int last = 0;
    for (int round = 0; round < 20; ++round) {
        const int readyAt = last + 5 + static_cast<int>(random() % 20);
        auto counting = std::make_unique<OtherProcess>([&](const std::function<void()>& sayReady) {
            const auto connection = Connect();
            const auto rs = store.NewRecordset();
            rs->Open("SELECT * FROM Servers", *connection, CursorType::Keyset, LockType::Pessimistic);
            for (int count = last + 1;; ++count) {
                rs->Fields("nSuccess") = count;
                rs->Fields("strLastResponse") = std::string(TextSize(count), 'x');
                rs->Fields("nFail") = count;
                rs->Update();
                if (count == readyAt) sayReady();
            }
        });
        ASSERT_EQ(counting->Said(), "ready");
        counting.reset();  // in the middle of one of the next
        const Row row = database.Server(1);
        const int count = row.at("nSuccess").Int32();
        EXPECT_GE(count, readyAt);  // what Update has said to be written is there
        EXPECT_EQ(row.at("nFail"), Value(count));
        EXPECT_EQ(row.at("strLastResponse").Text().size(), TextSize(count));
        last = count;
    }
    EXPECT_EQ(RunSql(path, "PRAGMA integrity_check"), "ok");
}

TEST_F(SqlStore, ObjectsEndInAnyOrderWithoutWarnings) {
    const auto before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { ADD_FAILURE() << text.toStdString(); });
    database.Add({});
    database.Add({});
    for (int order = 0; order < 4; ++order) {
        auto owner = std::make_unique<QtSqlStore>(KindOfColumn);
        auto connection = owner->NewConnection();
        auto rs = owner->NewRecordset();
        connection->SetConnectionString(database.DriverString());
        EXPECT_THROW(rs->Open("SELECT * FROM Servers", *connection, CursorType::Keyset, LockType::Pessimistic), Error);
        connection->Open();
        EXPECT_THROW(connection->Open(), Error);
        rs->Open("SELECT * FROM Servers", *connection, CursorType::Keyset, LockType::Pessimistic);
        rs->Fields("nTries") = 1;
        if (order % 2 == 0) owner.reset();
        if (order < 2) {
            connection->Close();
            connection->Close();
            EXPECT_THROW(rs->Update(), Error);
            EXPECT_THROW(rs->Fields("nTimeout").Value(), Error);
            connection.reset();
        }
        rs->Close();
        rs->Close();
        EXPECT_THROW(rs->RecordCount(), Error);
        EXPECT_THROW(rs->AddNew(), Error);
    }
    qInstallMessageHandler(before);
    EXPECT_EQ(database.Server(1).at("nTries"), Value(3));
}

}  // namespace
}  // namespace korvane
