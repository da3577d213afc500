// The settings files of the resource monitors: what is written, and what is read back from contents of every kind.
#include <gtest/gtest.h>

#include "resources/cpu_settings.h"
#include "resources/disk_settings.h"
#include "resources/memory_settings.h"
#include "resources/service_settings.h"
#include "support/faulty_files.h"
#include "support/memory_files.h"

namespace korvane {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

const std::string kDir = "/home/korvane";

class AlertSettingsTest : public testing::Test {
protected:
    AlertSettingsTest() { disk.CreateFolder(kDir); }
    std::string Text(const std::string& name) const { return disk.Text(kDir + "/" + name); }

    Texts ReadCpu(const std::string& contents) {
        disk.Replace(kDir + "/CPUMon.dat", contents);
        clsCPUMon cpu(disk, kDir);
        cpu.OpenFile();
        return {cpu.getAlert(), cpu.getEmail(), cpu.getDisable(), cpu.getDuration()};
    }
    /// The list is last, joined by "|".
    Texts ReadServices(const std::string& contents) {
        disk.Replace(kDir + "/SvcMon.dat", contents);
        clsSvcMon services(disk, kDir);
        services.OpenFile();
        Texts texts = {services.getEmail(), services.getDisable(), services.getRestart(), ""};
        for (const std::string& name : *services.getSvcList())
            texts.back() += name + "|";
        return texts;
    }

    MemoryFiles disk;
    FaultyFiles files{disk};
};

TEST_F(AlertSettingsTest, ReadsLineByLine) {
    const std::pair<std::string, Texts> cases[] = {
        {"ALERT_AT=90\r\nEMAIL=me@example.com\r\nDISABLE=1\r\nDURATION=5\r\n", {"90", "me@example.com", "1", "5"}},
        {"DURATION=5\nDISABLE=0\nEMAIL=me\nALERT_AT=90", {"90", "me", "0", "5"}},
        {"ALERT_AT=90\rEMAIL=me\r\rDISABLE=1", {"90", "me", "1", ""}},
        {"ALERT_AT=95\r\nEMAIL=you@exa", {"95", "you@exa", "", ""}},  // half a file
        {"ALERT_AT=many\r\nDURATION=-1e9\r\nDISABLE=yes\r\n", {"many", "", "yes", "-1e9"}},
        {"xEMAIL=value\r\n", {"", "value", "", ""}},
        {"x=y EMAIL=z\r\n", {"", "y EMAIL=z", "", ""}},
        {"EMAIL=ALERT_AT=5\r\n", {"ALERT_AT=5", "", "", ""}},
        {"EMAIL=old\r\nEMAIL=new\r\n", {"", "new", "", ""}},
        {"email=no\r\nSVC=no\r\nnothing\r\n=\r\n\r\n", {"", "", "", ""}},
        {"EMAIL= \"a@example.com\", b@example.com \r\n", {"", " \"a@example.com\", b@example.com ", "", ""}},
        {"\"ALERT_AT=90\r\nEMAIL=me\"\r\n", {"90", "me\"", "", ""}},
        {"ALERT_AT=9\0000\r\n\0EMAIL=\0\r\n"s, {"9\0000"s, "\0"s, "", ""}},
        {"EMAIL=caf\xE9\r\n", {"", "caf\xC3\xA9", "", ""}},
    };
    for (const auto& [contents, texts] : cases)
        EXPECT_EQ(ReadCpu(contents), texts) << contents;
}

TEST_F(AlertSettingsTest, TheServiceMonitorHasALineForEachService) {
    const std::pair<std::string, Texts> cases[] = {
        {"EMAIL=me\r\nDISABLE=0\r\nRESTART=1\r\nSVC=ssh.service\r\nSVC=cron.service\r\n",
         {"me", "0", "1", "ssh.service|cron.service|"}},
        {"SVC=b\nmySVC=a\nSVC=b\nSVC=\nSVC", {"", "", "", "b|a|b||"}},
        {"SVC=EMAIL=x\r\nALERT_AT=5\r\n", {"EMAIL=x", "", "", ""}},
        {"SVC=a,\"b\"\r\nSVC=c=d", {"", "", "", "a,\"b\"|c=d|"}},
    };
    for (const auto& [contents, texts] : cases)
        EXPECT_EQ(ReadServices(contents), texts) << contents;
}

TEST_F(AlertSettingsTest, WritesTheKeysInOrderAndReplacesTheFile) {
    disk.Replace(kDir + "/CPUMon.dat", "EMAIL=before\r\nmore\r\n");
    clsCPUMon cpu(disk, kDir);
    cpu.setDuration("10");
    cpu.setDisable("0");
    cpu.setEmail("me\r\nALERT_AT=slipped in");
    cpu.setAlert("5");
    cpu.UpdateData();
    EXPECT_EQ(Text("CPUMon.dat"), "ALERT_AT=5\r\nEMAIL=me ALERT_AT=slipped in\r\nDISABLE=0\r\nDURATION=10\r\n");

    clsMemoryMon memory(disk, kDir);
    memory.setAlert("100");
    memory.UpdateData();
    EXPECT_EQ(Text("MemoryMon.dat"), "ALERT_AT=100\r\nEMAIL=\r\nDISABLE=\r\n");

    clsDiskMon space(disk, kDir);
    space.setEmail("a=b,\"c\"");
    space.setDisable("1");
    space.UpdateData();
    EXPECT_EQ(Text("DiskMon.dat"), "ALERT_AT=\r\nEMAIL=a=b,\"c\"\r\nDISABLE=1\r\n");
    clsDiskMon again(disk, kDir);
    again.OpenFile();
    EXPECT_EQ(again.getEmail(), "a=b,\"c\"");
    EXPECT_EQ(again.getDisable(), "1");
}

TEST_F(AlertSettingsTest, AFileThatIsNotThereOrCannotBeUsedChangesNothing) {
    clsSvcMon services(files, kDir);
    services.OpenFile();
    EXPECT_EQ(services.getDisable(), "");
    services.setEmail("me");
    disk.Replace(kDir + "/SvcMon.dat", "EMAIL=you\r\nSVC=a\r\n");
    files.faults.Add({.forever = true});
    services.OpenFile();
    services.UpdateData();
    EXPECT_EQ(services.getEmail(), "me");
    EXPECT_EQ(*services.getSvcList(), Texts{});
    EXPECT_EQ(Text("SvcMon.dat"), "EMAIL=you\r\nSVC=a\r\n");
}

}  // namespace
}  // namespace korvane
