// Processors, memory and disks: files of several kinds of machine as their kernels wrote them, and the machine that this runs on.
#include <gtest/gtest.h>
#include <unistd.h>

#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>

#include "platform/linux/disk_mounts.h"
#include "platform/linux/fixed_disks.h"
#include "platform/linux/linux_system_info.h"
#include "platform/linux/proc_figures.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

TEST(ProcFiguresTest, ProcessorsOfSeveralMachines) {
    std::string large = "cpu  640 0 0 6400 64 0 0 0 320 0\n";
    for (int processor = 0; processor < 64; ++processor)
        large += "cpu" + std::to_string(processor) + " 10 0 0 100 1 0 0 0 5 0\n";
    const std::pair<std::string, std::optional<ProcessorTimes>> cases[] = {
        {"cpu  10 20 30 400 50 1 2 3 7 7\ncpu0 10 20 30 400 50 1 2 3 7 7\nintr 5\n", ProcessorTimes{450, 516, 1}},
        {large + "intr 99 0 0\nctxt 1\n", ProcessorTimes{6464, 7104, 64}},
        {"cpu  10 20 30 400\ncpu0 10 20 30 400\ncpu1 0 0 0 0\n", ProcessorTimes{400, 460, 2}},  // Linux 2.4
        {"cpu  18446744073709551615 20 30\n", std::nullopt},
        {"cpu  1 2 3 x\n", std::nullopt},
        {"cpu", std::nullopt},
        {"cpu0 1 2 3 4\n", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ProcessorsOf(text), expected) << text;
}

TEST(ProcFiguresTest, MemoryOfSeveralMachines) {
    const std::pair<std::string, std::optional<PhysicalMemory>> cases[] = {
        {"MemTotal:       24684084 kB\nMemFree:        23375084 kB\nMemAvailable:   24147528 kB\nBuffers: 1 kB\n",
         PhysicalMemory{24684084ull * 1024, 24147528ull * 1024}},
        {"MemTotal: 1000 kB\nMemFree: 100 kB\nBuffers: 20 kB\nCached: 3 kB\nSwapCached: 500 kB\n",
         PhysicalMemory{1000 * 1024, 123 * 1024}},  // before 3.14
        {"MemTotal: 1000 kB\nMemFree: 100 kB\n", PhysicalMemory{1000 * 1024, 100 * 1024}},
        {"MemTotal: 1000 kB\nMemAvailable: 2000 kB\n", PhysicalMemory{1000 * 1024, 1000 * 1024}},  // a container's limit
        {"MemTotal: 1000 kB\nMemAv", std::nullopt},
        {"MemTotal:\nMemAvailable: 5 kB\n", std::nullopt},
        {"MemFree: 5 kB", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(MemoryOf(text), expected) << text;
}

/// A tree of devices below a folder of its own, in the shape of the kernel's.
class Machine {
public:
    SystemFolders Folders() const { return {.proc = Path("proc"), .sys = Path("sys"), .dev = Path("dev")}; }

    /// `place` is "sda" or "sda/sda1".
    void Device(const std::string& place, const std::string& number, bool removable = false) {
        const std::string folder = Path("sys/devices/" + place);
        const std::string name = fs::path(place).filename();
        fs::create_directories(folder);
        std::ofstream(folder + "/dev") << number << "\n";
        if (place == name) {
            std::ofstream(folder + "/removable") << (removable ? "1\n" : "0\n");
        } else {
            std::ofstream(folder + "/partition") << "1\n";
        }
        Link("sys/dev/block/" + number, folder);
        Link("sys/class/block/" + name, folder);
        fs::create_directories(Path("dev"));
        std::ofstream(Path("dev/" + name)) << "";
    }
    void On(const std::string& device, const std::string& other) {
        Link("sys/devices/" + device + "/slaves/" + fs::path(other).filename().string(), Path("sys/devices/" + other));
    }
    void Link(const std::string& link, const std::string& target) const {
        fs::create_directories(fs::path(Path(link)).parent_path());
        fs::create_symlink(target, Path(link));
    }
    void Mounts(const std::string& text) const {
        fs::create_directories(Path("proc/self"));
        std::ofstream(Path("proc/self/mountinfo")) << text;
    }
    std::string Path(const std::string& inside) const { return folder_.Path() + "/" + inside; }

private:
    TemporaryFolder folder_;
};

TEST(FixedDisksTest, CountsEachFixedDiskOnce) {
    Machine machine;
    machine.Device("sda", "8:0");
    machine.Device("sda/sda1", "8:1");
    machine.Device("sda/sda2", "8:2");
    machine.Device("sdb", "8:16", true);
    machine.Device("sdb/sdb1", "8:17");
    machine.Device("nvme0n1", "259:0");
    machine.Device("nvme0n1/nvme0n1p1", "259:1");
    machine.Device("dm-0", "253:0");
    machine.Device("dm-1", "253:1");
    machine.Device("loop0", "7:0");
    machine.Device("zram0", "252:0");
    machine.Device("sr0", "11:0", true);
    machine.Device("nbd0", "43:0");
    machine.On("dm-0", "sda/sda2");
    machine.On("dm-1", "sdb/sdb1");
    machine.Link("dev/mapper/root", "../dm-0");
    const std::string mounts =
        "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
        "27 1 8:1 / / rw,relatime shared:1 master:2 - ext4 /dev/root rw\n"
        "28 27 8:1 /srv/a\\040b /mnt/a\\040b rw - ext4 /dev/root rw\n"  // a folder of it at a second place
        "29 27 0:40 /@home /home rw - btrfs /dev/mapper/root rw\n"
        "30 27 0:40 /@var /var rw - btrfs /dev/mapper/root rw\n"
        "31 27 259:1 / /data rw - xfs /dev/nvme0n1p1 rw\n"
        "32 27 8:17 / /media/stick rw - vfat /dev/sdb1 rw\n"
        "33 27 253:1 / /media/secret rw - ext4 /dev/mapper/secret rw\n"
        "34 27 7:0 / /snap/core ro - squashfs /dev/loop0 ro\n"
        "35 27 7:0 / /mnt/image rw - ext4 /dev/loop0 rw\n"
        "36 27 252:0 / /ram rw - ext4 /dev/zram0 rw\n"
        "37 27 11:0 / /cdrom ro - iso9660 /dev/sr0 ro\n"
        "38 27 43:0 / /remote rw - ext4 /dev/nbd0 rw\n"
        "39 27 0:50 / /nfs rw - nfs4 server:/export rw\n"
        "40 27 0:51 / /tmp rw - tmpfs tmpfs rw\n"
        "41 27 8:2 / /ntfs rw - fuseblk /dev/sda2 rw\n"
        "42 27 8:99 / /unplugged rw - ext4 /dev/sdz9 rw\n"
        "43 27 0:52 / /merged rw - overlay overlay rw,lowerdir=/a\n"
        "44 27\n"
        "45 27 8 / /x rw - ext4 /dev/sda1 rw\n"
        "46 27 8:1 / /cut rw -";
    const auto disks = FixedDisksOf(mounts, machine.Folders());
    ASSERT_EQ(disks.size(), 3u);
    EXPECT_EQ(disks[0], (MountedDisk{"8:1", 0x801, {"/", "/mnt/a b"}}));
    EXPECT_EQ(disks[1], (MountedDisk{"253:0", 0, {"/home", "/var"}}));
    EXPECT_EQ(disks[2], (MountedDisk{"259:1", 0x10301, {"/data"}}));

    // A container sees its host's disk only through the few files that are bound into it.
    const auto inside = FixedDisksOf(
        "1 0 0:99 / / rw - overlay overlay rw\n2 1 8:1 /var/lib/hosts /etc/hosts rw - ext4 /dev/root rw\n", machine.Folders());
    ASSERT_EQ(inside.size(), 1u);
    EXPECT_EQ(inside[0].paths, std::vector<std::string>{"/etc/hosts"});
    EXPECT_TRUE(FixedDisksOf("", machine.Folders()).empty());
}

TEST(FixedDisksTest, ADiskThatDoesNotAnswerHoldsUpNobody) {
    struct Gate {
        std::mutex mutex;
        std::condition_variable changed;
        bool open = true;
        int asked = 0;
        int answered = 0;
    };
    Machine machine;
    machine.Device("sda", "8:0");
    machine.Device("sdb", "8:16");
    machine.Mounts("1 0 8:0 / / rw - ext4 /dev/sda rw\n2 1 8:16 / /data rw - ext4 /dev/sdb rw\n");
    const auto gate = std::make_shared<Gate>();
    const auto ask = [gate](const MountedDisk& disk) -> std::optional<DiskSpace> {
        if (disk.device == "8:0") return DiskSpace{100, 10};
        std::unique_lock lock(gate->mutex);
        ++gate->asked;
        gate->changed.notify_all();
        gate->changed.wait(lock, [&] { return gate->open; });
        ++gate->answered;
        gate->changed.notify_all();
        return DiskSpace{1000.0 * gate->asked, 0};
    };
    const auto setOpen = [&](bool open) {
        const std::lock_guard lock(gate->mutex);
        gate->open = open;
        gate->changed.notify_all();
    };
    {
        FixedDisks disks(machine.Folders(), ask);
        EXPECT_EQ(disks.Sum(30s), (DiskSpace{1100, 10}));
        setOpen(false);
        EXPECT_EQ(disks.Sum(1ms).total, 1100) << "its last figures stand in";
        EXPECT_EQ(disks.Sum(30s).total, 1100) << "and it is not waited for a second time";
        {
            std::unique_lock lock(gate->mutex);
            EXPECT_TRUE(gate->changed.wait_for(lock, 30s, [&] { return gate->asked == 2; }));
        }
        machine.Mounts("1 0 8:0 / / rw - ext4 /dev/sda rw\n");
        EXPECT_EQ(disks.Sum(30s).total, 100) << "unmounted";
    }
    setOpen(true);  // it answers when nobody is there any more
    std::unique_lock lock(gate->mutex);
    EXPECT_TRUE(gate->changed.wait_for(lock, 30s, [&] { return gate->answered == 2; }));
    EXPECT_EQ(gate->asked, 2);
}

TEST(LinuxSystemInfoTest, TellsNothingWhereThereIsNothing) {
    const LinuxSystemInfo machine;
    EXPECT_EQ(machine.Processors()->processors, static_cast<int>(::sysconf(_SC_NPROCESSORS_ONLN)));

    const LinuxSystemInfo nothing({.proc = "/no", .sys = "/no", .dev = "/no"});
    EXPECT_FALSE(nothing.Processors());
    EXPECT_FALSE(nothing.Memory());
    EXPECT_EQ(nothing.FixedDisks(), DiskSpace{});
}

}  // namespace
}  // namespace korvane
