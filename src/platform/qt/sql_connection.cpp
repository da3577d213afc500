#include "platform/qt/sql_connection.h"

#include <QtCore/QVariant>
#include <utility>

#include "base/ignore_errors.h"
#include "platform/qt/sql_text.h"

namespace korvane {

void QtSqlConnection::Open() {
    if (session_) throw Error("The connection is already open.");
    const std::string path = DatabaseFileOf(ConnectionString());
    session_ = TakeKept(path);
    if (!session_) session_ = std::make_shared<SqlSession>(path, state_->busyTimeout, state_->kindOf);
    ++state_->inUse;
}

SqlSession& QtSqlConnection::Opened() const {
    if (!session_) throw Error("The connection is not open.");
    return *session_;
}

void QtSqlConnection::Execute(std::string_view statement) {
    Opened().Change(std::string(statement), {});
}

bool QtSqlConnection::TryTakeDuty(std::string_view /*name*/) {
    Opened();
    return true;
}

void QtSqlConnection::ReleaseDuty(std::string_view /*name*/) {}

std::optional<DateTime> QtSqlConnection::Now() {
    return std::nullopt;
}

// Opening a file and reading its schema costs more than most of the work that follows.
std::shared_ptr<SqlSession> QtSqlConnection::TakeKept(const std::string& path) {
    const auto kept = std::exchange(state_->kept, nullptr);
    if (!kept || kept->Path() != path || !kept->IsAsLeft()) return nullptr;
    return kept;
}

// Recordsets that still use the session must not reach the file any more, so the session is kept only if it is unused and sound.
void QtSqlConnection::Close() {
    if (!session_) return;
    --state_->inUse;
    if (session_.use_count() == 1 && session_->IsSound() && !session_->InTransaction()) {
        IgnoreErrors([&] {
            session_->Leave();
            state_->kept = session_;
        });
    } else {
        session_->Close();
    }
    session_.reset();
}

}  // namespace korvane
