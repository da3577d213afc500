// The settings dialog without its window: what it is filled with, the proxy, the order of saving with what is refused, the test
// of the mail settings, and the resets.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "shell/options/options_commands.h"
#include "shell/options/options_open.h"
#include "shell/options/options_proxy.h"
#include "shell/options/options_save.h"
#include "shell/program.h"
#include "support/test_database.h"
#include "support/virtual_mail_server.h"

namespace korvane {
namespace {

using Strings = std::vector<std::string>;

class OptionsTest : public testing::Test {
protected:
    OptionsTest() {
        EXPECT_EQ(program.run.StartUp(), Run::Started::Running);
        person.Forget();
        fields = OptionsFromSettings(desk.collection);
    }

    std::string Setting(const char* key) { return desk.collection.getKvSettingsColVal(key); }
    std::string Stored(const char* key) { return desk.settingsFile.Read("Settings", key, "(none)"); }

    TestDatabase database;
    Program program{database.Folder()};
    RecordingOperator& person = program.person;
    const Desk desk = program.run.TheDesk();
    OptionsFields fields;
};

TEST_F(OptionsTest, OpensWithTheSettings) {
    desk.collection.setKvSettingsColValue("Begin", " ");
    desk.collection.setKvSettingsColValue("Service", "True");
    desk.collection.setKvSettingsColValue("Reboot", "true");  // not the word
    desk.collection.setKvSettingsColValue("SMTPPopHost2", "pop.example");
    const OptionsFields opened = OptionsFromSettings(desk.collection);
    EXPECT_EQ(opened.Begin, "1");
    EXPECT_TRUE(opened.Service && opened.RebootAny && opened.bYellowAlert && opened.bRedAlert);
    EXPECT_FALSE(opened.Reboot);
    EXPECT_EQ(opened.SMTPPopHost2, "pop.example");
    EXPECT_EQ(opened.GlobalRetryDuration, "60");
}

TEST(OptionsProxy, IsMadeOfTheDetectedText) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"host:80", "http://host", "80"},   {"proxy.example:8080", "http://proxy.examp", "8080"},
        {"host:8080", "http://ho", "8080"}, {"http=host:80", "http://host:80", "80"},
        {"ab:8080", "http://", "8080"},     {"a:8080", "(stays)", "8080"},
        {"proxy", "(stays)", "proxy"},
    };
    for (const auto& [detected, name, port] : cases) {
        const ProxyBoxes boxes = ProxyFromDetected(detected);
        EXPECT_EQ(boxes.name.value_or("(stays)"), name) << detected;
        EXPECT_EQ(boxes.port, port) << detected;
    }
    for (const auto& [name, lacks] :
         {std::pair{"", false}, {"  ", false}, {"h", false}, {"HTTP://x", false}, {"p", true}, {" h", true}})
        EXPECT_EQ(LacksProxyScheme(name), lacks) << name;
}

TEST_F(OptionsTest, SavesToTheFileTrimmedOrAsTyped) {
    fields.Begin = " 10 ";
    fields.GlobalRetryDuration = " 90";
    fields.SuccessLT = " 50";
    fields.Server = " mail.example ";
    fields.SMTPUser1 = " me ";
    fields.Zone = " -600";
    fields.Service = true;
    fields.RebootAny = false;
    desk.entries.setServerEntryChangedIndex(1);
    EXPECT_FALSE(SaveOptions(desk, fields));
    const std::pair<const char*, std::string> settings[] = {
        {"Service", "True"}, {"RebootAny", "False"},        {"Zone", " -600"},    {"SMTPUser1", "me"},
        {"Begin", "10"},     {"GlobalRetryDuration", "90"}, {"SuccessLT", " 50"}, {"Server", " mail.example "}};
    for (const auto& [key, value] : settings) {
        EXPECT_EQ(Setting(key), value) << key;
        EXPECT_EQ(Stored(key), Trim(value)) << key;
    }
    EXPECT_EQ(desk.legacyLog.Count(), 2);  // 90 seconds in minutes
    EXPECT_EQ(desk.entries.getServerEntryChangedIndex(), kNoServerEntry);
    EXPECT_TRUE(person.Said("Settings Saved"));
}

TEST_F(OptionsTest, NumbersHaveTheirRanges) {
    const std::string begin = "The valid range for the 'Monitor activity begins...' field is 0 .. 10 minutes.   You typed in ";
    const std::string interval =
        "The valid range for the 'Server Retry interval...' field is 5 .. 32400(9 hours) seconds.   You typed in ";
    const std::string slow = "The valid range for the 'Slow Response Timeout...' field is 0 .. 50 seconds.  You typed in ";
    struct Case {
        std::string OptionsFields::*field;
        const char* key;
        std::string message;
        Strings accepted;
        Strings refused;
    };
    const Case cases[] = {
        {&OptionsFields::Begin,
         "Begin",
         begin,
         {"0", "10", " 3 ", "10.4", "0.5"},
         {"11", "10.6", "", "-1", "two", " ", "99999999999"}},
        {&OptionsFields::GlobalRetryDuration,
         "GlobalRetryDuration",
         interval,
         {"5", "32400.5"},
         {"4.5", "32401", "", "x", "1e999"}},
        {&OptionsFields::SuccessLT, "SuccessLT", slow, {"0", "50.5"}, {"51", "", "nan"}},
    };
    for (const Case& c : cases) {
        for (const std::string& typed : c.accepted) {
            OptionsFields inputs = fields;
            inputs.*c.field = typed;
            EXPECT_FALSE(SaveOptions(desk, inputs)) << c.key << " " << typed;
        }
        const std::string before = Setting(c.key);
        for (const std::string& typed : c.refused) {
            OptionsFields inputs = fields;
            inputs.*c.field = typed;
            const auto refusal = SaveOptions(desk, inputs);
            ASSERT_TRUE(refusal) << c.key << " " << typed;
            EXPECT_TRUE(refusal->field == c.field) << c.key;
            EXPECT_EQ(refusal->message, c.message + typed);
            EXPECT_EQ(Setting(c.key), before);
        }
    }
}

TEST_F(OptionsTest, ARefusalLeavesWhatCameBeforeItForTheNextSave) {
    fields.Zone = "-600";
    fields.Begin = "7";
    fields.GlobalRetryDuration = "4";
    fields.Server = "other.example";
    ASSERT_TRUE(SaveOptions(desk, fields));
    EXPECT_EQ(Setting("Zone"), "-600");
    EXPECT_EQ(Setting("Begin"), "7");
    EXPECT_EQ(Setting("Server"), "mail.example.com");
    EXPECT_EQ(Stored("Zone"), "(none)");
    EXPECT_FALSE(person.Said("Settings Saved"));
    desk.settings.Save();
    EXPECT_EQ(Stored("Zone"), "-600");
}

TEST_F(OptionsTest, TheReportFolderIsMadeAndTidied) {
    std::ofstream(database.Folder() + "/file") << "in the way";
    const std::pair<std::string, std::string> cases[] = {
        {"", database.Folder() + "/reports"},
        {"  " + database.Folder() + "/a/b/ ", database.Folder() + "/a/b"},
        {database.Folder() + "/c\\", database.Folder() + "/c"},
        {database.Folder() + "/file", database.Folder() + "/file"},  // cannot be made, and is taken all the same
        {"/", "/"},
    };
    for (const auto& [typed, path] : cases) {
        fields.ReportPath = typed;
        EXPECT_FALSE(SaveOptions(desk, fields));
        EXPECT_EQ(Setting("ReportPath"), path);
        EXPECT_TRUE(std::filesystem::exists(path)) << path;
    }
}

TEST_F(OptionsTest, TheMailTestAsksForBothAddresses) {
    VirtualMailServer mails(program.net.Host("mail.example").Port(25));
    fields.Server = "mail.example";
    fields.SMTPPass2 = " word ";
    struct Case {
        std::string to;
        bool yes;
        Strings statuses;
        std::size_t mails;
    };
    const std::string look = "Please refer to the Korvane main window to see progress indications.";
    const std::string sending = "Sending email to me@example.com from korvane@example.com";
    const Case cases[] = {
        {" ", true, {look, "Email Test Cancelled. No To: email supplied."}, 0},
        {"me@example.com", false, {look, sending, "EMAIL TEST FAILED."}, 0},
        {"me@example.com", true, {look, sending, "Email Test Concluded."}, 1},
    };
    for (const Case& c : cases) {
        person.answers = {c.yes};
        Strings prompts;
        Strings statuses;
        const AskText ask = [&](const std::string& title, const std::string& prompt, const auto& answered) {
            EXPECT_EQ(title, "Testing SMTP Servers");
            prompts.push_back(prompt);
            answered(prompts.size() == 1 ? c.to : "korvane@example.com");
        };
        int done = 0;
        TestMailSettings(
            desk, fields, ask, [&](const std::string& text) { statuses.push_back(text); }, [&] { ++done; });
        EXPECT_EQ(done, 1);
        EXPECT_EQ(prompts, (Strings{"Test emails are about to be sent to your Primary and Backup SMTP Servers.\r\n\r\nWho do you "
                                    "want these test emails sent to?",
                                    "Enter a 'from:' email address:"}));
        EXPECT_EQ(statuses, c.statuses);
        EXPECT_EQ(mails.mails.size(), c.mails);
    }
    EXPECT_TRUE(Holds(mails.mails[0].text, "[TEST MSG] Subject (Server A)")) << mails.mails[0].text;
    EXPECT_TRUE(Holds(mails.mails[0].text, "[TEST ONLY:]Test")) << mails.mails[0].text;
    EXPECT_EQ(mails.mails[0].from, "<korvane@example.com>");
    EXPECT_EQ(Setting("Server"), "mail.example");
    EXPECT_EQ(Setting("SMTPPass2"), "word");
}

TEST_F(OptionsTest, ResetsAskFirst) {
    struct Case {
        OptionsReset reset;
        bool statistics;
        bool responses;
    };
    const Case cases[] = {
        {OptionsReset::Summary, true, false}, {OptionsReset::ResponseData, false, true}, {OptionsReset::All, true, true}};
    const std::int64_t id = database.Add({.nFail = 3});
    for (const Case& c : cases) {
        for (const bool yes : {false, true}) {
            for (const char* table : {"Failures", "Response"}) {
                if (database.Count(table) == 0) database.AddRow(table, {{"id", 1}, {"idParent", id}});
            }
            database.Change("Servers", id, {{"nFail", 3}});
            person.answers = {yes};
            ResetForAll(desk, c.reset);
            EXPECT_TRUE(Holds(person.questions.back().text, "There is no way to UNDO this if you click YES."));
            EXPECT_EQ(database.Server(id).at("nFail"), Value(yes && c.statistics ? 0 : 3));
            EXPECT_EQ(database.Count("Failures"), yes && c.statistics ? 0 : 1);
            EXPECT_EQ(database.Count("Response"), yes && c.responses ? 0 : 1);
        }
    }
}

TEST(OptionsCommands, AFolderIsThePathWithoutItsFile) {
    for (const auto& [path, folder] : {std::pair{"/srv/out/*.*", "/srv/out"}, {"/x", "/"}, {"out", "out"}})
        EXPECT_EQ(FolderOfFile(path), folder);
}

}  // namespace
}  // namespace korvane
