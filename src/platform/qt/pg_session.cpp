#include "platform/qt/pg_session.h"

#include <dlfcn.h>
#include <sys/socket.h>

#include <QtCore/QVariant>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlDriver>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <cerrno>
#include <optional>

#include "platform/connection.h"
#include "platform/qt/pg_errors.h"
#include "platform/qt/pg_schema.h"
#include "platform/qt/pg_text.h"
#include "platform/qt/pg_value.h"
#include "platform/qt/pg_watch.h"
#include "platform/qt/sql_text.h"

namespace korvane {
namespace {

constexpr int kOldestServer = 150000;
constexpr std::size_t kMostPieces = 200;  // a caller that makes up ever new statements must not fill the memory
/// Ids that were given may be ahead of those that the server gives; several instances may find that at once.
constexpr int kMostTries = 20;

/// Before and after each change in a transaction, so that one that fails takes no other with it.
const std::string kNextSavepoint = "; RELEASE SAVEPOINT korvane; SAVEPOINT korvane";

/// The library is there if and only if the driver is loaded; this program does not link it.
int SocketOf(const QSqlDriver& driver) {
    const QVariant handle = driver.handle();
    void* const library = ::dlopen("libpq.so.5", RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr || handle.isNull()) return -1;
    const auto socketOf = reinterpret_cast<int (*)(const void*)>(::dlsym(library, "PQsocket"));
    const int socket = socketOf == nullptr ? -1 : socketOf(*static_cast<void* const*>(handle.constData()));
    ::dlclose(library);
    return socket;
}

// Seconds would be too coarse for tests.
std::string Setting(const std::string& name, std::chrono::milliseconds value) {
    return ", set_config('" + name + "', '" + std::to_string(value.count()) + "', false)";
}

}  // namespace

struct PgSession::Driver {
    struct OwnDatabase : QSqlDatabase {
        OwnDatabase() : QSqlDatabase(QStringLiteral("QPSQL")) {}
    };

    OwnDatabase database;
    std::optional<PgWatch> watch;
    int socket = -1;
    QSqlQuery last;
};

PgSession::PgSession(const SharedDatabase& shared, ColumnKindOf kindOf)
    : SqlSession(shared.file, std::move(kindOf)), address_(ParsePgAddress(shared.address)) {
    RequirePgDriver();
    driver_ = std::make_unique<Driver>();
    Connect(shared.patience);
    SetUp(shared.patience);
    listId_ = PreparePgSchema(*this, shared.schema);
}

PgSession::~PgSession() {
    if (driver_) PgSession::Close();
}

void PgSession::Connect(std::chrono::milliseconds patience) {
    QSqlDatabase& database = driver_->database;
    if (!database.isValid()) throw Error(kNoPgDriver);
    database.setHostName(QString::fromStdString(address_.hosts));
    database.setDatabaseName(QString::fromStdString(address_.database));
    database.setUserName(QString::fromStdString(address_.user));
    database.setConnectOptions(QString::fromStdString(address_.ConnectOptions()));
    if (!database.open()) throw PgConnectError(address_, database.lastError());
    driver_->socket = SocketOf(*database.driver());
    if (driver_->socket >= 0) driver_->watch.emplace(driver_->socket, patience);
}

// A client that is cut off, or stands still, must not hold its locks for hours.
void PgSession::SetUp(std::chrono::milliseconds patience) {
    const auto options = address_.parameters.find("options");
    const bool setsLimit = options != address_.parameters.end() && Holds(options->second, "statement_timeout");
    QSqlQuery state = Ask(
        "SELECT current_setting('server_version_num')::integer, current_schema()::text, set_config('tcp_keepalives_idle', '10', "
        "false), set_config('tcp_keepalives_interval', '5', false), set_config('tcp_keepalives_count', '3', false), "
        "set_config('standard_conforming_strings', 'on', false), set_config('client_min_messages', 'error', false), "
        "set_config('DateStyle', 'ISO, YMD', false)" +
        Setting("idle_in_transaction_session_timeout", 4 * patience) + Setting("lock_timeout", patience / 3) +
        (setsLimit ? "" : Setting("statement_timeout", patience * 2 / 3)));
    Next(state);
    if (state.value(0).toInt() < kOldestServer)
        throw Error("The server of the database " + Shown() + " is too old: it must be PostgreSQL 15 or later.");
    schema_ = state.value(1).toString().toStdString();
    if (schema_.empty()) throw Error("The database " + Shown() + " has no schema that this user may use.");
}

void PgSession::Close() {
    driver_->last = QSqlQuery();
    driver_->watch.reset();
    driver_->socket = -1;
    driver_->database.close();
}

bool PgSession::IsAsLeft() const {
    char byte = 0;
    return driver_->socket < 0
               ? driver_->database.isOpen()
               : ::recv(driver_->socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 && (errno == EAGAIN || errno == EINTR);
}

QSqlQuery PgSession::Ask(const std::string& statement) {
    if (!driver_->database.isOpen()) throw Error("The connection to '" + Path() + "' is closed.");
    QSqlQuery query(driver_->database);
    if (!Run(query, statement)) Fail(query.lastError());
    return query;
}

bool PgSession::Run(QSqlQuery& query, const std::string& statement) {
    if (driver_->watch) driver_->watch->Begin();
    const bool done = query.exec(QString::fromStdString(statement));
    if (driver_->watch) driver_->watch->End();
    return done;
}

QVariant PgSession::Answer(const std::string& statement) {
    QSqlQuery query = Ask(statement);
    return Next(query) ? query.value(0) : QVariant();
}

QSqlQuery PgSession::Select(const std::string& sql, const SqlBound& values) {
    return Ask(Filled(sql, values));
}

QSqlQuery& PgSession::SelectPrepared(const std::string& sql, const SqlBound& values) {
    driver_->last = QSqlQuery();
    return driver_->last = Ask(Filled(sql, values));
}

// The driver's own preparing costs a second round trip for each new statement, and ties statements to columns that may change.
std::string PgSession::Filled(const std::string& sql, const SqlBound& values) {
    auto found = pieces_.find(sql);
    if (found == pieces_.end()) {
        if (pieces_.size() >= kMostPieces) pieces_.clear();
        found = pieces_.emplace(sql, PgPieces(sql)).first;
    }
    const std::vector<std::string>& pieces = found->second;
    if (pieces.size() != static_cast<std::size_t>(values.size()) + 1) throw Error("A value is missing for a query.");
    std::string filled = pieces.front();
    for (std::size_t i = 1; i < pieces.size(); ++i)
        filled += PgValue(values[static_cast<qsizetype>(i - 1)]) + pieces[i];
    return filled;
}

QSqlQuery PgSession::AskInTransaction(std::string statement) {
    if (inTransaction_) statement += kNextSavepoint;
    return Ask(statement);
}

int PgSession::Change(const std::string& sql, const SqlBound& values) {
    return AskInTransaction(Filled(sql, values)).numRowsAffected();
}

std::int64_t PgSession::Insert(const std::string& table, const std::string& sql, const SqlBound& values, bool givesId) {
    const std::string statement = Filled(sql, values) + " RETURNING id";
    for (int tries = 1;; ++tries) {
        try {
            QSqlQuery query = AskInTransaction(statement);
            Next(query);
            return query.value(0).toLongLong();
        } catch (const PgTakenError&) {
            if (givesId || tries == kMostTries) throw;
        }
        FollowIds(table);
    }
}

// Two instances may create the same table at once, which the server takes badly.
void PgSession::Execute(const std::string& statement) {
    const bool isOwn = !inTransaction_;
    if (isOwn) Begin();
    Ask("SELECT pg_advisory_xact_lock(" + LockOf("schema", 0) + ")");
    for (const std::string& each : PgDefinitions(statement))
        AskInTransaction(each);
    if (isOwn) Commit();
}

void PgSession::Begin() {
    Ask("BEGIN; SAVEPOINT korvane");
    inTransaction_ = true;
}

void PgSession::Commit() {
    inTransaction_ = false;
    Ask("COMMIT");
}

void PgSession::TryWriting() {
    if (Answer("SELECT pg_is_in_recovery() OR current_setting('transaction_read_only') = 'on'").toBool())
        throw Error("The database " + Shown() + " is read-only.");
}

// SQLite gives rows that are equal in an order by their place in the table or in an index; here they would come in any.
void PgSession::CompleteOrder(SelectText& select) {
    const bool lacks = select.LacksOrder();
    SqlSession::CompleteOrder(select);
    if (!lacks && select.IsOneTable()) select.OrderAlsoBy("`ID`");
}

void PgSession::FailOf(const QSqlQuery& query) {
    Fail(query.lastError());
}

void PgSession::Fail(const QSqlError& error) {
    const bool isTaken = error.nativeErrorCode() == QLatin1String("23505");
    if (!isTaken) Distrust();
    if (inTransaction_ && !IsLost(error)) {
        QSqlQuery back(driver_->database);
        Run(back, "ROLLBACK TO SAVEPOINT korvane");
    }
    ThrowPgError(address_, error, driver_->watch && driver_->watch->HasCut());
}

}  // namespace korvane
