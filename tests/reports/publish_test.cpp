// The walk over customers and groups: what is written where, what stops and what goes on when something is wrong, and what
// happens when events come in.
#include <algorithm>
#include <filesystem>

#include "platform/linux/linux_files.h"
#include "platform/qt/sql_store.h"
#include "reports/reports_test_base.h"
#include "store/schema.h"

namespace korvane {
namespace {

using PublishTest = ReportsTest;

struct Person : RecordingOperator {
    int customers = 0;
    void SetCustomerCount(int count) override { customers = count; }
};

std::vector<std::string> Pages(const std::vector<std::string>& paths) {
    std::vector<std::string> pages;
    for (const std::string& path : paths) {
        if (path.ends_with(".htm") && !path.ends_with("tmp.htm")) pages.push_back(path);
    }
    return pages;
}

TEST_F(PublishTest, AnEmptyDatabaseWritesNoPage) {
    EXPECT_EQ(rig.Publish(), "");
    EXPECT_TRUE(Pages(disk.Paths()).empty());
    EXPECT_TRUE(rig.person.Said("-->0 distinct customers returned."));
}

TEST_F(PublishTest, FailurePagesAreOfThoseThatFailedSinceTheLastCompletePublish) {
    AddServer(1, {{"datelastfail", now - std::chrono::days(5)}});
    AddServer(2, {{"datelastfail", now - std::chrono::days(5) - std::chrono::seconds(1)}});
    rig.Publish();
    EXPECT_TRUE(HasPage("R0/Web/failure1.htm") && !HasPage("R0/Web/failure2.htm")) << "at first of the last five days";
    const auto republished = [&](DateTime datelastfail) {
        disk.Remove(rig.root + "/R0/Web/failure1.htm");
        database.Change("Servers", 1, {{"datelastfail", datelastfail}});
        rig.Publish();
        return HasPage("R0/Web/failure1.htm");
    };
    EXPECT_FALSE(republished(now - std::chrono::seconds(1)));
    EXPECT_TRUE(republished(now));
    world.RunFor(std::chrono::minutes(1));
    store.faults.Add({.operation = StoreOperation::Open, .about = "distinct idCustomer", .description = "locked"});
    EXPECT_EQ(rig.Publish(), " Err - PublishReports: locked");
    EXPECT_TRUE(rig.person.Said("PublishReports Error:  Err - PublishReports: locked"));
    EXPECT_FALSE(rig.person.waitCursor);
    EXPECT_TRUE(republished(now)) << "a publish that failed does not count";
}

TEST_F(PublishTest, AHistoryOfMoreThanFiftyIsCutToForty) {
    // The pages of the last two groups can't be written.
    const std::pair<const char*, int> servers[] = {{"Web", 50}, {"Web", 2001}, {"O'Brien", 51}, {"a/b", 51}};
    for (int id = 1, row = 0; id <= 4; ++id) {
        AddServer(id, {{"strGroup", servers[id - 1].first}, {"datelastfail", now}});
        for (int i = 0; i < servers[id - 1].second; ++i)
            AddFailure(++row, id, {{"nFailCount", i}, {"dateFail", now - std::chrono::minutes(i)}});
    }
    EXPECT_NE(rig.Publish(), "");
    EXPECT_EQ(database.Count("Failures", "IDParent = 1"), 50);
    for (const char* id : {"2", "3", "4"})
        EXPECT_EQ(database.Count("Failures", "nFailCount < 40 and IDParent = " + std::string(id)), 40) << "the newest stay";
    EXPECT_EQ(database.Count("Failures"), 50 + 3 * 40);
    EXPECT_TRUE(Holds(Page("R0/Web/failure1.htm"), "|50|"));
    const std::string page = Page("R0/Web/failure2.htm");
    EXPECT_TRUE(Holds(page, "|2001|"));
    std::size_t at = 0;
    for (int i = 0; i < 2001 && at != std::string::npos; ++i)
        at = page.find(std::to_string(i) + " of 3", at);
    EXPECT_NE(at, std::string::npos) << "all that there were, in their order";
}

TEST_F(PublishTest, EachCustomerHasItsGroups) {
    AddServer(1, {{"idCustomer", 0}});
    AddServer(2, {{"idCustomer", 12}, {"strGroup", "Mail"}});
    AddServer(3, {{"idCustomer", 12}, {"strGroup", "mail"}, {"nAveSession", 5.0}});
    AddServer(4, {{"idCustomer", Value()}, {"strGroup", "Lost"}});
    const std::string strErr = rig.Publish();
    EXPECT_TRUE(strErr.starts_with(" Err - PublishReportsPerCust: ")) << strErr;
    EXPECT_TRUE(rig.person.Said("-->3 distinct customers returned."));
    EXPECT_TRUE(HasPage("R0/groups.htm") && HasPage("R0/Web/summary.htm"));
    // Names that differ in case alone are one group, in one folder.
    EXPECT_TRUE(Holds(Page("R12/groups.htm"), "href=Mail/summary.htm") && Holds(Page("R12/groups.htm"), "|1|"));
    EXPECT_TRUE(Holds(Page("R12/Mail/summary.htm"), "hourly3.htm"));
    EXPECT_TRUE(HasPage("R12/Mail/hourly3.htm"));
    EXPECT_EQ(Pages(disk.Paths()).size(), 6U);
}

TEST_F(PublishTest, TheCountOfCustomersIsShownWhenThereIsMoreThanOne) {
    Person person;
    Reports reports({store, world.clock, world.events, person, files, rig.status, rig.settings, rig.ids}, dir);
    std::string strErr;
    AddServer(1, {{"idCustomer", 0}});
    reports.PublishReports(true, strErr);
    EXPECT_EQ(person.customers, 0);
    AddServer(2, {{"idCustomer", 7}});
    reports.PublishReports(true, strErr);
    EXPECT_EQ(person.customers, 2);
}

TEST_F(PublishTest, NamesThatCannotBeFoldersWriteNothingOutsideAndStopNobodyElse) {
    const std::string names[] = {"..",          ".", "../../out", "a/b", "/etc", "..\\x", "O'Brien", std::string(2000, 'n'),
                                 "x' or '1'='1"};
    int id = 0;
    for (const std::string& name : names)
        AddServer(++id, {{"strGroup", name}, {"nAveSession", 5.0}});
    AddServer(50, {{"strGroup", "zebra"}});
    AddServer(51, {{"strGroup", "<b>Büro & \"Co\""}});
    LinuxFiles real;  // refuses the name of 2,000 characters
    std::filesystem::copy(KORVANE_DIST_DIR "/i", dir + "/i");
    ReportsRig onDisk(real, store, world.events, world, dir);
    const std::string strErr = onDisk.Publish();
    EXPECT_TRUE(Holds(strErr, rig.root + "/R0/../summary.htm can't be written")) << strErr;
    EXPECT_TRUE(Holds(strErr, "PublishSummaryReport: near \"Brien\": syntax error")) << strErr;
    EXPECT_EQ(Split(ReplaceAll(strErr, " PublishSummaryReport: ", "\n"), '\n').size(), 8U)
        << strErr;  // each of the names but two

    std::vector<std::string> written;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir)) {
        if (entry.path().extension() == ".htm") written.push_back(entry.path().string().substr(rig.root.size()));
    }
    std::sort(written.begin(), written.end());
    std::vector<std::string> expected = {"/R0/groups.htm", "/R0/zebra/summary.htm", "/R0/<b>Büro & \"Co\"/summary.htm"};
    for (const auto& [name, serverId] : {std::pair{"..\\x", "6"}, std::pair{"x' or '1'='1", "9"}}) {
        for (const char* page : {"/summary.htm", "/hourly", "/daily"})
            expected.push_back("/R0/" + std::string(name) + page + (page[1] == 's' ? "" : std::string(serverId) + ".htm"));
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(written, expected);
    EXPECT_EQ(database.Count("Response", "txtType = 'hour'"), 9) << "averages are kept where pages can't be";
}

TEST_F(PublishTest, LinksLeadNoPageOutOfTheReportFolder) {
    namespace fs = std::filesystem;
    for (const char* folder : {"/i", "/outside", "/elsewhere/R0/Web"})
        fs::create_directories(dir + folder);
    fs::create_symlink("elsewhere", rig.root);  // may be a link itself
    fs::create_symlink(dir + "/outside", rig.root + "/R0/Out");
    fs::create_symlink(dir + "/outside/page", rig.root + "/R0/Web/summary.htm");
    AddServer(1, {});
    AddServer(2, {{"strGroup", "Out"}});
    LinuxFiles real;
    EXPECT_EQ(ReportsRig(real, store, world.events, world, dir).Publish(),
              " PublishSummaryReport: The page " + rig.root +
                  "/R0/Out/summary.htm can't be written: a link leads out of the report folder");
    EXPECT_TRUE(fs::is_empty(dir + "/outside"));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(rig.root + "/R0/Web/summary.htm")));
}

TEST_F(PublishTest, AMissingTemplateGivesAnEmptyPage) {
    AddServer(1, {});
    disk.Remove(dir + "/summaryreporttmp.htm");
    EXPECT_EQ(rig.Publish(), "");
    EXPECT_EQ(Page("R0/Web/summary.htm"), "\r\n");
    EXPECT_TRUE(Holds(Page("R0/groups.htm"), "Summary Report for Web"));
}

TEST_F(PublishTest, WhatIsPutInForOnePlaceholderIsSearchedForTheNext) {
    AddServer(1, {{"strDesc", "[[REPORT]] [[TOTAL]] [[GROUP]] [[group]]"}});
    rig.Publish();
    EXPECT_TRUE(Holds(Page("R0/Web/summary.htm"), "<b>[[REPORT]] 1 Web [[group]]</b>"));
}

TEST_F(PublishTest, PagesThatCannotBeWrittenKeepTheirOlderFormAndAreSaid) {
    AddServer(1, {});
    AddServer(2, {{"strGroup", "Zebra"}});
    rig.Publish();
    const std::string older = Page("R0/Web/summary.htm");
    world.RunFor(std::chrono::hours(1));
    files.faults.Add({.forever = true, .about = "/Web/", .description = "No space left on device"});
    EXPECT_EQ(rig.Publish(),
              " PublishSummaryReport: The page " + rig.root + "/R0/Web/summary.htm can't be written: No space left on device");
    EXPECT_EQ(Page("R0/Web/summary.htm"), older);
    EXPECT_TRUE(Holds(Page("R0/Zebra/summary.htm"), "|11/21/2026 4:04:05 PM|"));
    files.FillDisk();
    EXPECT_TRUE(Holds(rig.Publish(), "groups.htm can't be written"));
}

TEST_F(PublishTest, ThePicturesAreFilledInAgainWhenTheirMarkIsGone) {
    AddServer(1, {});
    files.faults.Add({.operation = FilesOperation::Publish, .about = "/i/up.gif"});
    EXPECT_EQ(rig.Publish(), " PublishSummaryReport: disk I/O error");
    EXPECT_FALSE(HasPage("i/citrix.gif")) << "the mark stands for the whole set";
    EXPECT_EQ(rig.Publish(), "");
    EXPECT_EQ(disk.FileNames(rig.root + "/i"), (std::vector<std::string>{"citrix.gif", "up.gif"}));
    disk.Remove(rig.root + "/i/up.gif");
    rig.Publish();
    EXPECT_FALSE(HasPage("i/up.gif")) << "nothing is refreshed as long as the mark is there";
}

TEST_F(PublishTest, EventsComeBetweenServersAndFindTheStoreFree) {
    for (int id = 1; id <= 3; ++id)
        AddServer(id, {{"nAveSession", 5.0}, {"datelastfail", now}});
    struct Intruder : Events {
        std::function<void()> deliver;
        int calls = 0;
        void DoEvents() override {
            ++calls;
            deliver();
        }
        void WaitForEvent(std::chrono::milliseconds) override {}
        void Sleep(std::chrono::milliseconds) override {}
        std::unique_ptr<Watch> WatchReadable(int, std::function<void()>) override { return nullptr; }
    } intruder;
    ReportsRig busy(files, store, intruder, world, dir);
    intruder.deliver = [&] {
        EXPECT_EQ(busy.Publish(), "The reports are being published already.");
        QtSqlStore other(KindOfColumn, std::chrono::milliseconds(0));
        const auto connection = other.NewConnection();
        connection->SetConnectionString(database.DriverString());
        connection->Open();
        connection->BeginTrans();
        connection->CommitTrans();
    };
    EXPECT_EQ(busy.Publish(), "");
    EXPECT_EQ(intruder.calls, 1 + 1 + 3 + 1);  // the customer, the group, its servers, the page of groups
    EXPECT_FALSE(busy.person.waitCursor);
    EXPECT_TRUE(HasPage("R0/groups.htm"));
}

}  // namespace
}  // namespace korvane
