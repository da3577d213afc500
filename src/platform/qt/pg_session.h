// One connection to a PostgreSQL server: the rows of the file, shared by several instances. Its advisory locks, one for a row or a
// duty, go with it.
#pragma once

#include <chrono>

#include "platform/qt/pg_address.h"
#include "platform/qt/sql_session.h"

class QSqlError;

namespace korvane {

class PgSession : public SqlSession {
public:
    /// Connects, and makes the schema or adds what an older one lacks. Throws ServerAwayError when there is no connection, Error
    /// when the driver is missing or the database is none for this program; neither holds a secret.
    PgSession(const SharedDatabase& shared, ColumnKindOf kindOf);
    ~PgSession() override;

    void Close() override;

    void Leave() override {}
    /// Asks nothing of the server: a connection that was lost has something to read, be it the end.
    bool IsAsLeft() const override;

    /// Runs a statement in the server's own form.
    QSqlQuery Ask(const std::string& statement);
    /// Returns the first value of its result.
    QVariant Answer(const std::string& statement);

    /// Returns "'database' on host", for messages.
    std::string Shown() const { return address_.Shown(); }
    /// Tells this list from all others.
    const std::string& ListId() const { return listId_; }

    using SqlSession::Select;
    QSqlQuery Select(const std::string& sql, const SqlBound& values) override;
    QSqlQuery& SelectPrepared(const std::string& sql, const SqlBound& values) override;
    int Change(const std::string& sql, const SqlBound& values) override;
    std::int64_t Insert(const std::string& table, const std::string& sql, const SqlBound& values, bool givesId) override;
    void Execute(const std::string& statement) override;

    void Begin() override;
    void Commit() override;
    void TryWriting() override;

    bool HasTable(const std::string& name) override;
    std::vector<QVariant> DefaultsOf(const std::string& table) override;
    bool NamesColumns() const override { return true; }
    void CompleteOrder(SelectText& select) override;

    bool TryLockRow(const std::string& table, std::int64_t id) override;
    void UnlockRow(const std::string& table, std::int64_t id) override;
    bool TryTakeDuty(const std::string& name) override;
    void ReleaseDuty(const std::string& name) override;

    std::optional<DateTime> Now() override;
    std::string Server() override;
    void FollowIds(const std::string& table) override;

protected:
    std::shared_ptr<const SqlColumns> ReadColumns(const std::string& table) override;
    std::string ReadKey(const std::string& table) override;
    [[noreturn]] void FailOf(const QSqlQuery& query) override;

private:
    void Connect(std::chrono::milliseconds patience);
    void SetUp(std::chrono::milliseconds patience);
    bool Run(QSqlQuery& query, const std::string& statement);
    std::string Filled(const std::string& sql, const SqlBound& values);
    QSqlQuery AskInTransaction(std::string statement);
    std::string LockOf(const std::string& what, std::int64_t id) const;
    [[noreturn]] void Fail(const QSqlError& error);

    struct Driver;

    PgAddress address_;
    std::unique_ptr<Driver> driver_;
    std::map<std::string, std::vector<std::string>> pieces_;  ///< of translated statements
    std::string schema_;                                      ///< the server's name space of the tables
    std::string listId_;
};

}  // namespace korvane
