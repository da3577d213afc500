// Port: the store, represented by two objects. A Connection and a Recordset are opened for one piece of work and closed at its
// end. An open Recordset by itself locks nothing in the store: its keys or rows are read when it is opened. All operations may
// block on the disk for milliseconds (up to a second while another process holds the file), and throw Error with a description.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/datetime.h"
#include "base/error.h"
#include "base/value.h"

namespace korvane {

/// The row of an Update was removed by another user of the store after it was read.
class RowGoneError : public Error {
public:
    using Error::Error;
};

/// The file is no database of this kind, or is damaged.
class DamagedError : public Error {
public:
    using Error::Error;
};

/// Another program has locked the file.
class LockedError : public Error {
public:
    using Error::Error;
};

/// The server of the database cannot be reached, or the connection to it was lost. What was being written may be durable or not.
class ServerAwayError : public Error {
public:
    using Error::Error;
};

class Connection {
public:
    virtual ~Connection() = default;

    /// "DRIVER={SQLite};DBQ=<file>;..." or "Provider=SQLite; Data Source=<file>;..."; a file whose name contains ";" or begins with
    /// a double quote must be quoted as by std::quoted. The rest is ignored.
    void SetConnectionString(std::string text) { connectionString_ = std::move(text); }
    const std::string& ConnectionString() const { return connectionString_; }

    /// Throws Error when the file is missing, is not a database of this kind (it then stays unchanged), cannot be read, or is
    /// locked.
    virtual void Open() = 0;

    /// Closing a closed connection does nothing.
    virtual void Close() = 0;

    /// All changes between BeginTrans and CommitTrans become durable together; after a crash in between none of them remains.
    /// Transactions do not nest and must not be held across a wait for anything but the disk. Closing the connection rolls back.
    virtual void BeginTrans() = 0;
    virtual void CommitTrans() = 0;

    /// Runs a statement that returns no rows, such as "CREATE TABLE IF NOT EXISTS ...", with a value for each "?" in it, durably or
    /// as part of a transaction.
    virtual void Execute(std::string_view statement, const std::vector<Value>& values = {}) = 0;

    /// Throws Error when the file cannot be written now. The file does not change by a single byte.
    virtual void TryWriting() = 0;

    /// Returns whether there is a table of that name, which is case-insensitive.
    virtual bool HasTable(std::string_view name) = 0;

    /// Takes a duty that one instance at a time may do, such as "publish". It is held until ReleaseDuty or Close, or until the
    /// connection is lost. Returns false while another connection of any instance holds it. With a file there are no other
    /// instances: always true.
    virtual bool TryTakeDuty(std::string_view name) = 0;
    virtual void ReleaseDuty(std::string_view name) = 0;

    /// Returns the server's time, local in the time zone of its list; nothing with a file, which has no clock.
    virtual std::optional<DateTime> Now() = 0;

    /// Returns the server's database and version for the operator, without secrets: "'list' on db1, PostgreSQL 15.4". Empty with a
    /// file.
    virtual std::string Server() { return ""; }

    /// Called after rows were added with IDs of their own: a row that is added without one gets a higher ID than all of them. A
    /// file does that by itself.
    virtual void FollowIds(std::string_view /*table*/) {}

private:
    std::string connectionString_;
};

enum class CursorType { Keyset = 1, Static = 3 };
enum class LockType { Pessimistic = 2, Optimistic = 3, BatchOptimistic = 4 };

/// The kind of a column, which determines what its fields return and accept.
enum class ColumnKind { Text, Int16, Int32, Whole, Double, YesNo, DateTime };

/// The rows of one query with a cursor on one of them.
///
/// Keyset: the rows are fixed at Open; their values are read on access, and a walk that reads one column of each row reads that
/// column of some rows ahead. Static: a copy of the rows as they were at Open. In both, rows of a query of the form "SELECT *
/// from <one table> ..." can be changed. Rows of one table come in order of the primary key if the query names no order.
///
/// A changed field is pending until Update: this Recordset reads the new value, all others the old one. Moving the cursor with
/// pending changes updates first; Close discards them.
///
/// Pessimistic locking: the first change of a row locks it until the cursor leaves the row or the Recordset is closed; a second
/// Recordset that would lock the same row throws. The lock holds within this program, on a server also among all instances, and
/// there it goes with the connection. Nothing else is blocked, readers least of all.
class Recordset {
public:
    virtual ~Recordset() = default;

    /// One column of the current row.
    class Field {
    public:
        Field(Recordset& recordset, std::string_view name) : recordset_(recordset), name_(name) {}
        korvane::Value Value() const { return recordset_.Read(name_); }
        void operator=(const korvane::Value& value) { recordset_.Write(name_, value); }

    private:
        Recordset& recordset_;
        std::string_view name_;
    };

    /// `source` is an SQL text in which #month/day/year time# denotes a moment. The connection must be open and outlive this.
    virtual void Open(std::string_view source, Connection& connection, CursorType cursor, LockType lock) = 0;

    /// The name is case-insensitive. Throws Error when the column does not exist or there is no current row. Writing converts to
    /// the column's kind: texts that are not numbers throw TypeMismatchError, numbers beyond a 16- or 32-bit column
    /// OverflowError; blank is always accepted, and for dates the empty text counts as blank.
    Field Fields(std::string_view name) { return Field(*this, name); }

    /// The exact number of rows.
    virtual int RecordCount() const = 0;

    /// True if there is no current row: the result is empty, or the cursor is past its end.
    virtual bool Eof() const = 0;
    virtual void MoveNext() = 0;

    /// Pessimistic: locks the current row now, without waiting. Returns false when another recordset or instance has locked it.
    /// After true the row is read anew, with what others have written until now; it may also be gone.
    virtual bool TryLock() = 0;

    /// Makes a new row current; Update adds it to the store and to the result.
    virtual void AddNew() = 0;

    /// Writes the changed columns of the current row, and no others, in one durable transaction. Throws RowGoneError when the row
    /// no longer exists; the changes stay pending after an error. Does nothing without changes.
    virtual void Update() = 0;

    /// Removes the current row from the store, durably. MoveNext then goes to the row after it.
    virtual void Delete() = 0;

    /// Closing a closed Recordset does nothing.
    virtual void Close() = 0;

protected:
    virtual korvane::Value Read(std::string_view name) = 0;
    virtual void Write(std::string_view name, const korvane::Value& value) = 0;
};

/// Creates the objects of one store.
class Store {
public:
    virtual ~Store() = default;
    virtual std::unique_ptr<Connection> NewConnection() = 0;
    virtual std::unique_ptr<Recordset> NewRecordset() = 0;

    /// Checks the database `file` for damage, writes a compact copy of it to `copy` (replacing any file of that name), calls
    /// `copied` when the copy is on the disk, and then compacts `file` itself in one transaction. All others are locked out
    /// meanwhile. Both files hold the same rows. A crash in between leaves the file either unchanged or compacted, and everyone
    /// who has it open can continue. Needs disk space for two more copies, and blocks for seconds with a large file.
    ///
    /// Throws Error like Connection::Open, "... is damaged: ..." for a damaged file, for a full disk, for a file that is in use,
    /// and whatever `copied` throws. `file` is then unchanged, and a copy that `copied` did not move away is removed.
    virtual void Compact(const std::string& file, const std::string& copy, const std::function<void()>& copied) = 0;

    /// Releases everything that is kept open between two pieces of work: until the next Connection, this process has nothing of
    /// the store open.
    virtual void Rest() {}

    /// Returns whether a Connection is open: the file must not be replaced then.
    virtual bool InUse() const { return false; }
};

}  // namespace korvane
