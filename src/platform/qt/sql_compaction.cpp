#include "platform/qt/sql_compaction.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QtCore/QVariant>
#include <QtSql/QSqlQuery>
#include <cerrno>
#include <cstring>
#include <string_view>

namespace korvane {
namespace {

// In KiB: whole tables and indexes pass through it.
const std::string kCacheOfCompaction = "PRAGMA cache_size=-16384";

// The empty file that the copy is written to; it goes with this object unless it was moved elsewhere. SQLite would make one that
// everybody can read, and there are passwords in it.
class CopyFile {
public:
    CopyFile(std::string path, const std::string& original) : path_(std::move(path)) {
        Remove();
        file_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (file_ < 0) Fail();
        struct stat like {};
        if (::stat(original.c_str(), &like) == 0 && ::fchown(file_, like.st_uid, like.st_gid) == 0)
            ::fchmod(file_, like.st_mode & 07777);
    }
    ~CopyFile() {
        Remove();
        ::close(file_);
    }
    CopyFile(const CopyFile&) = delete;
    CopyFile& operator=(const CopyFile&) = delete;

    void Flush() const {
        if (::fsync(file_) != 0) Fail();
    }

private:
    // A program that was killed may have left a journal beside its copy.
    void Remove() const {
        for (const std::string_view end : {"", "-journal", "-wal", "-shm"})
            ::unlink((path_ + std::string(end)).c_str());
    }

    [[noreturn]] void Fail() const { throw Error("Cannot write " + path_ + ": " + std::strerror(errno)); }

    std::string path_;
    int file_ = -1;
};

void CheckIntegrity(SqlSession& session) {
    QSqlQuery check = session.Select("PRAGMA integrity_check(1)");
    const std::string result = session.Next(check) ? check.value(0).toString().toStdString() : "";
    if (result != "ok") throw Error("The database '" + session.Path() + "' is damaged: " + result);
}

}  // namespace

// The copy does not take the place of the file. Whoever had the file open would still have the old one, whose locks no longer
// concern the new one while their journals bear the same name: a program that was waiting for the old file would roll somebody
// else's journal back into it, and a crash then leaves the new one damaged.
void CompactDatabase(SqlSession& session, const std::string& copy, const std::function<void()>& copied) {
    session.Select(kCacheOfCompaction);
    session.TakeForItself();  // a busy writer could keep each of the steps waiting
    CheckIntegrity(session);
    {
        const CopyFile file(copy, session.Path());
        session.CopyInto(copy);
        file.Flush();
        copied();
    }
    session.Change("VACUUM", {});
}

}  // namespace korvane
