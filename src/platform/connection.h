// Port: the store, by its two objects. A Connection and a Recordset are opened for one piece of work and closed at its end.
// Nothing in the store stays locked while a Recordset is merely open: its keys or rows are read when it is opened. All operations
// may block on the disk for milliseconds (up to a second when another process holds the file), and throw Error with a
// description.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/error.h"
#include "base/value.h"

namespace korvane {

/// The row of an Update has been removed by somebody else since it was read.
class RowGoneError : public Error {
public:
    using Error::Error;
};

class Connection {
public:
    virtual ~Connection() = default;

    /// "DRIVER={SQLite};DBQ=<file>;..." or "Provider=SQLite; Data Source=<file>;...". Keys in any case, others are passed over.
    void SetConnectionString(std::string text) { connectionString_ = std::move(text); }
    const std::string& ConnectionString() const { return connectionString_; }

    /// Throws when the file is missing, is not a database of this kind (it is then left untouched), cannot be read, or is locked.
    virtual void Open() = 0;

    /// Closing a closed connection does nothing.
    virtual void Close() = 0;

    /// What is changed from here to CommitTrans becomes durable together; a crash in between leaves none of it. Not nested, and
    /// never held across a wait for anything but the disk. Closing the connection drops it.
    virtual void BeginTrans() = 0;
    virtual void CommitTrans() = 0;

    /// Throws Error when nothing can be written to the file now. It stays as it is, to the byte.
    virtual void TryWriting() = 0;

private:
    std::string connectionString_;
};

enum class CursorType { Keyset = 1, Static = 3 };
enum class LockType { Pessimistic = 2, Optimistic = 3, BatchOptimistic = 4 };

/// The kind of a column, which fixes what its fields give and accept.
enum class ColumnKind { Id, Text, Int16, Int32, Whole, Double, YesNo, DateTime };

/// The rows of one query with a cursor on one of them.
///
/// Keyset: the rows are fixed at Open, their values are read when they are looked at; a walk that looks at one column of each row
/// reads that column of some rows ahead. Static: a copy of the rows as they were at Open. Rows of a query of the form "SELECT *
/// from <one table> ..." can be changed in both. Rows of one table for which the query names no order come in order of the
/// primary key.
///
/// A changed field is pending: this Recordset reads the new value, everybody else the old one, until Update. Moving on
/// with pending changes updates first; Close drops them.
///
/// Pessimistic locking: the first change of a row locks it within this program until the cursor leaves the row or the
/// Recordset is closed; a second Recordset that would lock the same row throws. Nobody else is held up, least of all readers.
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

    /// `source` is an SQL text in which #month/day/year time# marks a moment. The connection must be open and outlive this.
    virtual void Open(std::string_view source, Connection& connection, CursorType cursor, LockType lock) = 0;

    /// The name in any case. Throws when the column does not exist or there is no current row. Writing converts to the column's
    /// kind: texts that are no number throw TypeMismatchError, numbers beyond a 16- or 32-bit column OverflowError; blank is
    /// always accepted, and the empty text counts as blank for dates.
    Field Fields(std::string_view name) { return Field(*this, name); }

    /// The exact number of rows.
    virtual int RecordCount() const = 0;

    /// No current row: the result is empty, or the cursor went past its end.
    virtual bool Eof() const = 0;
    virtual void MoveNext() = 0;

    /// A new row becomes current; Update adds it to the store and to the result.
    virtual void AddNew() = 0;

    /// Writes the changed columns of the current row, and only them, in one durable transaction. Throws RowGoneError when the row
    /// is gone; the changes stay pending after an error. Without changes it does nothing.
    virtual void Update() = 0;

    /// Removes the current row from the store, durably. The cursor stays before the next row: MoveNext goes there.
    virtual void Delete() = 0;

    /// Closing a closed Recordset does nothing.
    virtual void Close() = 0;

protected:
    virtual korvane::Value Read(std::string_view name) = 0;
    virtual void Write(std::string_view name, const korvane::Value& value) = 0;
};

/// Makes the objects of one store.
class Store {
public:
    virtual ~Store() = default;
    virtual std::unique_ptr<Connection> NewConnection() = 0;
    virtual std::unique_ptr<Recordset> NewRecordset() = 0;

    /// Looks through the database `file` for damage, writes a compact copy of it to `copy`, in place of what bore that name,
    /// calls `copied` when that is on the disk, and then compacts `file` itself in one transaction. Nobody else gets at it
    /// meanwhile. Both have the same rows. A crash in between leaves the file as it was or compacted, and everybody who has it
    /// open can go on. Needs room for two more copies, and blocks for seconds with a large file.
    ///
    /// Throws Error as Connection::Open does, "... is damaged: ..." for a damaged file, for a full disk, for a file that somebody
    /// else is using, and what `copied` throws. `file` is then as it was, and a copy that `copied` did not take away is gone.
    virtual void Compact(const std::string& file, const std::string& copy, const std::function<void()>& copied) = 0;

    /// Lets go of everything that is kept ready between two pieces of work: until the next Connection nothing of the store is
    /// open in this process.
    virtual void Rest() {}
};

}  // namespace korvane
