// kill -9 while a process does nothing but write rows: what it had finished is there afterwards, and no row is half written.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "platform/qt/sql_store.h"
#include "store/schema.h"
#include "system/process.h"

namespace korvane::test {
namespace {

std::unique_ptr<Connection> Opened(Store& store, const std::string& file) {
    auto connection = store.NewConnection();
    connection->SetConnectionString("Provider=SQLite; Data Source=" + file + ";");
    connection->Open();
    return connection;
}

// Counts up in two columns of one row and says so after each Update.
[[noreturn]] void WriteForever(const std::string& file, int said) {
    QtSqlStore store(KindOfColumn);
    auto connection = Opened(store, file);
    auto row = store.NewRecordset();
    row->Open("SELECT * FROM Servers where id = 1", *connection, CursorType::Keyset, LockType::Pessimistic);
    for (;;) {
        const auto next = row->Fields("nSuccess").Value().Int64() + 1;
        row->Fields("nSuccess") = Value(next);
        row->Fields("nFail") = Value(next);
        row->Fields("strLastResponse") = Value(std::string(200, 'x'));
        row->Update();
        if (write(said, "u", 1) != 1) _exit(1);
    }
}

TEST(Kill, NineInTheMiddleOfUpdatesLosesNothing) {
    const PrivateFolder folder;
    const std::string file = folder.Path("kvdata2.mdb");
    std::filesystem::copy_file(std::string(KORVANE_DIST_DIR) + "/kvempty.mdb", file);
    QtSqlStore store(KindOfColumn);
    {
        auto connection = Opened(store, file);
        auto rows = store.NewRecordset();
        rows->Open("SELECT * FROM Servers", *connection, CursorType::Keyset, LockType::Optimistic);
        rows->AddNew();
        rows->Fields("ID") = Value(1);
        rows->Update();
    }
    std::int64_t finished = 0;
    for (int round = 1; round <= 20; ++round) {
        std::array<int, 2> said{};
        ASSERT_EQ(pipe(said.data()), 0);
        const pid_t writer = fork();
        if (writer == 0) WriteForever(file, said[1]);
        close(said[1]);
        // Somewhere in the first update, or in a later one.
        char word = 0;
        for (int updates = 0; updates < round % 4; ++updates)
            finished += read(said[0], &word, 1);
        kill(writer, SIGKILL);
        waitpid(writer, nullptr, 0);
        while (read(said[0], &word, 1) == 1)
            ++finished;
        close(said[0]);

        auto connection = Opened(store, file);
        auto row = store.NewRecordset();
        row->Open("SELECT * FROM Servers where id = 1", *connection, CursorType::Static, LockType::Optimistic);
        const auto successes = row->Fields("nSuccess").Value().Int64();
        EXPECT_EQ(row->Fields("nFail").Value().Int64(), successes);
        EXPECT_GE(successes, finished);
        EXPECT_LE(successes, finished + 1);
        finished = successes;
        EXPECT_EQ(Rows(file, "PRAGMA integrity_check"), "ok\n");
    }
}

}  // namespace
}  // namespace korvane::test
