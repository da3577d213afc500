#include "store/server_entries.h"

#include <gtest/gtest.h>

#include "base/error.h"
#include "store/store_rig.h"

namespace korvane {
namespace {

struct ServerEntriesTest : testing::Test, StoreRig {
    ServerEntriesTest() : connection(store.NewConnection()) {
        connection->SetConnectionString(database.DriverString());
        connection->Open();
    }
    std::unique_ptr<Connection> connection;
};

std::string Columns(const Row& row, const std::string& names) {
    std::string texts;
    for (const std::string& name : Split(names, ' '))
        texts += row.at(name).Text() + "|";
    return texts;
}

TEST_F(ServerEntriesTest, TypeAndPortFollowTheAddress) {
    struct {
        std::string keys, mended;
    } cases[] = {
        {"URL=a.example", "a.example HTTP 80"},
        {"URL=http://a.example/http://b", "a.example/b HTTP 80"},
        {"URL=https://a.example", "a.example HTTPS 443"},
        {"URL=HTTPS://a.example", "HTTPS://a.example HTTPS 443"},
        {"URL=HTTP://a.example", "HTTP://a.example HTTP 80"},
        {"URL=a.example\nType=HTTPS\nServPort=80", "a.example HTTPS 443"},
        {"URL=a.example\nType=HTTP\nServPort=443", "a.example HTTP 80"},
        {"URL=https://a.example\nType=HTTP\nServPort=8443", "a.example HTTPS 8443"},
        {"URL=a.example\nType=FTP\nServPort=80", "a.example FTP 80"},
    };
    for (const auto& each : cases) {
        PutSettings("NumURLs=1\n[Settings1]\n" + each.keys + "\n");
        const ServerEntry entry = LoadedRun(*this).entries.Entries().at(0);
        EXPECT_EQ(entry.strAddress_IP + " " + entry.strType + " " + entry.strPort, each.mended) << each.keys;
    }
}

TEST_F(ServerEntriesTest, HoleBecomesASampleEntry) {
    PutSettings("NumURLs=2\n[Settings1]\nURL=a.example\nID=5\nTries=2\n[Settings2]\nType=FTP\n");
    const LoadedRun run(*this);
    ASSERT_EQ(run.entries.Entries().size(), 2u);
    const ServerEntry& real = run.entries.Entries()[0];
    EXPECT_EQ(real.ID + "|" + real.strCMD + "|" + real.strEmailList1 + "|" + real.strEmailText + "|" + real.nTimeout, "5||||60");
    const ServerEntry& sample = run.entries.Entries()[1];
    EXPECT_EQ(
        sample.strAddress_IP + "|" + sample.ID + "|" + sample.strCMD + "|" + sample.strEmailList1 + "|" + sample.strEmailBody,
        "www.example.com|7112115452|notepad.exe|you@example.com|Korvane: This Server could not be reached.");
    EXPECT_EQ(sample.nTries + sample.strType, "3FTP");
}

TEST_F(ServerEntriesTest, StoresEveryColumn) {
    PutSettings(
        "NumURLs=1\nGlobalRetryDuration=60\n[Settings1]\nURL=https://a.example\nID=7112115452\nPRETTY=shop\nGROUP=web\nCMD=c1\n"
        "CMDUP=c2\nEmail=a@x\nEmail2=b@x\nEmailFrom=c@x\nMustHaveText=Welcome\nEmailText=subject\nEmailTextBody=body\nTries=4\n"
        "IsMonitoring=0\nbSendUpNotify=False\nbSendBody=True\nDownTime1=23:30\nDownDuration1=45\nUserName=user\nTimeout=20\n"
        "ServRequest=GET\nPassWord=secret\nnListAttempts=5\n");
    LoadedRun run(*this);
    run.entries.SaveDBServerDATA(1, *connection);
    const Row row = database.Server(7112115452);
    EXPECT_EQ(
        Columns(row, "strAddress_IP strDesc strGroup strCMD strCMDUP strEmailList1 strEmailList2 strEmailFrom strExpectedText"),
        "a.example|shop|web|c1|c2|a@x|b@x|c@x|Welcome|");
    EXPECT_EQ(
        Columns(row, "strEmailText strEmailBody nTries bIsMonitoring bSendUpNotify bNotSendBody strDownTime1 nDownDuration1"),
        "subject|body|4|False|False|True|23:30|45|");
    EXPECT_EQ(Columns(row, "strUserName strType strPort nTimeout strRequestText strPassword nListFrequency nIntervalSeconds"),
              "user|HTTPS|443|20|GET|secret|5|300|");
    EXPECT_EQ(Columns(row, "nFail nPercentUp nAveSession nFailScanText dtNextCheck"), "0|100|0|0|11/21/2026 3:04:05 PM|");
    EXPECT_EQ(run.person.StatusTexts(), (std::vector<std::string>{"SaveDBServerDATA for 7112115452", "Saving Server shop"}));
}

TEST_F(ServerEntriesTest, ExistingRowKeepsItsCountersAndNextCheck) {
    const DateTime next = DateTime::Of(2027, 1, 1, 8, 0, 0);
    database.Add({.id = 5, .strDownTime1 = "22:00", .nDownDuration1 = 30, .nSuccess = 17, .nFail = 3, .dtNextCheck = next});
    PutSettings("NumURLs=1\n[Settings1]\nURL=a.example\nID=5\nTries=2\nDownTime1=\n");
    LoadedRun run(*this);
    run.entries.SaveDBServerDATA(1, *connection);
    EXPECT_EQ(Columns(database.Server(5), "strAddress_IP nSuccess nFail dtNextCheck strDownTime1 nDownDuration1"),
              "a.example|17|3|1/1/2027 8:00:00 AM|22:00|30|");

    database.Change("Servers", 5, {{"dtNextCheck", Value()}});
    run.entries.SaveDBServerDATA(1, *connection);
    EXPECT_EQ(database.Server(5).at("dtNextCheck"), Value(run.world.clock.Now()));
}

TEST_F(ServerEntriesTest, BadNumbersAreErrorsAndLeaveNoRow) {
    struct {
        std::string settings, keys;
        const char* error;
    } cases[] = {
        {"GlobalRetryDuration=600", "nListAttempts=60", "Overflow"},
        {"GlobalRetryDuration=abc", "", "Type mismatch"},
        {"", "Timeout=32768", "Overflow"},
        {"", "IsMonitoring=perhaps", "Type mismatch"},
        {"", "DownDuration2=long", "Type mismatch"},
    };
    for (const auto& each : cases) {
        PutSettings("NumURLs=1\n" + each.settings + "\n[Settings1]\nURL=a.example\nID=5\nTries=3\n" + each.keys + "\n");
        LoadedRun run(*this);
        try {
            run.entries.SaveDBServerDATA(1, *connection);
            FAIL() << each.settings << each.keys;
        } catch (const Error& error) {
            EXPECT_STREQ(error.what(), each.error) << each.settings << each.keys;
        }
        EXPECT_EQ(database.Count("Servers"), 0);
    }
}

TEST_F(ServerEntriesTest, RulesReuseRowsInTheirOrder) {
    PutSettings(
        "NumURLs=1\n[Settings1]\nURL=a.example\nID=5\nTries=3\n[Commands1]\nSCAN1=one\nCMD1=c1\nCMD2=no text\nSCAN9=nine\n");
    for (const int existing : {0, 1, 2, 4}) {
        for (const Row& row : database.Rows("ResponseFailText"))
            database.Remove("ResponseFailText", row.at("id").Int64());
        database.AddRow("ResponseFailText", {{"id", 900}, {"idParent", 6}, {"strFailText", "of another entry"}});
        for (int i = 0; i < existing; ++i)
            database.AddRow("ResponseFailText", {{"id", 100 + i}, {"idParent", 5}, {"strFailText", "old"}});
        LoadedRun run(*this);
        run.entries.SaveDBServerDATAFailCommands(1, *connection);
        std::vector<std::string> texts;
        for (const Row& row : database.Query("SELECT * FROM ResponseFailText WHERE idParent = 5 ORDER BY id")) {
            texts.push_back(row.at("strFailText").Text() + ">" + row.at("strFailCommand").Text());
        }
        EXPECT_EQ(texts, (std::vector<std::string>{"one>c1", "nine>"})) << existing;
        EXPECT_EQ(database.Count("ResponseFailText", "idParent = 6"), 1);
        EXPECT_TRUE(run.person.Said("one --> c1"));
    }
}

TEST_F(ServerEntriesTest, ImportGoesOnBehindABadEntryAndLosesNothing) {
    PutSettings(
        "NumURLs=3\n; mine\n[Settings1]\nURL=http://a.example\nID=1\nTries=3\n[Commands1]\nSCAN1=error\n"
        "[Settings2]\nURL=b.example\nPRETTY=bad one\nID=2\nTries=three\n[Settings3]\nURL=c.example\nID=3\nTries=3\n");
    LoadedRun run(*this);
    run.Import();
    EXPECT_EQ(database.Count("Servers", "id = 1 or id = 3"), 2);
    EXPECT_EQ(database.Count("Servers"), 2);
    EXPECT_EQ(database.Count("ResponseFailText", "idParent = 1"), 1);
    EXPECT_NE(LogText().find("#\tSave: entry 2 (bad one, b.example) was not stored: Type mismatch\n"), std::string::npos)
        << LogText();
    EXPECT_EQ(run.file.Read("Settings2", "Tries", ""), "three");
    EXPECT_EQ(run.file.Read("Settings1", "IsMonitoring", ""), "True");
    EXPECT_EQ(run.file.Read("Commands1", "SCAN1", ""), "error");
    EXPECT_EQ(run.file.Read("Settings", "bAllInDB", ""), "True");
    EXPECT_TRUE(run.person.Said("All INI data importing into Korvane Database (one time only)..."));
    EXPECT_EQ(run.person.refreshCount, 2u);

    database.Change("Servers", 1, {{"strDesc", "edited since"}});
    const std::string saved = SettingsText();
    LoadedRun next(*this);
    next.Import();
    next.settings.cmdSave();
    EXPECT_EQ(database.Server(1).at("strDesc"), Value("edited since"));
    EXPECT_EQ(SettingsText(), saved) << "the sections stay: a lost database is rebuilt from them";
}

TEST_F(ServerEntriesTest, NewUserGetsAFileAndNoEntries) {
    StoreRun run(files, store, dir);
    run.settings.EnsureUniqueid();
    run.settings.ReadInGlobalSettings();
    run.Import();
    EXPECT_EQ(run.person.StatusTexts(),
              (std::vector<std::string>{"New User. Initialize Database...", "Settings Saved", "Settings Saved"}));
    EXPECT_EQ(run.file.Read("Settings", "bALLInDB", ""), "True");
    EXPECT_EQ(database.Count("Servers"), 0);
}

TEST_F(ServerEntriesTest, AnImportThatTheStoreRefusesIsTriedAgainRulesIncluded) {
    PutSettings(
        "NumURLs=2\n[Settings1]\nURL=a.example\nID=1\nTries=3\n[Settings2]\nURL=b.example\nID=2\nTries=3\n[Commands2]\n"
        "SCAN1=error\n");
    store.faults.Add({.operation = StoreOperation::Update, .nth = 2, .forever = true, .description = "database or disk is full"});
    LoadedRun run(*this);
    run.Import();
    EXPECT_EQ(database.Count("Servers"), 1) << "the first entry is there, the second failed whole";
    EXPECT_EQ(run.file.Read("Settings", "bALLInDB", ""), "False");
    EXPECT_NE(LogText().find("database or disk is full"), std::string::npos);
    store.faults.Heal();
    store.faults.Add({.operation = StoreOperation::Update, .nth = 2});  // of the first pass, not of the second
    LoadedRun next(*this);
    next.Import();
    EXPECT_EQ(database.Server(2).at("strAddress_IP"), Value("b.example"));
    EXPECT_EQ(database.Count("ResponseFailText"), 1);
    EXPECT_EQ(next.file.Read("Settings", "bALLInDB", ""), "True");
}

}  // namespace
}  // namespace korvane
