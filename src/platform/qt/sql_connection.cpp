#include "platform/qt/sql_connection.h"

#include <QtCore/QVariant>
#include <utility>

#include "base/ignore_errors.h"
#include "platform/qt/pg_session.h"
#include "platform/qt/sql_text.h"
#include "platform/qt/sqlite_session.h"

namespace korvane {
namespace {

/// While a check waits, a window, a publication and a command may each have a piece of work of their own.
constexpr std::size_t kMostIdle = 4;

}  // namespace

std::unique_ptr<SqlRowLock> SqlRowLock::Try(std::shared_ptr<SqlStoreState> state, std::shared_ptr<SqlSession> session,
                                            const std::string& table, std::int64_t id) {
    const SqlRowName row(session->Path(), table, id);
    if (!state->lockedRows.insert(row).second) return nullptr;
    std::unique_ptr<SqlRowLock> lock(new SqlRowLock(std::move(state), std::move(session), row));
    lock->onServer_ = lock->session_->TryLockRow(table, id);
    return lock->onServer_ ? std::move(lock) : nullptr;
}

SqlRowLock::~SqlRowLock() {
    state_->lockedRows.erase(row_);
    if (onServer_) IgnoreErrors([&] { session_->UnlockRow(std::get<1>(row_), std::get<2>(row_)); });
}

void QtSqlConnection::Open() {
    if (session_) throw Error("The connection is already open.");
    const std::string path = DatabaseFileOf(ConnectionString());
    if (state_->shared.Is(path)) {
        session_ = TakeIdle();
        if (!session_) session_ = Connected();
    } else {
        session_ = TakeKept(path);
        if (!session_) session_ = std::make_shared<SqliteSession>(path, state_->busyTimeout, state_->kindOf);
    }
    ++state_->inUse;
}

SqlSession& QtSqlConnection::Opened() const {
    if (!session_) throw Error("The connection is not open.");
    return *session_;
}

bool QtSqlConnection::TryTakeDuty(std::string_view name) {
    SqlSession& session = Opened();
    if (duties_.contains(name)) return true;
    if (!session.TryTakeDuty(std::string(name))) return false;
    duties_.emplace(name);
    return true;
}

void QtSqlConnection::ReleaseDuty(std::string_view name) {
    const auto duty = duties_.find(name);
    if (duty == duties_.end()) return;
    const std::string released = *duty;
    duties_.erase(duty);
    Opened().ReleaseDuty(released);
}

void QtSqlConnection::Execute(std::string_view statement, const std::vector<Value>& values) {
    QVariantList bound;
    for (const Value& value : values)
        bound.append(ToBind(value));
    values.empty() ? Opened().Execute(std::string(statement)) : void(Opened().Change(std::string(statement), bound));
}

// Opening a file and reading its schema costs more than most of the work that follows.
std::shared_ptr<SqlSession> QtSqlConnection::TakeKept(const std::string& path) {
    const auto kept = std::exchange(state_->kept, nullptr);
    if (!kept || kept->Path() != path || !kept->IsAsLeft()) return nullptr;
    return kept;
}

// Several hosts may be addressed: if one is not the other's standby, it has another list.
std::shared_ptr<SqlSession> QtSqlConnection::Connected() {
    auto session = std::make_shared<PgSession>(state_->shared, state_->kindOf);
    if (state_->listId.empty()) state_->listId = session->ListId();
    if (state_->listId != session->ListId())
        throw Error("The database " + session->Shown() + " holds another list than the one that was opened before.");
    return session;
}

std::shared_ptr<SqlSession> QtSqlConnection::TakeIdle() {
    while (!state_->idle.empty()) {
        const auto session = std::move(state_->idle.back());
        state_->idle.pop_back();
        if (session->IsAsLeft()) return session;
    }
    return nullptr;
}

// Recordsets that still use the session must not reach the file any more, so the session is kept only if it is unused and sound.
void QtSqlConnection::Close() {
    if (!session_) return;
    --state_->inUse;
    while (!duties_.empty() && IgnoreErrors([&] { ReleaseDuty(*duties_.begin()); })) {
    }
    duties_.clear();
    if (session_.use_count() == 1 && session_->IsSound() && !session_->InTransaction()) {
        IgnoreErrors([&] { Keep(); });
    } else {
        session_->Close();
    }
    session_.reset();
}

void QtSqlConnection::Keep() {
    session_->Leave();
    if (!state_->shared.Is(session_->Path())) {
        state_->kept = session_;
    } else if (state_->idle.size() < kMostIdle) {
        state_->idle.push_back(session_);
    }
}

}  // namespace korvane
