#include "store/settings.h"

#include <gtest/gtest.h>

#include "store/store_rig.h"

namespace korvane {
namespace {

struct SettingsTest : testing::Test, StoreRig {};

TEST_F(SettingsTest, DefaultsOrderAndSpelling) {
    PutSettings("");
    LoadedRun run(*this);
    EXPECT_EQ(run.services, std::vector<std::string>{"Korvane"});
    EXPECT_NO_THROW(disk.Append(dir + "/Reports/index.htm", "")) << "the report folder was made";
    EXPECT_THROW(run.Setting("NoSuchKey"), Error);
    run.settings.Save();
    EXPECT_EQ(
        SettingsText(),
        "[Settings]\nServer=mail.example.com\nSMTPUser1=\nSMTPPass1=\nSMTPPopHost1=\nSMTPUser2=\nSMTPPass2=\nSMTPPopHost2=\n"
        "ReportPath=" +
            dir +
            "/Reports\nServerBackup=\nBegin=2\nSuccessLT=20\nZone=\nServiceName=Korvane\nProxyName=\n"
            "ProxyPort=\nGlobalRetryDuration=60\nReboot=False\nRebootAny=True\nMultiNotify=True\nService=False\n"
            "bYellowAlert=True\nbRedAlert=True\nYellowAlertWav=\nRedAlertWav=\nNumURLs=0\nbMinimized=False\nbALLInDB=False\n"
            "width=\nheight=\n");
    EXPECT_EQ(run.person.StatusTexts(), std::vector<std::string>{"Settings Saved"});
    EXPECT_FALSE(run.person.waitCursor);
}

TEST_F(SettingsTest, SaveIsOneStepAndKeepsTheRest) {
    disk.Replace(SettingsFilePath(dir), "; mine\n[Settings]\nballindb=True\nMyKey=1\n\n[Foreign]\nServer=x\n");
    LoadedRun run(*this);
    EXPECT_TRUE(run.settings.AllInDB());
    files.faults.Add({.operation = FilesOperation::Replace, .nth = 2});
    run.collection.setKvSettingsColValue("SMTPPass1", "as typed = ; \"");
    run.settings.SetTotalURLs(501);
    run.settings.Save();
    EXPECT_EQ(run.file.LastWriteError(), "");
    EXPECT_TRUE(SettingsText().starts_with("; mine\n[Settings]\nballindb=True\nMyKey=1\nServer=mail.example.com\n"));
    EXPECT_TRUE(SettingsText().ends_with("\nheight=\n\n[Foreign]\nServer=x\n"));
    EXPECT_EQ(run.file.Read("Settings", "NumURLs", ""), "501");
    EXPECT_EQ(run.settings.GetTotalURLs(), 500);

    LoadedRun next(*this);
    EXPECT_EQ(next.Setting("SMTPPass1"), "as typed = ; \"");
}

TEST_F(SettingsTest, WindowSizeIsRestoredAndSaved) {
    struct {
        std::string width, height;
        int windowWidth, windowHeight;
    } cases[] = {{"", "7000", 14760, 5500}, {"9000", "7000", 9000, 7000}, {"abc", "7000", 0, 7000}, {"9000", "", 9000, 5500}};
    for (const auto& each : cases) {
        PutSettings("width=" + each.width + "\nheight=" + each.height + "\n");
        StoreRun run(files, store, dir);
        run.host.hasWindow = true;
        run.settings.ReadInGlobalSettings();
        EXPECT_EQ(run.host.width, each.windowWidth);
        EXPECT_EQ(run.host.height, each.windowHeight);
        run.settings.Save();
        EXPECT_EQ(run.file.Read("Settings", "width", ""), std::to_string(each.windowWidth));
    }
    PutSettings("width=9000\nheight=7000\n");
    LoadedRun withoutWindow(*this);
    withoutWindow.settings.Save();
    EXPECT_EQ(withoutWindow.file.Read("Settings", "width", ""), "9000");
}

TEST_F(SettingsTest, EntryCountIsTakenAsItStandsUpToItsLimit) {
    for (const auto& [text, count] :
         {std::pair{"2", 2u}, {"501", 500u}, {"abc", 0u}, {"-5", 0u}, {"99999999999999", 0u}, {"", 0u}}) {
        PutSettings("NumURLs=" + std::string(text) + "\n[Settings3]\n[Settings4x]\n[settings1]\n");
        LoadedRun run(*this);
        EXPECT_EQ(run.entries.Entries().size(), count) << text;
    }
}

TEST_F(SettingsTest, UniqueidComesFromTheOldFileAndGoesToTheNewOne) {
    StoreRun first(files, store, dir);
    first.settings.EnsureUniqueid();
    EXPECT_EQ(SettingsText(), "[Settings]\nuniqueid=711211545\n");
    EXPECT_FALSE(first.settings.SettingsFileExistedAtStart());

    disk.Replace("/kvurlwatch.ini", "[settings]\nUniqueId=123\n");
    StoreRun second(files, store, dir);
    second.world.MoveClock(std::chrono::hours(1));
    second.settings.EnsureUniqueid();
    second.settings.ReadInGlobalSettings();
    EXPECT_EQ(SettingsText(), "[Settings]\nuniqueid=711211545\n");
    EXPECT_EQ(second.Setting("ServiceName"), "123Korvane");
    EXPECT_TRUE(second.settings.SettingsFileExistedAtStart());
}

TEST_F(SettingsTest, UnreadableFileIsNotReplacedByDefaultsWhenItCanBeReadAgain) {
    PutSettings("Server=mail.mine.example\n");
    files.faults.Add({.operation = FilesOperation::Read, .forever = true, .description = "Permission denied"});
    LoadedRun run(*this);
    EXPECT_EQ(run.Setting("Server"), "mail.example.com");
    files.faults.Heal();
    run.settings.Save();
    EXPECT_EQ(SettingsText(), "[Settings]\nServer=mail.mine.example\n");
    EXPECT_TRUE(run.person.SaidPart("Settings not saved: "));
}

}  // namespace
}  // namespace korvane
