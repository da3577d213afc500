#include "platform/linux/fixed_disks.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "base/ignore_errors.h"
#include "base/text.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

/// Block devices that are not disks of this machine: floppies, optical drives, files, memory and network devices.
constexpr std::string_view kNoFixedDisk[] = {"fd", "sr", "loop", "ram", "zram", "nbd", "rbd"};
constexpr std::string_view kPictures[] = {"squashfs", "iso9660", "udf", "erofs", "cramfs", "romfs"};

/// Deepest stack: encryption on volumes on arrays on partitions.
constexpr int kMostLayers = 8;

constexpr std::chrono::milliseconds kLimit{100};

struct Mount {
    unsigned major = 0;
    unsigned minor = 0;
    std::string path;
    std::string type;
    std::string source;
};

/// A device with all the places where it, or a part of it, is mounted.
struct MountedDisk {
    std::string device;  ///< "8:1"
    /// The device of its files according to stat(2), 0 where each part has its own (btrfs).
    std::uint64_t statDevice = 0;
    std::vector<std::string> paths;
};

// Spaces and similar characters are written as a backslash and three octal digits.
std::string Unescaped(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        unsigned code = 0;
        const bool escaped = text.size() >= 4 && text.front() == '\\' &&
                             std::from_chars(text.data() + 1, text.data() + 4, code, 8).ptr == text.data() + 4;
        plain += escaped ? static_cast<char>(code) : text.front();
        text.remove_prefix(escaped ? 4 : 1);
    }
    return plain;
}

// The form of a line is "36 35 98:0 /root /path opts optional... - type source superopts".
std::optional<Mount> MountOf(const std::string& line) {
    std::istringstream text(line);
    const std::vector<std::string> words{std::istream_iterator<std::string>(text), {}};
    const auto dash = std::find(words.begin(), words.end(), "-");
    if (dash - words.begin() < 6 || words.end() - dash < 3) return std::nullopt;
    Mount mount{.path = Unescaped(words[4]), .type = dash[1], .source = Unescaped(dash[2])};
    char colon = 0;
    std::istringstream device(words[2]);
    if (!(device >> mount.major >> colon >> mount.minor) || colon != ':') return std::nullopt;
    return mount;
}

// Returns the folder of a device in the device tree, where a partition is inside its disk; empty when there is none.
fs::path TargetFolder(const fs::path& link) {
    std::error_code error;
    const fs::path folder = fs::canonical(link, error);
    return error ? fs::path() : folder;
}

bool IsFixed(const fs::path& folder, int layers = 0) {
    const std::string name = folder.filename();
    std::error_code error;
    if (fs::exists(folder / "partition", error)) return IsFixed(folder.parent_path(), layers);
    const bool other = std::any_of(std::begin(kNoFixedDisk), std::end(kNoFixedDisk), [&](std::string_view kind) {
        return name.starts_with(kind) && name.find_first_not_of("0123456789", kind.size()) == std::string::npos;
    });
    if (other || ReadKernelFile(folder / "removable").starts_with("1") || layers > kMostLayers) return false;
    for (fs::directory_iterator slave(folder / "slaves", error), end; !error && slave != end; slave.increment(error)) {
        if (!IsFixed(TargetFolder(slave->path()), layers + 1)) return false;
    }
    return true;
}

// btrfs has no device of its own in the table, only the name of one of the devices that it uses.
fs::path DeviceOf(const Mount& mount, const std::string& root) {
    if (mount.major != 0) {
        return TargetFolder(root + "/sys/dev/block/" + std::to_string(mount.major) + ":" + std::to_string(mount.minor));
    }
    if (!mount.source.starts_with("/dev/")) return {};
    const std::string name = mount.source.substr(5, mount.source.find(':', 5) - 5);  // bcachefs lists several
    std::error_code error;
    const fs::path node = fs::canonical(root + "/dev/" + name, error);
    return TargetFolder(root + "/sys/class/block/" + (error ? name : node.filename().string()));
}

bool IsOfAKindToCount(const std::string& type) {
    return !type.starts_with("fuse") && std::find(std::begin(kPictures), std::end(kPictures), type) == std::end(kPictures);
}

// Reads the text of /proc/self/mountinfo (proc(5)). Malformed lines are ignored.
std::vector<MountedDisk> MountedDisks(const std::string& root) {
    std::vector<MountedDisk> disks;
    for (const std::string& line : Split(ReadKernelFile(root + "/proc/self/mountinfo"), '\n')) {
        const std::optional<Mount> mount = MountOf(line);
        if (!mount || !IsOfAKindToCount(mount->type)) continue;
        const fs::path folder = DeviceOf(*mount, root);
        if (folder.empty()) continue;
        const std::string device = Or(TrimAll(ReadKernelFile(folder / "dev")), folder.filename());
        auto known = std::find_if(disks.begin(), disks.end(), [&](const MountedDisk& disk) { return disk.device == device; });
        if (known == disks.end()) {
            if (!IsFixed(folder)) continue;
            const std::uint64_t statDevice = mount->major == 0 ? 0 : makedev(mount->major, mount->minor);
            known = disks.insert(known, {.device = device, .statDevice = statDevice, .paths = {}});
        }
        known->paths.push_back(mount->path);
    }
    return disks;
}

// Returns the space of the disk at a place where it is mounted and visible. May block for ever.
std::optional<DiskSpace> AskKernel(const MountedDisk& disk) {
    for (const std::string& path : disk.paths) {
        struct stat status {};
        struct statvfs space {};
        if (::stat(path.c_str(), &status) != 0) continue;
        if (disk.statDevice != 0 && status.st_dev != disk.statDevice) continue;  // something else is mounted over it
        if (::statvfs(path.c_str(), &space) != 0) continue;
        const auto block = static_cast<double>(space.f_frsize);
        return DiskSpace{block * static_cast<double>(space.f_blocks), block * static_cast<double>(space.f_bavail)};
    }
    return std::nullopt;
}

// Returns whether a thread could be started for it. It leaves all signals to the main thread.
bool RunBeside(const std::function<void()>& work) {
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    const bool started = IgnoreErrors([&] { std::thread(work).detach(); });
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

}  // namespace

std::string ReadKernelFile(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

struct FixedDisks::Answers {
    struct Answer {
        bool asked = false;
        std::optional<DiskSpace> last;
    };
    std::mutex mutex;
    std::condition_variable came;
    std::map<std::string, Answer> byDevice;
};

FixedDisks::FixedDisks(std::string root) : root_(std::move(root)), answers_(std::make_shared<Answers>()) {}

DiskSpace FixedDisks::Sum() const {
    const auto disks = MountedDisks(root_);
    std::vector<std::string> asked;
    std::unique_lock lock(answers_->mutex);
    std::erase_if(answers_->byDevice, [&](const auto& known) {  // unmounted
        return !known.second.asked &&
               std::none_of(disks.begin(), disks.end(), [&](const auto& disk) { return disk.device == known.first; });
    });
    for (const MountedDisk& disk : disks) {
        Answers::Answer& answer = answers_->byDevice[disk.device];
        if (answer.asked) continue;
        answer.asked = RunBeside([answers = answers_, disk] {
            const auto space = AskKernel(disk);
            const std::lock_guard taken(answers->mutex);
            answers->byDevice[disk.device] = {.asked = false, .last = space};
            answers->came.notify_all();
        });
        if (answer.asked) asked.push_back(disk.device);  // otherwise the last answer stays
    }
    answers_->came.wait_for(lock, kLimit, [&] {
        return std::none_of(asked.begin(), asked.end(), [&](const auto& device) { return answers_->byDevice[device].asked; });
    });
    DiskSpace sum;
    for (const MountedDisk& disk : disks) {
        const DiskSpace space = answers_->byDevice[disk.device].last.value_or(DiskSpace{});
        sum.total += space.total;
        sum.free += space.free;
    }
    return sum;
}

}  // namespace korvane
