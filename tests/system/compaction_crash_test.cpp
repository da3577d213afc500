// kill -9 while the database is compacted again and again and two programs write to it: afterwards there is a whole database
// under its name, with every row that somebody was told to be written.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <thread>

#include "base/error.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/qt/sql_store.h"
#include "store/maintenance.h"
#include "store/schema.h"
#include "support/recording_operator.h"
#include "system/process.h"

namespace korvane::test {
namespace {

constexpr int kKills = 100;
constexpr int kLongestMicroseconds = 200'000;  // a compaction takes a third of it on a disk

constexpr std::int64_t kFirstOfCompacting = 1'000'000;
constexpr std::int64_t kFirstOfWriting = 2'000'000;

void Pause(int microseconds) {
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

void AddRow(Store& store, const std::string& file, std::int64_t id) {
    const auto connection = store.NewConnection();
    connection->SetConnectionString("Provider=SQLite; Data Source=" + file + ";");
    connection->Open();
    const auto rows = store.NewRecordset();
    rows->Open("SELECT * FROM Failures where id < 0", *connection, CursorType::Keyset, LockType::Optimistic);
    rows->AddNew();
    rows->Fields("ID") = id;
    rows->Fields("IDParent") = id % 100;
    rows->Fields("strReason") = std::string(200, 'x');
    rows->Update();
}

// Adds rows with ascending ids and tells each that is written. One that could not be written is tried again.
[[noreturn]] void WriteForever(const std::string& file, std::int64_t id, int said, const std::function<void(Store&)>& before) {
    QtSqlStore store(KindOfColumn);
    for (;;) {
        before(store);
        try {
            AddRow(store, file, id);
        } catch (const Error&) {
            continue;
        }
        if (write(said, &id, sizeof id) != sizeof id) _exit(1);
        ++id;
    }
}

class CompactionCrash : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::copy_file(std::string(KORVANE_DIST_DIR) + "/kvempty.mdb", file);
        Rows(file,
             "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000) INSERT INTO Failures (ID, IDParent, dateFail, "
             "strReason) SELECT i, i % 100, '2026-11-21 08:00:00', printf('%0100d', i) FROM n");
    }

    [[noreturn]] void CompactForever(std::int64_t id, int said) {
        LinuxFiles files;
        SystemClock clock;
        RecordingOperator person;
        person.keepOnlyCounts = true;
        StatusLog status(person, clock);
        Log log(files, clock, folder.Path(), "1.0.0");
        WriteForever(file, id, said, [&](Store& store) {
            Pause(30'000);  // the other one would never get in
            Maintenance({store, clock, files, log, status, {}}, folder.Path()).CompactAndRepair(file);
        });
    }

    /// Whether the copy is there, or a journal of many pages, as no row leaves one behind.
    bool AmidCompaction() const {
        std::error_code none;
        const auto journal = std::filesystem::file_size(file + "-journal", none);
        return std::filesystem::exists(folder.Path("COMPACTkvdata2.mdb")) || (!none && journal > 100'000);
    }

    void ExpectWhole() const {
        EXPECT_EQ(Rows(file, "PRAGMA integrity_check"), "ok\n");
        EXPECT_EQ(Rows(file, "SELECT count(*) FROM Failures WHERE ID <= 5000"), "5000\n");
        const std::string backup = file + ".BAK";
        EXPECT_EQ(std::filesystem::exists(backup) ? Rows(backup, "PRAGMA integrity_check") : "ok\n", "ok\n");
    }

    /// The highest id at and above `first`; the ids up to it must all be there.
    std::int64_t LastId(std::int64_t first) {
        const std::string range =
            " FROM Failures WHERE ID >= " + std::to_string(first) + " AND ID < " + std::to_string(first * 2);
        const std::int64_t count = std::stoll(Rows(file, "SELECT count(*)" + range));
        const std::int64_t last = std::stoll(Rows(file, "SELECT ifnull(max(ID), " + std::to_string(first - 1) + ")" + range));
        EXPECT_EQ(last, first + count - 1);
        return last;
    }

    const PrivateFolder folder;
    const std::string file = folder.Path("kvdata2.mdb");
};

TEST_F(CompactionCrash, NineAtAnyMomentLosesNothing) {
    std::mt19937 random(11);
    int duringCompactions = 0;
    std::int64_t lastCompacting = kFirstOfCompacting - 1;
    std::int64_t lastWriting = kFirstOfWriting - 1;
    for (int kills = 0; kills < kKills; ++kills) {
        std::array<int, 2> said{};
        ASSERT_EQ(pipe(said.data()), 0);
        std::array<pid_t, 2> victims{};
        if ((victims[0] = fork()) == 0) CompactForever(lastCompacting + 1, said[1]);
        if ((victims[1] = fork()) == 0) WriteForever(file, lastWriting + 1, said[1], [](Store&) { Pause(1'000); });
        close(said[1]);
        Pause(static_cast<int>(random() % kLongestMicroseconds));  // any moment will do
        for (const pid_t victim : victims)
            kill(victim, SIGKILL);
        for (const pid_t victim : victims)
            waitpid(victim, nullptr, 0);
        duringCompactions += AmidCompaction() ? 1 : 0;
        for (std::int64_t id = 0; read(said[0], &id, sizeof id) == sizeof id;)
            (id < kFirstOfWriting ? lastCompacting : lastWriting) = id;
        close(said[0]);

        ExpectWhole();
        for (auto* told : {&lastCompacting, &lastWriting}) {
            const std::int64_t last = LastId(told == &lastCompacting ? kFirstOfCompacting : kFirstOfWriting);
            EXPECT_GE(last, *told);
            *told = last;
        }
        ASSERT_FALSE(HasFailure()) << "kill " << kills;
    }
    // The kills came where they were meant to, and both got to write.
    EXPECT_GT(duringCompactions, kKills / 10);
    EXPECT_GT(lastCompacting - kFirstOfCompacting, kKills / 10);
    EXPECT_GT(lastWriting - kFirstOfWriting, kKills / 10);
}

}  // namespace
}  // namespace korvane::test
