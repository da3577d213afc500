// One open database file with its prepared statements.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>

#include "base/error.h"
#include "base/text.h"
#include "platform/qt/sql_columns.h"

class QSqlError;
class QSqlQuery;
class QVariant;
template <typename T>
class QList;

namespace korvane {

using SqlBound = QList<QVariant>;

class SqlSession {
public:
    /// Opens the file. Throws Error like Connection::Open.
    SqlSession(std::string path, std::chrono::milliseconds busyTimeout, ColumnKindOf kindOf);
    ~SqlSession();
    SqlSession(const SqlSession&) = delete;
    SqlSession& operator=(const SqlSession&) = delete;

    /// All further use throws Error.
    void Close();

    const std::string& Path() const { return path_; }

    /// Remembers the state of the file while it is unused.
    void Leave() { left_ = Look(); }

    /// Returns whether the path still names the file that is open here, and nothing has changed it since Leave: a copy written
    /// over it must not be mixed with cached content of the old one. Throws Error when the file no longer exists.
    bool IsAsLeft() const { return Look() == left_; }

    /// Returns false after any failure: the next user should open the file again, which produces the right message for what is
    /// wrong with it.
    bool IsSound() const { return sound_; }
    void Distrust() { sound_ = false; }

    /// Runs a query. It holds the file for reading until Next has returned false or it is destroyed, which should be soon. Throws
    /// Error.
    QSqlQuery Select(const std::string& sql);
    /// The same with a value for each "?" in it.
    QSqlQuery Select(const std::string& sql, const SqlBound& values);
    /// The same, prepared once for many uses; the reference is valid until the next call. Finish it after use.
    QSqlQuery& SelectPrepared(const std::string& sql, const SqlBound& values);

    /// Returns whether there is another row. Throws Error like Select.
    bool Next(QSqlQuery& query);

    struct Changed {
        int rows;
        std::int64_t insertedId;
    };

    /// Runs a statement that changes rows, with a value for each "?" in it, in one durable transaction. Throws Error.
    Changed Change(const std::string& sql, const SqlBound& values);

    /// Begins a transaction for several changes; it takes the file for writing at once. Throws Error.
    void Begin();
    void Commit();

    /// Locks everyone else out of the file from here to Close. Throws Error.
    void TakeForItself();

    /// Writes a compact copy of the database into the empty file `path`. Throws Error.
    void CopyInto(const std::string& path);

    /// Throws Error when the file cannot be written now. The file stays unchanged.
    void TryWriting();

    bool InTransaction() const { return inTransaction_; }

    /// Returns the columns of a table. Throws Error when there is no such table.
    std::shared_ptr<const SqlColumns> ColumnsOf(const std::string& table);

    bool HasTable(const std::string& name);

    /// Returns the ORDER BY list that sorts the rows of a table by its primary key. Throws Error.
    const std::string& KeyOf(const std::string& table);

    const ColumnKindOf& KindOf() const { return kindOf_; }

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

    std::string path_;
    ColumnKindOf kindOf_;
    FileLook left_;
    std::unique_ptr<Driver> driver_;
    bool open_ = false;
    bool sound_ = true;
    bool inTransaction_ = false;
    bool readyForChanges_ = false;
};

}  // namespace korvane
