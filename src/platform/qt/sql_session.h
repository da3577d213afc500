// One open database, a file or a connection to a server: what the objects of the store need of it, whichever it is.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/datetime.h"
#include "base/error.h"
#include "base/text.h"
#include "platform/qt/sql_columns.h"

class QSqlQuery;
class QVariant;
template <typename T>
class QList;

namespace korvane {

struct SelectText;
using SqlBound = QList<QVariant>;

/// Queries and statements are in SQLite's form. Everything throws Error.
class SqlSession {
public:
    virtual ~SqlSession() = default;
    SqlSession(const SqlSession&) = delete;
    SqlSession& operator=(const SqlSession&) = delete;

    /// All further use throws Error.
    virtual void Close() = 0;

    const std::string& Path() const { return path_; }

    /// Remembers the state of the database while it is unused.
    virtual void Leave() = 0;
    /// Returns whether it can be used again as it was when Leave was called.
    virtual bool IsAsLeft() const = 0;

    /// Returns false after any failure: the next user should open the database again, which produces the right message for what
    /// is wrong with it.
    bool IsSound() const { return sound_; }
    void Distrust() { sound_ = false; }

    /// Runs a query. It may hold a file for reading until Next has returned false or it is destroyed, which should be soon.
    QSqlQuery Select(const std::string& sql);
    /// The same with a value for each "?" in it.
    virtual QSqlQuery Select(const std::string& sql, const SqlBound& values) = 0;
    /// The same, prepared once for many uses; the reference is valid until the next call. Finish it after use.
    virtual QSqlQuery& SelectPrepared(const std::string& sql, const SqlBound& values) = 0;

    /// Returns whether there is another row.
    bool Next(QSqlQuery& query);

    /// Runs a statement that changes rows, with a value for each "?" in it, in one durable transaction. Returns their number.
    virtual int Change(const std::string& sql, const SqlBound& values) = 0;
    /// The same with a statement that adds one row; returns its ID. `givesId`: the statement names it.
    virtual std::int64_t Insert(const std::string& table, const std::string& sql, const SqlBound& values, bool givesId) = 0;
    /// Runs a statement that creates or changes tables.
    virtual void Execute(const std::string& statement) = 0;

    /// Begins a transaction for several changes. A statement that fails in it changes nothing, and the others stay.
    virtual void Begin() = 0;
    virtual void Commit() = 0;
    bool InTransaction() const { return inTransaction_; }

    /// Throws Error when the database cannot be written now. It stays unchanged.
    virtual void TryWriting() = 0;

    virtual bool HasTable(const std::string& name) = 0;
    /// Returns the columns of a table. Throws Error when there is no such table.
    std::shared_ptr<const SqlColumns> ColumnsOf(const std::string& table);
    /// Returns the columns' values in a row that is added without them.
    virtual std::vector<QVariant> DefaultsOf(const std::string& table) = 0;
    /// Returns whether a copy of whole rows must name the columns, since "*" would not give them in the stored form.
    virtual bool NamesColumns() const = 0;
    /// Otherwise rows without an order would come in any.
    virtual void CompleteOrder(SelectText& select);

    /// Locks a row, or takes a duty, among all sessions of all programs until the second call or the end of the session. Returns
    /// false when another session holds it.
    virtual bool TryLockRow(const std::string& table, std::int64_t id) = 0;
    virtual void UnlockRow(const std::string& table, std::int64_t id) = 0;
    virtual bool TryTakeDuty(const std::string& name) = 0;
    virtual void ReleaseDuty(const std::string& name) = 0;

    virtual std::optional<DateTime> Now() = 0;
    virtual std::string Server() { return ""; }
    virtual void FollowIds(const std::string& /*table*/) {}

    const ColumnKindOf& KindOf() const { return kindOf_; }

protected:
    SqlSession(std::string path, ColumnKindOf kindOf);

    virtual std::shared_ptr<const SqlColumns> ReadColumns(const std::string& table) = 0;
    /// Returns the ORDER BY list that sorts the rows of a table by its primary key.
    virtual std::string ReadKey(const std::string& table) = 0;
    /// Throws the Error for what went wrong last with the query.
    [[noreturn]] virtual void FailOf(const QSqlQuery& query) = 0;

    const std::string& KeyOf(const std::string& table);

    bool inTransaction_ = false;

private:
    std::string path_;
    ColumnKindOf kindOf_;
    bool sound_ = true;
    std::map<std::string, std::shared_ptr<const SqlColumns>, LessNoCase> columns_;
    std::map<std::string, std::string, LessNoCase> keys_;  ///< by table
};

}  // namespace korvane
