// Instances that share a list: who is there, who has gone silent, and who mails it.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "platform/linux/linux_files.h"
#include "shell/run/instance_watch.h"
#include "store/database_files.h"
#include "support/recording_operator.h"
#include "support/shared_home.h"
#include "support/virtual_world.h"

namespace korvane::instances_test {

using namespace std::chrono_literals;

/// One instance of the program, as far as it watches the others.
struct Machine {
    Machine(VirtualWorld& ofAll, const std::string& address, std::string itsName)
        : world(ofAll), name(std::move(itsName)), home(address) {
        settings.setKvSettingsColValue("InstanceMail", "True");
        std::ofstream(home.folder.Path() + "/GlobalEmail.dat") << "TO_LIST1=a@example.com\n";
    }
    std::vector<std::string> Lines() { return Instances(home.store).Lines(*home.rows.Connected()); }
    std::size_t Told(const std::string& part) {
        return static_cast<std::size_t>(
            std::ranges::count_if(person.status, [&](const auto& line) { return Holds(line.text, part); }));
    }

    VirtualWorld& world;
    const std::string name;
    SharedHome home;
    SettingsCollection settings;
    LinuxFiles files;
    RecordingOperator person;
    StatusLog status{person, world.clock};
    Log log{files, world.clock, home.folder.Path(), "1.0.0"};
    std::vector<std::string> mails;
    InstanceWatch watch{
        {home.store, files, world.timers, world.clock, status, log, settings,
         [this](const Notification& mail) { mails.push_back(mail.strTo1 + " " + mail.strBody); }, [] { return std::int64_t{0}; }},
        {.name = name, .host = "host", .pid = 1, .home = home.folder.Path(), .version = "1.0.0"}};
};

TEST(Instances, OneThatIsSilentIsToldByAllMailedByOneAndForgottenAfterADay) {
    VirtualWorld world(DateTime::Of(2026, 11, 21, 15, 0, 0));
    const std::string address = PostgresServer::Running().NewDatabase();
    Machine one(world, address, "one"), two(world, address, "two");
    EXPECT_EQ(one.Lines().size(), 0U) << "there is no table";
    one.watch.Start();
    two.watch.Start();
    const auto conn = one.home.rows.Connected();
    const DateTime now = *conn->Now();
    Instances table(one.home.store);
    Instance gone{.name = "gone", .host = "far", .home = "/x", .started = now, .seen = now + -61s, .offset = -7s};
    gone.id = table.Add(*conn, gone);
    table.Add(*conn, {.name = "old", .host = "far", .home = "/y", .started = now, .seen = now + -25h});
    world.RunFor(30s);
    const std::vector<std::string> lines = two.Lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_TRUE(Holds(lines[0], "gone on far, since ") && Holds(lines[0], ", silent, seen 6") &&
                lines[0].ends_with(" s ago, its clock differs by 7 s"))
        << lines[0];
    EXPECT_EQ(one.Told("The instance gone on far has been silent since ") + two.Told("gone on far has been silent since "), 2U);
    std::vector<std::string> mails = one.mails;
    mails.insert(mails.end(), two.mails.begin(), two.mails.end());
    ASSERT_EQ(mails.size(), 1U);
    EXPECT_TRUE(mails[0].starts_with("a@example.com The instance gone on far has been silent since ")) << mails[0];

    gone.seen = now;
    table.Update(*conn, gone);
    one.watch.End();
    world.RunFor(30s);
    EXPECT_EQ(two.Told("The instance gone is there again."), 1U);
    EXPECT_EQ(two.Lines().size(), 2U) << "who ends is not missed";
}

}  // namespace korvane::instances_test
