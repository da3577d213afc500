#include "platform/linux/linux_files.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
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

// Returns an empty descriptor when there is no file. Throws Error when the path cannot be opened or is not a file.
Descriptor OpenToRead(const std::string& path) {
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));  // a pipe without a writer would block
    if (!file) {
        if (NoSuchFile(errno)) return file;
        ThrowFileError("read", path);
    }
    struct stat status {};
    if (::fstat(file.Number(), &status) != 0) ThrowFileError("read", path);
    if (!S_ISREG(status.st_mode)) throw Error("Cannot read " + path + ": it is not a file");
    return file;
}

// Calls `take` with each piece of the file until its end.
template <class Take>
void ReadPieces(const Descriptor& file, const std::string& path, Take take) {
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

}  // namespace

void KeepOthersFromWriting() {
    const mode_t before = ::umask(0);
    ::umask(before | S_IWGRP | S_IWOTH);
}

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
    const std::string target = FollowLinks(path);
    const bool replaced = ReplaceBySibling(target, [&](const Descriptor& file) { WriteAll(file, text, path); });
    if (!replaced) ReplaceInPlace(target, text);
}

void LinuxFiles::Overwrite(const std::string& path, std::int64_t offset, std::string_view bytes) {
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || ::fstat(file.Number(), &status) != 0) ThrowFileError("write", path);
    const auto size = static_cast<std::int64_t>(bytes.size());
    if (offset < 0 || size > status.st_size || offset > status.st_size - size) {
        throw Error("Cannot write " + path + ": it is shorter than expected");
    }
    if (::lseek(file.Number(), offset, SEEK_SET) != offset) ThrowFileError("write", path);
    WriteAll(file, bytes, path);
}

void LinuxFiles::Append(const std::string& path, std::string_view text) {
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0640));
    struct stat before {};
    if (!file || ::fstat(file.Number(), &before) != 0) ThrowFileError("write", path);
    if (!S_ISREG(before.st_mode)) throw Error("Cannot write " + path + ": it is not a file");
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
    const std::string target = FollowLinks(to);
    const bool replaced = ReplaceBySibling(target, [&](const Descriptor& file) {
        ReadPieces(source, from, [&](std::string_view piece) { WriteAll(file, piece, to); });
    });
    if (!replaced) ReplaceInPlace(target, *Read(from));
}

void LinuxFiles::Publish(const std::string& path, std::string_view text) {
    const std::string target = FollowLinks(path);
    const auto write = [&](const Descriptor& file) { WriteAll(file, text, path); };
    if (!ReplaceBySibling(target, write, {.flush = false, .newMode = 0644})) ReplaceInPlace(target, text);
}

void LinuxFiles::PublishPage(const std::string& path, const std::function<void(const TakeText& take)>& write) {
    const auto writePieces = [&](const Descriptor& file) { write([&](std::string_view piece) { WriteAll(file, piece, path); }); };
    if (ReplaceBySibling(path, writePieces, {.flush = false, .newMode = 0644, .replaceLink = true})) return;
    std::string text;  // writing in place needs the length in advance
    write([&](std::string_view piece) { text += piece; });
    ReplaceInPlace(path, text);
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
    const auto held = [&](const Hold& hold) { return hold.device == status.st_dev && hold.inode == status.st_ino; };
    if (std::any_of(holds_.begin(), holds_.end(), held)) return true;
    if (::flock(file.Number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) return false;
        ThrowFileError("hold", path);
    }
    holds_.push_back({status.st_dev, status.st_ino, std::move(file)});
    return true;
}

}  // namespace korvane
