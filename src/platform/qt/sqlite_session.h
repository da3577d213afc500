// One open SQLite file with its prepared statements.
#pragma once

#include <chrono>
#include <tuple>

#include "platform/qt/sql_session.h"

class QSqlError;

namespace korvane {

class SqliteSession : public SqlSession {
public:
    /// Opens the file. Throws Error like Connection::Open.
    SqliteSession(std::string path, std::chrono::milliseconds busyTimeout, ColumnKindOf kindOf);
    ~SqliteSession() override;

    void Close() override;

    void Leave() override { left_ = Look(); }
    /// Returns whether the path still names the file that is open here, and nothing has changed it since Leave: a copy written
    /// over it must not be mixed with cached content of the old one. Throws Error when the file no longer exists.
    bool IsAsLeft() const override { return Look() == left_; }

    using SqlSession::Select;
    QSqlQuery Select(const std::string& sql, const SqlBound& values) override;
    QSqlQuery& SelectPrepared(const std::string& sql, const SqlBound& values) override;
    int Change(const std::string& sql, const SqlBound& values) override;
    std::int64_t Insert(const std::string& table, const std::string& sql, const SqlBound& values, bool givesId) override;
    void Execute(const std::string& statement) override;

    /// It takes the file for writing at once.
    void Begin() override;
    void Commit() override;

    /// Locks everyone else out of the file from here to Close. Throws Error.
    void TakeForItself();

    /// Writes a compact copy of the database into the empty file `path`. Throws Error.
    void CopyInto(const std::string& path);

    void TryWriting() override;

    bool HasTable(const std::string& name) override;
    std::vector<QVariant> DefaultsOf(const std::string& table) override;
    bool NamesColumns() const override { return false; }

    // The store itself knows the locks of this program, and a file has no others.
    bool TryLockRow(const std::string& /*table*/, std::int64_t /*id*/) override { return true; }
    void UnlockRow(const std::string& /*table*/, std::int64_t /*id*/) override {}
    bool TryTakeDuty(const std::string& /*name*/) override { return true; }
    void ReleaseDuty(const std::string& /*name*/) override {}
    std::optional<DateTime> Now() override { return std::nullopt; }

protected:
    std::shared_ptr<const SqlColumns> ReadColumns(const std::string& table) override;
    std::string ReadKey(const std::string& table) override;
    [[noreturn]] void FailOf(const QSqlQuery& query) override;

private:
    struct Driver;
    /// Device, inode, size, and time of the last change in seconds and nanoseconds.
    using FileLook = std::tuple<std::uint64_t, std::uint64_t, std::int64_t, std::int64_t, std::int64_t>;

    FileLook Look() const;
    QSqlQuery Prepare(const std::string& sql);
    void Run(QSqlQuery& query, const SqlBound& values);
    void RequireOpen() const;
    void PrepareForChanges();
    void RollBack();
    [[noreturn]] void Fail(const QSqlError& error);

    FileLook left_;
    std::unique_ptr<Driver> driver_;
    bool open_ = false;
    bool readyForChanges_ = false;
};

}  // namespace korvane
