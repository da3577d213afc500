#include "store/maintenance.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/linux/linux_files.h"
#include "store/database_files.h"
#include "support/faulty_files.h"
#include "support/faulty_store.h"
#include "support/recording_operator.h"
#include "support/test_database.h"
#include "support/virtual_world.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

const DateTime kNow = DateTime::Of(2026, 11, 21, 15, 4, 5);

class MaintenanceTest : public testing::Test {
protected:
    // Entries 1 to 3 with two rows each in the other tables; 3 is not monitored.
    void SetUp() override {
        for (int id = 1; id <= 3; ++id) {
            database.Add({.id = id, .bIsMonitoring = id != 3, .nAveResponse = 12.5, .nSuccess = 7, .nFail = 2});
            database.Change("Servers", id, {{"nPercentUp", 77.7}, {"nAveSession", 9.5}});
            for (int k = 0; k < 2; ++k) {
                for (const char* table : {"Failures", "Response", "ResponseFailText"})
                    database.AddRow(table, {{"ID", id * 10 + k}, {"IDParent", id}});
            }
        }
    }

    /// "Servers Failures Response ResponseFailText", one count each.
    std::string Counts() {
        std::string counts;
        for (const char* table : {"Servers", "Failures", "Response", "ResponseFailText"})
            counts += std::to_string(database.Count(table)) + " ";
        return counts;
    }
    std::string LogText() { return disk.Read(dir + "/Logs/kvmonlog 2026 11-21.txt").value_or(""); }
    void ExpectFailureTold(const std::string& text) {
        EXPECT_TRUE(person.SaidPart(text)) << text;
        EXPECT_TRUE(Holds(LogText(), text)) << text << LogText();
    }

    TestDatabase database;
    const std::string dir = database.Folder();
    const std::string file = database.Path();
    const std::string copy = dir + "/COMPACTkvdata2.mdb";
    VirtualWorld world{kNow};
    LinuxFiles disk;
    FaultyFiles files{disk};
    FaultyStore store{database.TheStore()};
    RecordingOperator person;
    StatusLog status{person, world.clock};
    Log log{disk, world.clock, dir, "1.0.0"};
    int published = 0;
    Maintenance maintenance{{store, world.clock, files, log, status, [this] { ++published; }}, dir};
};

TEST_F(MaintenanceTest, CompactionLeavesOneBackup) {
    database.Remove("Failures", 10);
    maintenance.CompactAndRepair(file);
    EXPECT_EQ(person.StatusTexts(), (std::vector<std::string>{"Compact and repair " + file + " to " + copy,
                                                              "Done compacting and repairing database."}));
    database.Remove("Failures", 11);
    std::ofstream(file + ".BAK-journal") << "of the first";
    maintenance.CompactAndRepair(file);
    database.Remove("Failures", 20);
    EXPECT_EQ(Counts(), "3 3 6 6 ");
    EXPECT_FALSE(fs::exists(copy));
    EXPECT_TRUE(fs::exists(file + ".BAK") && !fs::exists(file + ".BAK-journal"));
    fs::rename(file + ".BAK", file);  // as it was before the second one, and nobody wrote to it since
    EXPECT_EQ(Counts(), "3 4 6 6 ");
    EXPECT_EQ(LogText(), "");
}

TEST_F(MaintenanceTest, AFailureAtAnyStepLeavesTheDatabase) {
    const auto expectWhole = [&](const std::string& why) {
        ExpectFailureTold("CompactAndRepair: " + why);
        EXPECT_EQ(Counts(), "3 6 6 6 ");
        EXPECT_FALSE(fs::exists(copy));
    };
    store.faults.Add({.operation = StoreOperation::Compact, .about = file, .description = "is locked"});
    maintenance.CompactAndRepair(file);
    expectWhole("is locked");
    files.faults.Add({.operation = FilesOperation::Rename, .about = file + ".BAK", .description = "is a folder"});
    maintenance.CompactAndRepair(file);
    expectWhole("is a folder");
    EXPECT_FALSE(person.Said("Done compacting and repairing database."));
    fs::resize_file(file, 20000);
    maintenance.CompactAndRepair(file);
    ExpectFailureTold("is damaged: ");
    EXPECT_EQ(fs::file_size(file), 20000U);
    fs::remove(file);
    maintenance.CompactAndRepair(file);
    ExpectFailureTold("Could not find file '" + file + "'.");
}

TEST_F(MaintenanceTest, AllMonitoredEventsAreDueNow) {
    maintenance.ResetAllEventsToNow();
    EXPECT_EQ(database.Server(1).at("dtNextCheck"), Value(kNow));
    EXPECT_EQ(database.Server(2).at("dtNextCheck"), Value(kNow));
    EXPECT_EQ(database.Server(3).at("dtNextCheck"), Value(DateTime::Of(2000, 1, 1)));
}

TEST_F(MaintenanceTest, AnEntryGoesWithItsRows) {
    maintenance.DeleteServerData("2");
    EXPECT_EQ(Counts(), "2 4 4 4 ");
    EXPECT_EQ(database.Count("Response", "IDParent = 2"), 0);
    EXPECT_TRUE(person.status.empty());
    maintenance.DeleteServerData("");
    EXPECT_TRUE(Holds(LogText(), "DeleteServerData: No ID Specified!"));
    maintenance.DeleteServerData("999999999999999999999");
    store.faults.Add({.operation = StoreOperation::Delete, .about = "from Response ", .description = "disk I/O error"});
    maintenance.DeleteServerData("1");
    ExpectFailureTold("DeleteServerData: disk I/O error");
    EXPECT_EQ(Counts(), "2 4 4 4 ");  // all of it or nothing
}

TEST_F(MaintenanceTest, StatisticsBeginAnew) {
    struct Case {
        std::string id;
        bool deleteFailures;
        std::string countsAfter;
        std::vector<int> reset;
    };
    for (const Case& each : {Case{"-1", false, "3 6 6 6 ", {1, 2, 3}}, Case{"2", false, "3 6 6 6 ", {2}},
                             Case{"2", true, "3 4 6 6 ", {2}}, Case{"-1", true, "3 0 6 6 ", {1, 2, 3}}}) {
        for (int id = 1; id <= 3; ++id)
            database.Change("Servers", id, {{"nFail", 2}, {"nPercentUp", 77.7}, {"datelastreset", Value()}});
        maintenance.ResetStatData(each.id, each.deleteFailures);
        EXPECT_EQ(Counts(), each.countsAfter);
        for (int id = 1; id <= 3; ++id) {
            const Row row = database.Server(id);
            const bool reset = std::count(each.reset.begin(), each.reset.end(), id) > 0;
            EXPECT_EQ(row.at("nPercentUp"), Value(reset ? 100.0 : 77.7));
            EXPECT_EQ(row.at("nFail"), Value(reset ? 0 : 2));
            EXPECT_EQ(row.at("datelastreset"), reset ? Value(kNow) : Value());
        }
    }
    for (const char* average : {"nAveResponse", "nAveSession", "nSuccess"})
        EXPECT_EQ(database.Server(1).at(average).Double(), 0.0) << average;
    EXPECT_EQ(published, 0);
}

TEST_F(MaintenanceTest, ResponseRowsGo) {
    maintenance.ResetResponseData("3");
    EXPECT_EQ(Counts(), "3 6 4 6 ");
    maintenance.ResetResponseData("-1");
    EXPECT_EQ(Counts(), "3 6 0 6 ");
}

TEST_F(MaintenanceTest, AResetOfAllIsPublished) {
    maintenance.ResetStatDataALL(true);
    EXPECT_EQ(Counts(), "3 0 6 6 ");
    EXPECT_EQ(published, 1);
    maintenance.ResetResponseDataALL();
    EXPECT_EQ(Counts(), "3 0 0 6 ");
    EXPECT_EQ(published, 2);
    EXPECT_EQ(person.StatusTexts(), (std::vector<std::string>{"Reset Complete", "Reset Complete"}));
    store.faults.Add({.operation = StoreOperation::Update});
    maintenance.ResetStatDataALL(false);
    EXPECT_EQ(published, 2);
    ExpectFailureTold("ResetStatData: disk I/O error");
}

TEST_F(MaintenanceTest, NoTextBecomesPartOfAQuery) {
    for (const std::string id : {"1 or 1=1", "1;DROP TABLE Servers", "-2", "--1", "-1 ", " 1", "1.0", "0x1", "ID", "'1'"}) {
        maintenance.DeleteServerData(id);
        maintenance.ResetStatData(id, true);
        maintenance.ResetResponseData(id);
        ExpectFailureTold("'" + id + "' is no ID.");
    }
    maintenance.ResetStatData("", true);
    maintenance.ResetResponseData("");
    maintenance.DeleteServerData("-1");
    EXPECT_EQ(Counts(), "3 6 6 6 ");
    EXPECT_EQ(database.Server(1).at("nFail"), Value(2));
}

}  // namespace
}  // namespace korvane
