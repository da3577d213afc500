#include "platform/qt/sql_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QtCore/QVariant>
#include <QtSql/QSqlQuery>
#include <cerrno>
#include <cstring>
#include <future>

#include "platform/qt/sql_recordset.h"
#include "platform/qt/sqlite_session.h"

namespace korvane {
namespace {

constexpr std::chrono::milliseconds kGlanceEvery{100};

// In KiB: whole tables and indexes pass through this cache.
const std::string kCacheOfCompaction = "PRAGMA cache_size=-16384";

// The empty file that the copy is written to; the destructor removes it unless it was moved elsewhere. SQLite would create a file
// that everyone can read, and it contains passwords.
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
    // A killed program may have left a journal beside its copy.
    void Remove() const {
        for (const char* end : {"", "-journal", "-wal", "-shm"})
            ::unlink((path_ + end).c_str());
    }

    [[noreturn]] void Fail() const { throw Error("Cannot write " + path_ + ": " + std::strerror(errno)); }

    std::string path_;
    int file_ = -1;
};

void CheckIntegrity(SqliteSession& session) {
    QSqlQuery check = session.Select("PRAGMA integrity_check(1)");
    const std::string result = session.Next(check) ? check.value(0).toString().toStdString() : "";
    if (result != "ok") throw DamagedError("The database '" + session.Path() + "' is damaged: " + result);
}

// The copy does not replace the file. Whoever had the file open would still have the old one, whose locks no longer protect the
// new one while their journals have the same name: a program that was waiting for the old file would roll a foreign journal back
// into it, and a crash would then leave the new one damaged.
void CompactDatabase(SqliteSession& session, const std::string& copy, const std::function<void()>& copied) {
    session.Select(kCacheOfCompaction);
    session.TakeForItself();  // a busy writer could delay each of the steps
    CheckIntegrity(session);
    {
        const CopyFile file(copy, session.Path());
        session.CopyInto(copy);
        file.Flush();
        copied();
    }
    session.Change("VACUUM", {});
}

}  // namespace

bool SharedDatabase::Is(const std::string& path) const {
    return !address.empty() && path == file;
}

QtSqlStore::QtSqlStore(ColumnKindOf kindOf, std::chrono::milliseconds busyTimeout, SharedDatabase shared)
    : state_(std::make_shared<SqlStoreState>(SqlStoreState{std::move(kindOf), busyTimeout, std::move(shared)})) {}

std::unique_ptr<Connection> QtSqlStore::NewConnection() {
    return std::make_unique<QtSqlConnection>(state_);
}

std::unique_ptr<Recordset> QtSqlStore::NewRecordset() {
    return std::make_unique<QtSqlRecordset>(state_);
}

void QtSqlStore::Compact(const std::string& file, const std::string& copy, const std::function<void()>& copied) {
    if (state_->shared.Is(file)) return;  // the server does that by itself
    auto work = std::async(std::launch::async, [&] {
        SqliteSession session(file, state_->busyTimeout, state_->kindOf);
        CompactDatabase(session, copy, copied);
    });
    while (work.wait_for(kGlanceEvery) != std::future_status::ready)
        glance_();
    work.get();
}

void QtSqlStore::Rest() {
    state_->kept.reset();
}

bool QtSqlStore::InUse() const {
    return state_->inUse > 0;
}

}  // namespace korvane
