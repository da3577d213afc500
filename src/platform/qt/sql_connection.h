// The Connection: one piece of work with the database file. The file itself stays open between pieces of work while the program
// is busy.
#pragma once

#include <memory>

#include "platform/qt/sql_session.h"
#include "platform/qt/sql_state.h"

namespace korvane {

class QtSqlConnection : public Connection {
public:
    explicit QtSqlConnection(std::shared_ptr<SqlStoreState> state) : state_(std::move(state)) {}
    ~QtSqlConnection() override { QtSqlConnection::Close(); }

    void Open() override;
    void Close() override;
    void BeginTrans() override;
    void CommitTrans() override;
    void Execute(std::string_view statement) override;
    void TryWriting() override;

    /// Returns nothing while it is closed.
    const std::shared_ptr<SqlSession>& Session() const { return session_; }

private:
    std::shared_ptr<SqlSession> TakeKept(const std::string& path);

    std::shared_ptr<SqlStoreState> state_;
    std::shared_ptr<SqlSession> session_;
};

}  // namespace korvane
