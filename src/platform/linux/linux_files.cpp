#include "platform/linux/linux_files.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <system_error>

#include "base/error.h"
#include "platform/linux/file_replacement.h"

namespace korvane {
namespace {

constexpr std::size_t kPiece = 65536;
/// This file is locked by the process that holds the folder.
constexpr const char* kHoldFile = "korvane.lock";

bool NoSuchFile(int error) {
    return error == ENOENT || error == ENOTDIR;
}

std::int64_t Nanoseconds(const timespec& moment) {
    return std::int64_t{moment.tv_sec} * 1'000'000'000 + moment.tv_nsec;
}

// Returns what the file is like. Throws Error when it could not be opened or is not a file.
struct stat StatusOf(const Descriptor& file, const char* action, const std::string& path) {
    struct stat status {};
    if (!file || ::fstat(file.Number(), &status) != 0) ThrowFileError(action, path);
    if (!S_ISREG(status.st_mode)) throw Error(std::string("Cannot ") + action + " " + path + ": it is not a file");
    return status;
}

// Returns an empty descriptor when there is no file.
Descriptor OpenToRead(const std::string& path) {
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));  // a pipe without a writer would block
    if (file || !NoSuchFile(errno)) StatusOf(file, "read", path);
    return file;
}

// Calls `take` with each piece of the file until its end.
void ReadPieces(const Descriptor& file, const std::string& path, const TakeText& take) {
    std::array<char, kPiece> piece;
    for (;;) {
        const ssize_t size = ::read(file.Number(), piece.data(), piece.size());
        if (size == 0) return;
        if (size > 0) {
            take(std::string_view(piece.data(), static_cast<std::size_t>(size)));
        } else if (errno != EINTR) {
            ThrowFileError("read", path);
        }
    }
}

// Creates the folder and its missing parents, which everyone may look into. An existing folder stays unchanged.
void MakeFolder(const std::filesystem::path& path, mode_t mode) {
    std::error_code error;
    if (path.empty() || std::filesystem::is_directory(path, error)) return;
    const std::filesystem::path above = path.has_filename() ? path.parent_path() : path.parent_path().parent_path();
    MakeFolder(above, 0755);
    if (::mkdir(path.c_str(), mode) == 0) return;
    if (errno == EEXIST) {
        if (std::filesystem::is_directory(path, error)) return;
        errno = ENOTDIR;
    }
    ThrowFileError("create folder", path);
}

// Returns the device of the whole file system, by which the system lists locks. That of stat may be of a part of it: Btrfs has one
// for each subvolume, and layered file systems have that of the layer.
std::optional<dev_t> FileSystemOf(const Descriptor& file) {
    std::string word, mount, id;
    std::ifstream info("/proc/self/fdinfo/" + std::to_string(file.Number()));
    while (info >> word)
        if (word == "mnt_id:") info >> mount;
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        // "36 35 0:44 / /home rw - btrfs ..."
        unsigned above = 0, high = 0, low = 0;
        char colon = 0;
        std::istringstream words(line);
        if (words >> id >> above >> high >> colon >> low && id == mount) return makedev(high, low);
    }
    return std::nullopt;
}

}  // namespace

std::optional<FileIdentity> LinuxFiles::Identity(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        return FileIdentity{status.st_dev, status.st_ino, status.st_size, Nanoseconds(status.st_ctim)};
    }
    if (NoSuchFile(errno)) return std::nullopt;
    ThrowFileError("read", path);
}

std::optional<std::string> LinuxFiles::Read(const std::string& path) {
    const Descriptor file = OpenToRead(path);
    if (!file) return std::nullopt;
    std::string text;
    ReadPieces(file, path, [&](std::string_view piece) { text += piece; });
    return text;
}

void LinuxFiles::Replace(const std::string& path, std::string_view text) {
    ReplaceFile(path, [&](const TakeText& take) { take(text); });
}

void LinuxFiles::Overwrite(const std::string& path, std::int64_t offset, std::string_view bytes) {
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK));
    const struct stat status = StatusOf(file, "write", path);
    const auto size = static_cast<std::int64_t>(bytes.size());
    if (offset < 0 || size > status.st_size || offset > status.st_size - size) {
        throw Error("Cannot write " + path + ": it is shorter than expected");
    }
    if (::lseek(file.Number(), offset, SEEK_SET) != offset) ThrowFileError("write", path);
    WriteAll(file, bytes, path);
}

void LinuxFiles::Append(const std::string& path, std::string_view text) {
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0640));
    const struct stat before = StatusOf(file, "write", path);
    ssize_t written = 0;
    do {
        written = ::write(file.Number(), text.data(), text.size());
    } while (written < 0 && errno == EINTR);
    if (written == static_cast<ssize_t>(text.size())) return;
    if (written >= 0) {  // the disk became full in the middle of the text: remove the incomplete part
        errno = ::ftruncate(file.Number(), before.st_size) == 0 ? ENOSPC : errno;
    }
    ThrowFileError("write", path);
}

void LinuxFiles::Copy(const std::string& from, const std::string& to) {
    const Descriptor source = OpenToRead(from);
    if (!source) {
        errno = ENOENT;
        ThrowFileError("read", from);
    }
    ReplaceFile(to, [&](const TakeText& take) {
        if (::lseek(source.Number(), 0, SEEK_SET) != 0) ThrowFileError("read", from);
        ReadPieces(source, from, take);
    });
}

void LinuxFiles::Publish(const std::string& path, std::string_view text) {
    ReplaceFile(path, [&](const TakeText& take) { take(text); }, {.flush = false, .newMode = 0644});
}

void LinuxFiles::PublishPage(const std::string& path, const std::function<void(const TakeText& take)>& write) {
    ReplaceFile(path, write, {.flush = false, .newMode = 0644, .replaceLink = true});
}

void LinuxFiles::Remove(const std::string& path) {
    if (::unlink(path.c_str()) != 0 && !NoSuchFile(errno)) ThrowFileError("remove", path);
}

void LinuxFiles::Rename(const std::string& from, const std::string& to) {
    {
        const Descriptor file = OpenToRead(from);
        if (file && ::fsync(file.Number()) != 0) ThrowFileError("write", from);
    }
    if (::rename(from.c_str(), to.c_str()) != 0) ThrowFileError("rename", from);
    FlushFolderOf(to);
}

std::vector<std::string> LinuxFiles::FileNames(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        if (!at->is_directory(error)) names.push_back(at->path().filename().string());
    }
    if (error) throw Error("Cannot read folder " + folder + ": " + error.message());
    std::sort(names.begin(), names.end());
    return names;
}

void LinuxFiles::CreateFolder(const std::string& path) {
    MakeFolder(path, 0755);
}

void LinuxFiles::CreatePrivateFolder(const std::string& path) {
    MakeFolder(path, 0700);
}

std::string LinuxFiles::RealPath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::weakly_canonical(path, error);
    if (error) throw Error("Cannot follow " + path + ": " + error.message());
    return real.string();
}

// Everyone who can look into the folder could lock the folder itself.
bool LinuxFiles::HoldFolder(const std::string& path) {
    const std::string name = path + "/" + kHoldFile;
    Descriptor file(::open(name.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    struct stat status {
    }, folder{};
    if (!file || ::fstat(file.Number(), &status) != 0 || ::stat(path.c_str(), &folder) != 0) ThrowFileError("hold", path);
    // A start by root must not lock out the owner.
    const bool isOwners = status.st_uid == folder.st_uid;
    [[maybe_unused]] const bool given = isOwners || ::fchown(file.Number(), folder.st_uid, folder.st_gid) == 0;
    const std::pair identity{status.st_dev, status.st_ino};
    if (holds_.contains(identity)) return true;
    if (::flock(file.Number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) return false;
        ThrowFileError("hold", path);
    }
    holds_[identity] = std::move(file);
    return true;
}

// The system's list has a line for each lock: "1: FLOCK  ADVISORY  WRITE 4711 00:1b:4411384 0 EOF".
bool LinuxFiles::IsHeld(const std::string& path) {
    const Descriptor file(::open((path + "/" + kHoldFile).c_str(), O_PATH | O_CLOEXEC));
    struct stat status {};
    if (!file || ::fstat(file.Number(), &status) != 0) return false;
    const dev_t device = FileSystemOf(file).value_or(status.st_dev);
    char where[64];
    std::snprintf(where, sizeof where, " %02x:%02x:%llu ", major(device), minor(device),
                  static_cast<unsigned long long>(status.st_ino));
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);)
        if (line.find(" FLOCK ") != std::string::npos && line.find(where) != std::string::npos) return true;
    return false;
}

}  // namespace korvane
