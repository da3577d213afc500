// The home of the program: its settings file by its rules and through starts and ends of the whole program, entries of an older
// version, the counter of ids, the log, and what keeps the database usable.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "store/ini_file.h"
#include "support/world.h"

namespace korvane::store_test {

namespace fs = std::filesystem;

const std::string kSettingsFile = "/kvurlwatchn.ini";

struct SettingsFile : testing::Test {
    World world{{.settings = std::nullopt}};
    IniFile& file = world.run.TheDesk().settingsFile;
    const std::string path = file.Path();
};

TEST_F(SettingsFile, ReadsByTheRulesAndWritesNothingButTheValue) {
    const std::string binary("[Settings]\nKey=x\0\n", 18), bom = "\xEF\xBB\xBF;\xE9\r\n [ SETTINGS ] x\r\n\tkEY = ";
    const std::string cases[][3] = {
        {"", "default", "[Settings]\nKey=new\n"},
        {bom + "a b \t\r\nB", "a b", bom + "new\r\nB"},
        {"[Settings]\n;Key=a\n=b\nKey=c=d;\xE9", "c=d;\xC3\xA9", "[Settings]\n;Key=a\n=b\nKey=new"},
        {"[Settings]\nKey=a\nkey=b\n[settings]\nKey=c\n", "a", "[Settings]\nKey=new\nkey=b\n[settings]\nKey=c\n"},
        {"Key=a\n[Settings7]\nKey=a\n[Settings\n", "default", "Key=a\n[Settings7]\nKey=a\n[Settings\n[Settings]\nKey=new\n"},
        {"[Settings]\r\nKey\r\n\r\n  \r\n[B]\r\nKey=x", "default", "[Settings]\r\nKey\r\nKey=new\r\n\r\n  \r\n[B]\r\nKey=x"},
        {"[Settings]\nKey= new \t\n", "new", "[Settings]\nKey= new \t\n"},
        {binary, "default", binary}};
    for (const auto& [before, value, after] : cases) {
        world.disk.Replace(path, before);
        EXPECT_EQ(file.Read("Settings", "Key", "default"), value) << before;
        file.Write("Settings", "Key", "new");
        EXPECT_EQ(ReadAll(path), after);
    }
    EXPECT_EQ(file.LastWriteError(), path + " is no text file.");
}

TEST_F(SettingsFile, FollowsAModelThroughFaultsBatchesAndOtherWriters) {
    const std::string remarks = "\xEF\xBB\xBF; mine\r\n[Foreign]\r\nKey=caf\xE9\r\n[Settings]\r\n";
    const std::string most = ReplaceAll(std::string(250, 'u'), "u", "\xC3\xBC");
    const std::string names[][2] = {{"Settings", "Key"}, {"SETTINGS", "kEY"}, {"KeyGen", "LASTID"}, {"Other", "Key"}};
    const std::string values[][2] = {{"", ""}, {"41", "41"}, {"42", "42"}, {" a\r\nb\nc\rd=; ", "a b c d=;"}, {most + "x", most}};
    world.disk.Replace(path, remarks);
    fs::permissions(path, fs::perms(0640));
    std::mt19937 random(1);
    std::map<std::string, std::string, LessNoCase> model;
    for (int step = 0; step < 2000; ++step) {
        // Read, Replace or Overwrite, now or from now on.
        if (random() % 4 == 0) world.files.faults.Add({FilesOperation(1 + random() % 3), 1, random() % 2 == 0});
        auto written = model;
        for (const IniFile::Batch batch(file); random() % 3 > 0;) {
            const auto& [section, key] = names[random() % 3];
            const auto& [value, asRead] = values[random() % 5];
            file.Write(section, key, value);
            written[section + key] = asRead;
            if (random() % 4 > 0) continue;
            IniDocument others(ReadAll(path));
            others.Set("Other", "Key", model["OtherKey"] = written["OtherKey"] = std::to_string(step));
            world.disk.Replace(path, others.Text());
        }
        world.files.faults.Heal();
        if (file.LastWriteError().empty()) model = written;
        for (const auto& [section, key] : names)
            ASSERT_EQ(file.Read(section, key, "default"), Or(model[section + key], "default")) << step << section;
    }
    EXPECT_TRUE(ReadAll(path).starts_with(remarks));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
}

TEST(Settings, EveryKeyHasItsDefaultAndItsPlaceAndComesBack) {
    const TemporaryFolder folder;
    const std::string home = folder.Path() + "/a;b \"c\"";
    fs::create_directory(home);
    const std::string defaults = ReplaceAll(
        "Server=mail.example.com\nSMTPUser1=\nSMTPPass1=\nSMTPPopHost1=\nSMTPUser2=\nSMTPPass2=\nSMTPPopHost2=\nReportPath=~/"
        "Reports\n"
        "ServerBackup=\nBegin=2\nSuccessLT=20\nZone=\nServiceName=Korvane\nProxyName=\nProxyPort=\nGlobalRetryDuration=60\n"
        "Reboot=False\nRebootAny=True\nMultiNotify=True\nService=False\nbYellowAlert=True\nbRedAlert=True\nYellowAlertWav=\n"
        "RedAlertWav=\nNumURLs=0\nbMinimized=False\nbALLInDB=True\nwidth=\nheight=\n",
        "~", home);
    std::string changed = "[Settings]\n";
    for (const std::string& line : Split(TrimAll(defaults), '\n')) {
        const std::string key = line.substr(0, line.find('=') + 1);
        changed += (Holds("ReportPath= NumURLs= bALLInDB=", key) ? line : key + "x; \"=") + "\n";
    }
    for (const std::string start : {"new", "again", "unreadable"}) {
        World world({.home = home});
        if (start == "unreadable") world.files.faults.Add({.forever = true, .about = kSettingsFile});
        world.Start();
        EXPECT_EQ(world.person.Said("New User. Initialize Database..."), start == "new");
        EXPECT_TRUE(world.started == Run::Started::Running && !world.Logged("# the database")) << "no column is missing";
        world.files.faults.Heal();
        if (start == "again") world.disk.Remove(world.PathOf(kSettingsFile));
        world.files.faults.Add({.operation = FilesOperation::Replace, .nth = 2});  // a save is one step
        world.run.mnuExit_Click();
        EXPECT_EQ(world.Text(kSettingsFile), start == "new" ? "[Settings]\nuniqueid=711211500\n" + defaults : changed) << start;
        if (start == "new") world.Write(kSettingsFile, changed);
    }
}

/// The columns of rows, each with a "|" after it.
std::string Columns(TestDatabase& home, const std::string& names, const std::string& rows) {
    std::string texts;
    for (const Row& row : home.Query("SELECT * FROM " + rows)) {
        for (const std::string& name : Split(names, ' '))
            texts += row.at(name).Text() + "|";
    }
    return texts;
}

TEST(OldEntries, BecomeRowsWithTheirRulesOrAreLogged) {
    const std::string cases[][2] = {
        {"URL=http://a.example/http://b", "a.example/b|HTTP|80||"},
        {"URL=HTTPS://a.example", "HTTPS://a.example|HTTPS|443||"},
        {"URL=a.example\nType=HTTP\nServPort=443", "a.example|HTTP|80||"},
        {"URL=https://a.example\nType=HTTP\nServPort=8443", "a.example|HTTPS|8443||"},
        {"Type=FTP", "www.example.com|FTP|80|you@example.com|"},  // a hole becomes a sample entry
        {"URL=z\nPRETTY=shop\nGROUP=web\nCMD=c1\nCMDUP=c2\nEmail=a@x\nEmail2=b@x\nEmailFrom=c@x\nMustHaveText=Hi\nEmailText=s\n"
         "EmailTextBody=b\nIsMonitoring=0\nbSendUpNotify=False\nbSendBody=True\nDownTime1=23:30\nDownDuration1=45\nUserName=u\n"
         "Timeout=20\nServRequest=GET\nPassWord=secret\nnListAttempts=5",
         "z|HTTP|80|a@x|"},
        {"URL=b\nnListAttempts=60", "Overflow"},
        {"URL=b\nTimeout=32768", "Overflow"},
        {"URL=b\nIsMonitoring=perhaps", "Type mismatch"},
    };
    std::string settings = "[Settings]\nGlobalRetryDuration=600\nNumURLs=9", names = "nIntervalSeconds dtNextCheck";
    for (std::string id = "1"; const auto& [keys, expected] : cases) {
        settings += "\n[Settings" + id + "]\n" + keys + "\nTries=3\nID=" + id;
        settings += "\n[Commands" + id + "]\nSCAN1=one\nCMD1=c\nCMD2=no\nSCAN9=9";
        ++id[0];
    }
    TestDatabase home;
    LinuxFiles().Replace(home.Folder() + kSettingsFile, settings);
    home.Add({.id = 2, .strDownTime1 = "22:00", .nSuccess = 17, .dtNextCheck = DateTime::Of(2027, 1, 1, 8)});
    for (int row = 0; row < 9; ++row)
        home.AddRow("ResponseFailText", {{"id", row}, {"idParent", std::min(row, 3)}, {"strFailText", "old"}});
    // The store refuses entry 2 for the whole of the first start, and in the first of the two passes of the second one.
    for (const bool forever : {true, false}) {
        World world({.home = home.Folder()});
        world.store.faults.Add({.operation = StoreOperation::Update, .nth = 4, .forever = forever, .description = "full"});
        world.Start();
        EXPECT_EQ(world.run.TheDesk().settings.AllInDB(), !forever);
    }
    home.Change("Servers", 1, {{"strDesc", "edited"}});
    World world({.home = home.Folder()});
    world.Start();
    EXPECT_EQ(Columns(home, "strDesc", "Servers where id = 1"), "edited|") << "once only, and the sections stay:";
    EXPECT_TRUE(Holds(world.Text(kSettingsFile), "\nIsMonitoring=perhaps\n"));
    for (std::string id = "1"; const auto& [keys, expected] : cases) {
        const std::string row = Columns(home, "strAddress_IP strType strPort strEmailList1", "Servers where id = " + id) +
                                Columns(home, "strFailText strFailCommand", "ResponseFailText where idParent = " + id);
        EXPECT_EQ(row, Holds(expected, "|") ? expected + "one|c|9||" : "") << keys;
        EXPECT_EQ(world.Logged("# Save: entry " + id + " (, b) was not stored: " + expected), row.empty());
        ++id[0];
    }
    for (const ServerEntryKey& key : ServerEntryKeys())
        names += " " + std::string(key.column);
    EXPECT_EQ(Columns(home, names, "Servers where id = 6"),
              "3000|11/21/2026 3:00:00 "
              "PM|z|6|shop|web|c1|c2|a@x|b@x|c@x|Hi|s|b|3|False|False|True|23:30||45|0|u|HTTP|80|20|GET|secret|5|");
    EXPECT_EQ(Columns(home, "nSuccess strDownTime1 dtNextCheck", "Servers where id = 2"), "17|22:00|1/1/2027 8:00:00 AM|");
    EXPECT_EQ(home.Count("ResponseFailText", "idParent = 0"), 1) << "rules of others stay";
}

TEST(Ids, CountOnTheDiskAndStayApartWithoutOne) {
    World world;
    const Desk desk = world.run.TheDesk();
    const auto newIdAt = [&](DateTime now, const char* last) {
        world.world.MoveClock(now - desk.clock.Now());
        desk.settingsFile.Write("KEYGEN", "LASTID", last);
        return ServerIds(desk.settingsFile, desk.clock).NewServerID();
    };
    EXPECT_EQ(newIdAt(DateTime::Of(2029, 12, 31, 23, 59, 59), "9"), "123123595910") << "no leading zero, as a number has none";
    EXPECT_EQ(newIdAt(DateTime::Of(2028, 12, 31, 23, 59, 59), "99999998"), "9123123595999999999");
    for (const char* damaged : {"abc", "-7", "1.5", "12345678901", "9223372036854775807"})
        EXPECT_EQ(newIdAt(DateTime::Of(2026, 11, 21, 15, 4, 5), damaged), "7112115452") << damaged;
    desk.settingsFile.Write("keygen", "lastid", "41");
    world.files.FillDisk();
    EXPECT_TRUE(desk.ids.NewServerID().ends_with("42") && Holds(world.Text(kSettingsFile), "LASTID=42")) << "takes no room";
    world.files.faults.Add({.forever = true});
    EXPECT_NE(desk.ids.NewServerID(), desk.ids.NewServerID());
}

TEST(LogFile, ByteForByte) {
    World world({.start = DateTime::Of(2026, 3, 9, 23, 59, 59)});
    const Desk desk = world.run.TheDesk();
    for (const char* text : {"  one  ", "a\r\nb\nc", "\x1B\xC2\x9B\x7F\rb\n\tc", "\tmore\n\tyet", "   ", " \r\n\t"})
        desk.log.Info(text);
    desk.log.WriteLog(6, "i", "above the level");
    desk.status.setStatusMSG("a\r\nb\nc\x07");
    world.files.FillDisk();
    desk.log.Info("lost");
    world.files.faults.Heal();
    world.RunFor(std::chrono::seconds(1));
    desk.log.WriteLog(4, "#", "tomorrow");
    EXPECT_EQ(world.Text("Logs/kvmonlog 2026 03-09.txt"),
              "3/9/2026 11:59:59 PM 1.0.0 i\tone\n3/9/2026 11:59:59 PM 1.0.0 i\ta\n\t\t\t\tb\n\t\t\t\tc\n"
              "3/9/2026 11:59:59 PM 1.0.0 i\t    b\n\t\t\t\t\tc\n\t\t\t\tmore\n\t\t\t\t\tyet\n");
    EXPECT_EQ(world.Text("Logs/kvmonlog 2026 03-10.txt"), "3/10/2026 12:00:00 AM 1.0.0 #\ttomorrow\n");
    EXPECT_EQ(world.person.status[0].time + " " + world.person.status[0].text, "11:59:59 PM a : b : c ");
}

struct MaintenanceTest : testing::Test {
    // Entries 1 to 3 with two rows each in the other tables; 3 is not monitored.
    MaintenanceTest() {
        world.Start();
        for (int row = 0; row < 6; ++row) {
            if (row < 3) world.rows.Add({.bIsMonitoring = row < 2, .nAveResponse = 12.5, .nSuccess = 7, .nFail = 2});
            for (const char* table : {"Failures", "Response", "ResponseFailText"})
                world.rows.AddRow(table, {{"ID", row}, {"IDParent", 1 + row / 2}});
        }
    }
    /// How many rows each table has, and the entries whose statistics began anew.
    std::string State() {
        std::string state;
        for (const char* table : {"Servers", "Failures", "Response", "ResponseFailText"})
            state += std::to_string(world.rows.Count(table));
        const std::string reset = "nFail + nSuccess + nAveResponse + nAveSession = 0 and nPercentUp = 100 and datelastreset = ";
        return state + Columns(world.rows, "ID", "Servers where " + reset + "'2026-11-21 15:00:00'");
    }
    bool Told(const std::string& text) { return world.person.SaidPart(text) && world.Logged("# " + text); }

    World world;
    Maintenance& maintenance = world.run.TheDesk().maintenance;
    const std::string file = world.PathOf("kvdata2.mdb"), backup = file + ".BAK";
};

TEST_F(MaintenanceTest, CompactionLeavesOneBackupOrTheDatabaseAsItWas) {
    for (const int row : {0, 1}) {
        maintenance.CompactAndRepair(file);
        world.Write("kvdata2.mdb.BAK-journal", "of the one before");
        world.rows.Remove("Failures", row);
    }
    EXPECT_EQ(State(), "3466");
    fs::rename(backup, file);
    EXPECT_EQ(State(), "3566") << "as it was before the second one";
    world.store.faults.Add({.operation = StoreOperation::Compact, .about = file, .description = "is locked"});
    maintenance.CompactAndRepair(file);
    EXPECT_TRUE(Told("CompactAndRepair: is locked") && State() == "3566");
}

TEST_F(MaintenanceTest, EachDeedChangesAllOfItsRowsOrNoneAndNoOthers) {
    world.store.faults.Add({.operation = StoreOperation::Delete, .about = "from ResponseFailText "});
    maintenance.DeleteServerData("1");
    world.store.faults.Add({.operation = StoreOperation::Update, .nth = 2});
    maintenance.ResetStatDataALL(true);
    EXPECT_TRUE(Told("DeleteServerData: disk I/O error") && Told("ResetStatData: disk I/O error"));
    for (const std::string id : {"1 or 1=1", "1;DROP TABLE Servers", "-2", "--1", "-1 ", " 1", "1.0", "0x1", "ID", "'1'"}) {
        maintenance.DeleteServerData(id);
        maintenance.ResetStatData(id, true);
        maintenance.ResetResponseData(id);
        EXPECT_TRUE(Told("DeleteServerData: '" + id + "' is no ID.") && Told("ResetResponseData: '" + id + "' is no ID."));
    }
    for (const char* id : {"-1", "999999999999999999999", ""})
        maintenance.DeleteServerData(id);
    EXPECT_TRUE(world.Logged("# DeleteServerData: No ID Specified!") && !world.person.Said("Reset Complete"));
    const std::pair<std::string, std::function<void()>> deeds[] = {{"3666", [] {}},
                                                                   {"36662|", [&] { maintenance.ResetStatData("2", false); }},
                                                                   {"34661|2|", [&] { maintenance.ResetStatData("1", true); }},
                                                                   {"34461|2|", [&] { maintenance.ResetResponseData("3"); }},
                                                                   {"34461|2|3|", [&] { maintenance.ResetStatDataALL(false); }},
                                                                   {"22441|2|", [&] { maintenance.DeleteServerData("3"); }},
                                                                   {"20441|2|", [&] { maintenance.ResetStatData("-1", true); }},
                                                                   {"20041|2|", [&] { maintenance.ResetResponseDataALL(); }}};
    for (const auto& [state, deed] : deeds) {
        deed();
        EXPECT_EQ(State(), state);
    }
    EXPECT_TRUE(fs::exists(world.PathOf("Reports/R0/groups.htm")) && world.person.Said("Reset Complete"));
    world.rows.Add({.id = 3, .bIsMonitoring = false});
    maintenance.ResetAllEventsToNow();
    EXPECT_EQ(Columns(world.rows, "ID", "Servers where dtNextCheck = '2026-11-21 15:00:00'"), "1|2|");
}

}  // namespace korvane::store_test
