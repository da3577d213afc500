// The global addresses: the walk over the entries, what is saved in which order, and what becomes of all entries at once.
#include "shell/options/global_email_walk.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "shell/global_email_monitors.h"
#include "shell/program.h"
#include "support/test_database.h"

namespace korvane {
namespace {

using Strings = std::vector<std::string>;

class GlobalEmailWalkTest : public testing::Test {
protected:
    GlobalEmailWalkTest() {
        EXPECT_EQ(program.run.StartUp(), Run::Started::Running);
        person.Forget();
        monitors.onLoadData = [this] { hadFileAtReload = program.files.Exists(database.Folder() + "/GlobalEmail.dat"); };
    }

    std::int64_t AddServer(const char* name, const char* list) {
        const std::int64_t id = database.Add({.strDesc = name});
        database.Change("Servers", id, {{"strEmailList1", list}, {"strEmailText", Value()}});
        return id;
    }
    std::string Shown() {
        EXPECT_EQ(walk.ReadServer(fields), "");
        return walk.Title() + " " + fields.strEmailList1 + " " + walk.Position();
    }
    std::string LastMessage() { return person.messages.empty() ? "" : person.messages.back().text; }

    TestDatabase database;
    Program program{database.Folder()};
    RecordingOperator& person = program.person;
    RecordedMonitors monitors;
    GlobalEmailFields fields;
    GlobalEmailWalk walk{program.run.TheDesk(), monitors};
    bool hadFileAtReload = true;
};

TEST_F(GlobalEmailWalkTest, StaysInsideTheServers) {
    AddServer("mail", "a@x");
    AddServer("web", "b@x");
    AddServer("shop", "c@x");
    ASSERT_EQ(walk.Open(fields), "");
    EXPECT_EQ(Shown(), "mail a@x Server: 1 of 3");
    using Move = void (GlobalEmailWalk::*)();
    const std::pair<Move, const char*> moves[] = {
        {&GlobalEmailWalk::MovePrevious, "mail a@x Server: 1 of 3"}, {&GlobalEmailWalk::MoveNext, "web b@x Server: 2 of 3"},
        {&GlobalEmailWalk::MoveLast, "shop c@x Server: 3 of 3"},     {&GlobalEmailWalk::MoveNext, "shop c@x Server: 3 of 3"},
        {&GlobalEmailWalk::MovePrevious, "web b@x Server: 2 of 3"},  {&GlobalEmailWalk::MoveFirst, "mail a@x Server: 1 of 3"},
    };
    for (const auto& [move, shown] : moves) {
        (walk.*move)();
        EXPECT_EQ(Shown(), shown);
    }
}

TEST_F(GlobalEmailWalkTest, SavesTheMonitorsThenReloadsThenWritesTheFile) {
    fields.strToList1 = "a;b";
    fields.strToList2 = "c";
    fields.strFrom = "f";
    fields.strSubject = "s";
    fields.strEmailCPU = "cpu";
    fields.strEmailDisk = "disk";
    fields.strEmailMemory = "memory";
    fields.strEmailServices = "services";
    walk.SaveGlobalValues(fields);
    EXPECT_EQ(monitors.calls, (Strings{"0 cpu", "1 disk", "2 memory", "3 services", "LoadData"}));
    EXPECT_FALSE(hadFileAtReload);
    EXPECT_EQ(ReadAll(database.Folder() + "/GlobalEmail.dat"), "TO_LIST1=a;b\r\nTO_LIST2=c\r\nFROM=f\r\nSUBJECT=s\r\n");
    EXPECT_EQ(LastMessage(), "Data updated");
    GlobalEmailFields read;
    GlobalEmailWalk again(program.run.TheDesk(), monitors);
    EXPECT_EQ(again.Open(read), "");
    EXPECT_EQ(read.strToList1 + read.strToList2 + read.strFrom + read.strSubject, "a;bcfs");
    EXPECT_EQ(read.strEmailCPU + read.strEmailDisk + read.strEmailMemory + read.strEmailServices, "cpudiskmemoryservices");
}

TEST_F(GlobalEmailWalkTest, UpdatesTheCurrentServerAlone) {
    const std::int64_t first = AddServer("mail", "a@x");
    const std::int64_t second = AddServer("web", "b@x");
    walk.Open(fields);
    walk.MoveLast();
    fields.strEmailList1 = "1";
    fields.strEmailList2 = "2";
    fields.strEmailFrom = "3";
    fields.strEmailText = "4";
    EXPECT_EQ(walk.UpdateServer(fields), "");
    EXPECT_TRUE(walk.HasServer());
    const Row row = database.Server(second);
    EXPECT_EQ(row.at("strEmailList1").Text() + row.at("strEmailList2").Text() + row.at("strEmailFrom").Text() +
                  row.at("strEmailText").Text(),
              "1234");
    EXPECT_EQ(database.Server(first).at("strEmailList1"), Value("a@x"));
    database.Remove("Servers", second);
    EXPECT_EQ(walk.UpdateServer(fields), "");
    EXPECT_EQ(LastMessage(), "No server record is current");
    EXPECT_EQ(Shown(), "  Server: 2 of 2");
}

TEST_F(GlobalEmailWalkTest, UpdatesAllAfterAYes) {
    const std::int64_t ids[] = {AddServer("mail", "a@x"), AddServer("web", "b@x")};
    walk.Open(fields);
    fields.strToList1 = "ops@x";
    fields.strSubject = "XXX is down";
    Strings positions;
    const auto record = [&](const std::string& position) { positions.push_back(position); };
    for (const bool yes : {false, true}) {
        person.answers = {yes};
        walk.AskUpdateAll([&] { EXPECT_EQ(walk.UpdateAll(fields, record), ""); });
        EXPECT_EQ(person.questions.back().text,
                  "This will assign global values to the email settings of all the servers\r\nProceed?");
        EXPECT_EQ(database.Server(ids[0]).at("strEmailList1"), Value(yes ? "ops@x" : "a@x"));
        EXPECT_EQ(database.Server(ids[1]).at("strEmailText"), yes ? Value("XXX is down") : Value());
    }
    EXPECT_EQ(positions, (Strings{"Server: 1 of 2", "Server: 2 of 2"}));
    EXPECT_EQ(Shown(), "web ops@x Server: 2 of 2");
}

TEST_F(GlobalEmailWalkTest, HasNothingToDoWithoutServers) {
    walk.Open(fields);
    EXPECT_EQ(Shown(), "  Server: 0 of 0");
    EXPECT_EQ(walk.UpdateServer(fields), "");
    EXPECT_EQ(LastMessage(), "No server record is current");
    walk.MoveLast();
    EXPECT_EQ(walk.UpdateAll(fields, [](const std::string&) { FAIL(); }), "");
    EXPECT_EQ(Shown(), "  Server: 0 of 0");
}

TEST_F(GlobalEmailWalkTest, SaysWhyTheDatabaseCannotBeUsed) {
    const std::int64_t id = AddServer("mail", "a@x");
    walk.Open(fields);
    program.store.Rest();
    std::filesystem::rename(database.Path(), database.Path() + ".away");
    EXPECT_NE(walk.ReadServer(fields), "");
    EXPECT_NE(walk.UpdateServer(fields), "");
    EXPECT_NE(walk.UpdateAll(fields, [](const std::string&) { FAIL(); }), "");
    EXPECT_TRUE(person.messages.empty());
    std::filesystem::rename(database.Path() + ".away", database.Path());
    EXPECT_EQ(database.Server(id).at("strEmailList1"), Value("a@x"));
}

}  // namespace
}  // namespace korvane
