// The operator's commands on the reports, with the room of reports on a real database and a browser that writes down what it is
// to open.
#include "shell/run/report_commands.h"

#include "reports/reports_test_base.h"
#include "support/recording_processes.h"

namespace korvane {
namespace {

struct Desk : RecordingOperator {
    int cleared = 0;
    void ClearStatus() override {
        ++cleared;
        status.clear();
    }
};

class ReportCommandsTest : public ReportsTest {
protected:
    ReportCommandsTest() {
        rig.settings.setKvSettingsColValue("ReportPath", rig.root);
        disk.Replace(dir + "/kvdata2.mdb", "looked for, and opened on the disk");
    }

    Desk desk;
    StatusLog status{desk, world.clock};
    Reports reports{{store, world.clock, world.events, desk, files, status, rig.settings, rig.ids}, dir};
    RecordingProcesses processes;
    ReportCommands commands{{reports, store, files, desk, processes, status}, dir};
};

TEST_F(ReportCommandsTest, ShowAPageAndPublishOnlyWhereItIsMissing) {
    AddServer(1, {{"nAveSession", 5.0}});
    commands.DisplayReport("0", "WEB");  // the folder is spelt as the entry is
    EXPECT_TRUE(HasPage("R0/Web/summary.htm"));
    EXPECT_FALSE(desk.SaidPart("Publishing Group Report")) << "quietly";
    disk.Replace(rig.root + "/R0/groups.htm", "as it was");
    commands.DisplayReport("0", "");
    EXPECT_EQ(Page("R0/groups.htm"), "as it was");
    EXPECT_EQ(processes.opened, (std::vector<std::string>{rig.root + "/R0/Web/summary.htm", rig.root + "/R0/groups.htm"}));
}

TEST_F(ReportCommandsTest, TellAPersonWithoutABrowser) {
    processes.hasBrowser = false;
    commands.DisplayReport("0", "");
    EXPECT_TRUE(processes.opened.empty() && desk.status.empty());
    ASSERT_EQ(desk.messages.size(), 1U);
    EXPECT_EQ(desk.messages[0].text,
              "We're sorry, but Korvane can't open up your browser to display the report because you have not chosen a default "
              "browser.");
    processes.hasBrowser = true;
    processes.browserStarts = false;
    commands.DisplayReport("0", "");
    EXPECT_EQ(desk.messages.at(1), (RecordingOperator::Message{"URL Failed", "Web Page not Opened"}));
}

TEST_F(ReportCommandsTest, TheCommandPublishesQuietlyIfTheDatabaseOpens) {
    AddServer(1, {{"idCustomer", 3}});
    status.setStatusMSG("older");
    commands.cmdReports_Click();
    EXPECT_EQ(desk.cleared, 1);
    EXPECT_FALSE(desk.Said("older") || desk.SaidPart("Publishing Group Report"));
    EXPECT_TRUE(HasPage("R3/groups.htm"));
    EXPECT_EQ(processes.opened, std::vector<std::string>{rig.root + "/R0/groups.htm"}) << "always of customer 0";

    store.faults.Add({.operation = StoreOperation::Connect, .description = "busy"});
    files.faults.Add({.operation = FilesOperation::Publish, .about = "/R3/groups.htm", .description = "full"});
    commands.cmdReports_Click();
    EXPECT_TRUE(desk.SaidPart("Publishing Group Report"));
    ASSERT_EQ(desk.messages.size(), 1U);
    EXPECT_TRUE(desk.messages[0].text.starts_with("Reporting Error:  Err - PublishReportsPerCust: ")) << desk.messages[0].text;
    EXPECT_TRUE(desk.Said(desk.messages[0].text));
}

}  // namespace
}  // namespace korvane
