// A server entry from the opening of its editor to the row that saving leaves.
#include "shell/entry/entry_save.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "shell/entry/entry_row.h"
#include "shell/program.h"
#include "support/test_database.h"

namespace korvane {
namespace {

class EntrySave : public testing::Test {
protected:
    EntrySave() {
        EXPECT_EQ(program.run.StartUp(), Run::Started::Running);
        program.person.Forget();
    }

    Desk TheDesk() { return program.run.TheDesk(); }
    EntryFields Open(std::int64_t id) { return OpenEntry(TheDesk(), false, std::to_string(id)).fields; }
    bool Save(std::int64_t id, const EntryFields& fields) {
        return SaveEntry(TheDesk(), std::to_string(id), fields, [this](const std::string& name) { cleaned = name; });
    }

    TestDatabase database;
    Program program{database.Folder()};
    std::string cleaned;
};

TEST_F(EntrySave, ANewEntryIsStoredWithItsDefaultsAtOnce) {
    TheDesk().files.Replace(database.Folder() + "/GlobalEmail.dat",
                            "TO_LIST1=a@x;b@y\r\nTO_LIST2=c@z\r\nFROM=k@x\r\nSUBJECT=XXX is down\r\n");
    const OpenedEntry entry = OpenEntry(TheDesk(), true, "");
    ASSERT_TRUE(entry.found);
    const Row row = database.Server(std::stoll(entry.strID));
    const Row expected = {{"strAddress_IP", "www.example.com"},
                          {"strDesc", "Example"},
                          {"strGroup", "Group1"},
                          {"strPort", "80"},
                          {"strType", "HTTP"},
                          {"strEmailList1", "a@x;b@y"},
                          {"strEmailList2", "c@z"},
                          {"strEmailFrom", "k@x"},
                          {"strEmailText", "XXX is down"},
                          {"nTries", 3},
                          {"nListFrequency", 0},
                          {"bIsMonitoring", true},
                          {"nTimeout", 15},
                          {"strCMD", ""},
                          {"strLastResponse", ""},
                          {"strCurStatus", "UP"},
                          {"dtNextCheck", program.world.clock.Now()},
                          {"nIntervalSeconds", 60},
                          {"nAveResponse", 0.0},
                          {"nPercentUP", 100.0},
                          {"nFailScanText", 0},
                          {"nDownDuration2", 0},
                          {"bSendUpNotify", true}};
    for (const auto& [column, value] : expected)
        EXPECT_EQ(row.at(column), value) << column;
    EXPECT_EQ(entry.fields.strEmailText, "XXX is down");
    const std::string log = ReadAll(database.Folder() + "/Logs/kvmonlog 2026 11-21.txt");
    EXPECT_TRUE(Holds(log, "Just In Form_Load of frmURLData"));
    EXPECT_TRUE(Holds(log, "Adding new server In " + entry.strID + " Form_Load of frmURLData:"));
    EXPECT_TRUE(Holds(log, "Leaving Form_Load of frmURLData. Cur Err = 0"));
}

TEST_F(EntrySave, AMissingRowIsToldOfAtOpeningAndAtSaving) {
    EXPECT_FALSE(OpenEntry(TheDesk(), false, "77").found);
    EXPECT_FALSE(Save(77, {}));
    ASSERT_EQ(program.person.messages.size(), 2U);
    EXPECT_EQ(
        program.person.messages[0].text,
        "Error with Database. Current record ID='77' Recordset has zero records. We expected 1 record. \r\n\r\nTo fix, manually "
        "open c:\\program files\\korvane\\kvdata2.mdb using Microsoft Access.  Edit the ID field (to 10 or 20 or something), or "
        "delete the record there and re-Add the record through Korvane \r\n\r\nSQLSource=SELECT * from servers where id =77");
    EXPECT_EQ(program.person.messages[1].text, "DB Error: Couldn't save  SELECT * from servers where id =77");
}

TEST_F(EntrySave, DownTimesAreCheckedRowByRow) {
    const std::string badTime =
        "We're sorry, but the time you entered in the downtime field could not be understood.  You entered '";
    const std::string badMinutes =
        "We're sorry, but the downtime minutes number you entered was not a valid integer or was blank.  You entered '";
    struct Case {
        const char* time1;
        const char* minutes1;
        const char* time2;
        const char* minutes2;
        std::string begins;  // of the message; blank: passes
    };
    for (const Case& each :
         {Case{"3:00am", "30", "", "", ""}, Case{"3:00am", "", "", "", badMinutes + "' which"}, Case{"", "abc", "", "", ""},
          Case{"  ", "", "23:30", "-5", ""}, Case{"3:00am", "32767", "soon", "", badTime + "soon'"},
          Case{"3:00am", "0", "15:30", "32768", badMinutes + "32768'"}, Case{"25:00", "x", "soon", "", badTime + "25:00'"}}) {
        EntryFields fields;
        fields.strDownTime1 = each.time1;
        fields.nDownDuration1 = each.minutes1;
        fields.strDownTime2 = each.time2;
        fields.nDownDuration2 = each.minutes2;
        const auto refusal = CheckDownTimes(fields);
        ASSERT_EQ(refusal.has_value(), !each.begins.empty()) << each.begins;
        EXPECT_TRUE(!refusal || refusal->message.starts_with(each.begins)) << refusal->message;
    }
}

TEST_F(EntrySave, WhatIsStoredOfEachField) {
    const auto id =
        database.Add({.strType = "FTP", .strPort = "21", .strDownTime1 = "3:00am", .nDownDuration1 = 30, .strCurStatus = "DOWN"});
    EntryFields fields = Open(id);
    fields.strDownTime1 = "";
    fields.nDownDuration1 = "45";
    fields.nDownDuration2 = "-1";
    fields.strAddress_IP = "ftp.example";
    fields.strDesc = "  files ";
    fields.strGroup = " a b.c,d;e ";
    fields.strEmailText = "XXX and XXX";
    fields.strExpectedText = " 220 ";
    fields.strPort = "abc";
    fields.nTries = "many";
    fields.nTimeout = "7";
    fields.strUserName = " as typed ";
    fields.bNotSendBody = true;
    ASSERT_TRUE(Save(id, fields));
    const Row row = database.Server(id);
    const Row expected = {{"strDownTime1", "3:00am"},
                          {"nDownDuration1", 45},
                          {"nDownDuration2", 0},
                          {"strDesc", "files"},
                          {"strGroup", "a_bcde"},
                          {"strEmailText", "ftp.example and ftp.example"},
                          {"strExpectedText", "220"},
                          {"strPort", "80"},
                          {"nTries", 3},
                          {"nTimeout", 7},
                          {"bNotSendBody", true},
                          {"strUserName", " as typed "},
                          {"strCurStatus", "UP"},
                          {"strType", "FTP"}};
    for (const auto& [column, value] : expected)
        EXPECT_EQ(row.at(column), value) << column;
    EXPECT_TRUE(program.person.messages.empty());
    // What could not be written is in the log.
    EXPECT_TRUE(Holds(ReadAll(database.Folder() + "/Logs/kvmonlog 2026 11-21.txt"), "frmURLData:cmdOk: entry"));

    for (const auto& [port, stored] : {std::pair{"0", "80"}, {"", "80"}, {"8080", "8080"}, {"-1", "80"}}) {
        fields.strPort = port;
        fields.bIsMonitoring = false;
        database.Change("Servers", id, {{"strCurStatus", "Inactive"}});
        Save(id, fields);
        EXPECT_EQ(database.Server(id).at("strPort"), Value(stored)) << port;
    }
    EXPECT_EQ(database.Server(id).at("strCurStatus"), Value("Inactive"));
}

TEST_F(EntrySave, WarningsDoNotStopTheSave) {
    const auto id = database.Add({});
    EntryFields fields = Open(id);
    fields.strAddress_IP = "http://ping.example";
    fields.strEmailText = "XXX";
    ASSERT_TRUE(Save(id, fields));
    ASSERT_EQ(program.person.messages.size(), 2U);
    EXPECT_EQ(
        program.person.messages[0].text,
        "Sorry, please convert your host name to an IP address. http://ping.example is not a valid IP address.\r\n\r\n1) Click "
        "the windows start button\r\n2) Choose Run...\r\n3) type 'command' (runs the command prompt)\r\n4) type in ping "
        "http://ping.example\r\n5) the ping program will convert the name to an IP address.  Use that IP address here.");
    EXPECT_EQ(
        program.person.messages[1].text,
        "do not use http://, https://, or ftp:// etc on the server name field. \r\n\r\nInstead, choose the type of server you "
        "want to monitor from the dropdown.\r\n\r\nURLs are acceptable for http and https but not for any other type of "
        "server.  Only the name or IP is valid for ftp, pop3, smtp etc.");
    EXPECT_EQ(cleaned, "ping.example");
    EXPECT_EQ(database.Server(id).at("strAddress_IP"), Value("ping.example"));
    EXPECT_EQ(database.Server(id).at("strEmailText"), Value("ping.example"));
}

}  // namespace
}  // namespace korvane
