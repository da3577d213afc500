#include "platform/linux/file_replacement.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

#include "base/error.h"

namespace korvane {
namespace {

constexpr int kLongestLinkChain = 40;

std::string FolderOfFile(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

std::string NameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

// A temporary file, removed again unless it was moved to its destination.
class Sibling {
public:
    // The name is always the same: the next write reuses what a killed program left over, so that copies with passwords do not
    // pile up.
    explicit Sibling(const std::string& path) : path_(FolderOfFile(path) + "." + NameOf(path) + ".new") {
        ::unlink(path_.c_str());
        file_ = Descriptor(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    }
    ~Sibling() {
        const int error = errno;  // for the caller that reports it
        if (file_ && !placed_) ::unlink(path_.c_str());
        errno = error;
    }
    Sibling(const Sibling&) = delete;
    Sibling& operator=(const Sibling&) = delete;

    const Descriptor& File() const { return file_; }

    bool TakeOwnerAndMode(const struct stat& of) const {
        return ::fchown(file_.Number(), of.st_uid, of.st_gid) == 0 && ::fchmod(file_.Number(), of.st_mode & 07777) == 0;
    }

    bool MoveTo(const std::string& path) {
        placed_ = ::rename(path_.c_str(), path.c_str()) == 0;
        return placed_;
    }

private:
    std::string path_;
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

}  // namespace

// Without this a power cut could bring the old file back. Some file systems cannot do it and do not need it.
void FlushFolderOf(const std::string& path) {
    const Descriptor folder(::open(FolderOfFile(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
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

std::string FollowLinks(std::string path) {
    for (int links = 0; links < kLongestLinkChain; ++links) {
        std::array<char, PATH_MAX> target{};
        const ssize_t size = ::readlink(path.c_str(), target.data(), target.size());
        if (size < 0) return path;
        const std::string to(target.data(), static_cast<std::size_t>(size));
        path = to.starts_with('/') ? to : FolderOfFile(path).append(to);
    }
    errno = ELOOP;
    ThrowFileError("write", path);
}

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

}  // namespace korvane
