#include "platform/linux/disk_mounts.h"

#include <sys/sysmacros.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <optional>
#include <sstream>
#include <system_error>

#include "base/text.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

/// Block devices that are not disks of this machine: floppies, optical drives, files, memory and network devices.
constexpr std::string_view kNoFixedDisk[] = {"fd", "sr", "loop", "ram", "zram", "nbd", "rbd"};
constexpr std::string_view kPictures[] = {"squashfs", "iso9660", "udf", "erofs", "cramfs", "romfs"};

/// Deepest stack: encryption on volumes on arrays on partitions.
constexpr int kMostLayers = 8;

struct Mount {
    unsigned major = 0;
    unsigned minor = 0;
    std::string path;
    std::string type;
    std::string source;
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

bool IsRemovable(const fs::path& folder) {
    return TrimAll(ReadKernelFile(folder / "removable").value_or("")) == "1";
}

bool IsFixed(const fs::path& folder, int layers = 0) {
    const std::string name = folder.filename();
    std::error_code error;
    if (fs::exists(folder / "partition", error)) return IsFixed(folder.parent_path(), layers);
    const bool other = std::any_of(std::begin(kNoFixedDisk), std::end(kNoFixedDisk), [&](std::string_view kind) {
        return name.starts_with(kind) && name.find_first_not_of("0123456789", kind.size()) == std::string::npos;
    });
    if (other || IsRemovable(folder) || layers > kMostLayers) return false;
    for (fs::directory_iterator slave(folder / "slaves", error), end; !error && slave != end; slave.increment(error)) {
        if (!IsFixed(TargetFolder(slave->path()), layers + 1)) return false;
    }
    return true;
}

// btrfs has no device of its own in the table, only the name of one of the devices that it uses.
fs::path DeviceOf(const Mount& mount, const SystemFolders& folders) {
    if (mount.major != 0) {
        return TargetFolder(folders.sys + "/dev/block/" + std::to_string(mount.major) + ":" + std::to_string(mount.minor));
    }
    if (!mount.source.starts_with("/dev/")) return {};
    const std::string name = mount.source.substr(5, mount.source.find(':', 5) - 5);  // bcachefs lists several
    std::error_code error;
    const fs::path node = fs::canonical(folders.dev + "/" + name, error);
    return TargetFolder(folders.sys + "/class/block/" + (error ? name : node.filename().string()));
}

bool IsOfAKindToCount(const std::string& type) {
    return !type.starts_with("fuse") && std::find(std::begin(kPictures), std::end(kPictures), type) == std::end(kPictures);
}

}  // namespace

std::vector<MountedDisk> FixedDisksOf(std::string_view mountinfo, const SystemFolders& folders) {
    std::vector<MountedDisk> disks;
    for (const std::string& line : Split(mountinfo, '\n')) {
        const std::optional<Mount> mount = MountOf(line);
        if (!mount || !IsOfAKindToCount(mount->type)) continue;
        const fs::path folder = DeviceOf(*mount, folders);
        if (folder.empty()) continue;
        const std::string device = TrimAll(ReadKernelFile(folder / "dev").value_or(folder.filename()));
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

}  // namespace korvane
