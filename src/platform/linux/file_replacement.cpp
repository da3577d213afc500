#include "platform/linux/file_replacement.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/error.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

constexpr int kLongestLinkChain = 40;

// Returns the path at the end of a chain of symbolic links, whether or not a file exists there.
fs::path FollowLinks(fs::path path) {
    for (int links = 0; links < kLongestLinkChain; ++links) {
        std::error_code isNoLink;
        const fs::path target = fs::read_symlink(path, isNoLink);
        if (isNoLink) return path;
        path = path.parent_path() / target;
    }
    errno = ELOOP;
    ThrowFileError("write", path);
}

// A temporary file, removed again unless it was moved to its destination.
class Sibling {
public:
    // The name is always the same: the next write reuses what a killed program left over, so that copies with passwords do not
    // pile up.
    explicit Sibling(const fs::path& path) : path_(path.parent_path() / ("." + path.filename().string() + ".new")) {
        ::unlink(path_.c_str());
        file_ = Descriptor(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    }
    ~Sibling() {
        if (file_ && !placed_) ::unlink(path_.c_str());
    }
    Sibling(const Sibling&) = delete;
    Sibling& operator=(const Sibling&) = delete;

    const Descriptor& File() const { return file_; }

    bool TakeOwnerAndMode(const struct stat& of) const {
        return ::fchown(file_.Number(), of.st_uid, of.st_gid) == 0 && ::fchmod(file_.Number(), of.st_mode & 07777) == 0;
    }

    bool MoveTo(const fs::path& path) {
        placed_ = ::rename(path_.c_str(), path.c_str()) == 0;
        return placed_;
    }

private:
    fs::path path_;
    Descriptor file_;
    bool placed_ = false;
};

// True only for errors of the folder or of the replacement itself, never for a full or broken disk.
bool MayBeWrittenInPlace(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY;
}

// Returns whether the file exists. Throws Error when it must not be replaced.
bool StatExisting(const std::string& path, struct stat& existing, bool replaceLink) {
    if ((replaceLink ? ::lstat : ::stat)(path.c_str(), &existing) != 0) {
        if (errno == ENOENT) return false;
        ThrowFileError("write", path);
    }
    if (S_ISLNK(existing.st_mode)) return false;
    if (!S_ISREG(existing.st_mode)) throw Error("Cannot write " + path + ": it is not a file");
    if (::access(path.c_str(), W_OK) != 0) ThrowFileError("write", path);
    return true;
}

// Returns false and leaves everything unchanged when the existing file can only be written in place.
bool ReplaceBySibling(const std::string& path, const std::function<void(const Descriptor&)>& write, const Placing& placing) {
    struct stat existing {};
    const bool exists = StatExisting(path, existing, placing.replaceLink);
    Sibling sibling(path);
    if (!sibling.File()) {
        if (exists && MayBeWrittenInPlace(errno)) return false;
        ThrowFileError("write", path);
    }
    if (exists && !sibling.TakeOwnerAndMode(existing)) return false;
    if (!exists && ::fchmod(sibling.File().Number(), placing.newMode) != 0) ThrowFileError("write", path);
    write(sibling.File());
    if (placing.flush && ::fsync(sibling.File().Number()) != 0) ThrowFileError("write", path);
    if (!sibling.MoveTo(path)) {
        if (exists && MayBeWrittenInPlace(errno)) return false;
        ThrowFileError("write", path);
    }
    if (placing.flush) FlushFolderOf(path);
    return true;
}

void ReplaceInPlace(const std::string& path, std::string_view text) {
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    struct stat before {};
    if (!file || ::fstat(file.Number(), &before) != 0) ThrowFileError("write", path);
    const auto size = static_cast<off_t>(text.size());
    if (size > before.st_size) {
        errno = ::posix_fallocate(file.Number(), 0, size);
        if (errno != 0) {
            const int error = errno;
            [[maybe_unused]] const int restored = ::ftruncate(file.Number(), before.st_size);
            errno = error;
            ThrowFileError("write", path);
        }
    }
    WriteAll(file, text, path);
    if (::ftruncate(file.Number(), size) != 0 || ::fsync(file.Number()) != 0) ThrowFileError("write", path);
}

}  // namespace

// Without this a power cut could bring the old file back. Some file systems cannot do it and do not need it.
void FlushFolderOf(const std::string& path) {
    const Descriptor folder(::open((fs::path(path).parent_path() / ".").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) ::fsync(folder.Number());
}

void ThrowFileError(const char* action, const std::string& path) {
    throw Error(std::string("Cannot ") + action + " " + path + ": " + std::strerror(errno));
}

void WriteAll(const Descriptor& file, std::string_view bytes, const std::string& path) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.Number(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) ThrowFileError("write", path);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void ReplaceFile(const std::string& path, const std::function<void(const TakeText& take)>& write, const Placing& placing) {
    const std::string target = placing.replaceLink ? path : FollowLinks(path).string();
    const auto writeTo = [&](const Descriptor& file) { write([&](std::string_view piece) { WriteAll(file, piece, path); }); };
    if (ReplaceBySibling(target, writeTo, placing)) return;
    std::string text;  // writing in place needs the length in advance
    write([&](std::string_view piece) { text += piece; });
    ReplaceInPlace(target, text);
}

}  // namespace korvane
