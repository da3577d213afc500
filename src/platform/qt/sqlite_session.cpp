#include "platform/qt/sqlite_session.h"

#include <sys/stat.h>

#include <QtCore/QVariant>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlRecord>
#include <cerrno>
#include <cstring>
#include <map>

#include "platform/connection.h"
#include "platform/qt/sql_text.h"
#include "platform/qt/sqlite_file.h"

namespace korvane {
namespace {

// SQLite's page cache, in KiB: walking an index of thousands of rows needs only a few pages.
const std::string kCacheSize = "PRAGMA cache_size=-256";
// The journal is emptied and synced after each transaction, so that a commit immediately survives a power cut, and the file is
// complete by itself. This costs less than creating and removing a journal each time.
const std::string kJournal = "PRAGMA journal_mode=TRUNCATE";
const std::string kSynchronous = "PRAGMA synchronous=FULL";

// Enough for the program's own statements; a caller that makes up ever new ones must not fill the memory.
constexpr std::size_t kMostStatements = 40;

// The primary codes of https://sqlite.org/rescode.html.
enum SqliteCode { Busy = 5, Locked = 6, ReadOnly = 8, InputOutput = 10, Corrupt = 11, Full = 13, NoDatabase = 26 };

}  // namespace

struct SqliteSession::Driver {
    // QSqlDatabase provides its connections by name to the whole program; one that is created like this belongs to its owner
    // alone.
    struct OwnDatabase : QSqlDatabase {
        OwnDatabase() : QSqlDatabase(QStringLiteral("QSQLITE")) {}
    };

    OwnDatabase database;
    std::map<std::string, QSqlQuery> statements;
};

SqliteSession::SqliteSession(std::string path, std::chrono::milliseconds busyTimeout, ColumnKindOf kindOf)
    : SqlSession(std::move(path), std::move(kindOf)), left_(Look()), driver_(std::make_unique<Driver>()) {
    CheckMagic(Path());
    driver_->database.setDatabaseName(UriOf(Path()));
    driver_->database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=") +
                                        QString::number(busyTimeout.count()));
    if (!driver_->database.open()) Fail(driver_->database.lastError());
    open_ = true;
    SqlSession::Select(kCacheSize);  // reads the schema, so that a locked or damaged file fails here
}

SqliteSession::~SqliteSession() = default;

void SqliteSession::Close() {
    open_ = false;
    driver_->statements.clear();
    driver_->database.close();
}

SqliteSession::FileLook SqliteSession::Look() const {
    struct stat status {};
    if (stat(Path().c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) throw Error("Could not find file '" + Path() + "'.");
        throw CannotReadError(Path(), errno);
    }
    if (!S_ISREG(status.st_mode)) throw NoDatabaseError(Path());
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

QSqlQuery SqliteSession::Prepare(const std::string& sql) {
    RequireOpen();
    QSqlQuery query(driver_->database);
    query.setForwardOnly(true);
    if (!query.prepare(QString::fromStdString(sql))) Fail(query.lastError());
    return query;
}

void SqliteSession::Run(QSqlQuery& query, const SqlBound& values) {
    for (qsizetype i = 0; i < values.size(); ++i)
        query.bindValue(static_cast<int>(i), values[i]);
    if (!query.exec()) Fail(query.lastError());
}

QSqlQuery SqliteSession::Select(const std::string& sql, const SqlBound& values) {
    QSqlQuery query = Prepare(sql);
    Run(query, values);
    return query;
}

QSqlQuery& SqliteSession::SelectPrepared(const std::string& sql, const SqlBound& values) {
    RequireOpen();
    auto found = driver_->statements.find(sql);
    if (found == driver_->statements.end()) {
        if (driver_->statements.size() >= kMostStatements) driver_->statements.clear();
        found = driver_->statements.emplace(sql, Prepare(sql)).first;
    }
    Run(found->second, values);
    return found->second;
}

int SqliteSession::Change(const std::string& sql, const SqlBound& values) {
    PrepareForChanges();
    QSqlQuery& query = SelectPrepared(sql, values);
    const int rows = query.numRowsAffected();
    query.finish();
    return rows;
}

std::int64_t SqliteSession::Insert(const std::string& /*table*/, const std::string& sql, const SqlBound& values,
                                   bool /*givesId*/) {
    PrepareForChanges();
    QSqlQuery& query = SelectPrepared(sql, values);
    const std::int64_t id = query.lastInsertId().toLongLong();
    query.finish();
    return id;
}

void SqliteSession::Execute(const std::string& statement) {
    Change(statement, {});
}

void SqliteSession::Begin() {
    PrepareForChanges();
    SelectPrepared("BEGIN IMMEDIATE", {}).finish();
    inTransaction_ = true;
}

void SqliteSession::Commit() {
    inTransaction_ = false;
    try {
        SelectPrepared("COMMIT", {}).finish();
    } catch (const Error&) {
        RollBack();
        throw;
    }
}

void SqliteSession::TakeForItself() {
    PrepareForChanges();
    Select("PRAGMA locking_mode=EXCLUSIVE");
    SelectPrepared("BEGIN EXCLUSIVE", {}).finish();
    SelectPrepared("COMMIT", {}).finish();  // in this mode the lock stays
}

void SqliteSession::CopyInto(const std::string& path) {
    SelectPrepared("VACUUM INTO ?", {UriOf(path)}).finish();
}

std::shared_ptr<const SqlColumns> SqliteSession::ReadColumns(const std::string& table) {
    return std::make_shared<SqlColumns>(Select("SELECT * FROM " + QuotedName(table) + " LIMIT 0").record(), table, KindOf());
}

std::vector<QVariant> SqliteSession::DefaultsOf(const std::string& table) {
    QSqlQuery texts =
        Select("SELECT ifnull(dflt_value,'NULL') FROM pragma_table_info('" + ReplaceAll(table, "'", "''") + "') ORDER BY cid");
    std::string list;
    while (Next(texts))
        list += (list.empty() ? "(" : ",(") + texts.value(0).toString().toStdString() + ')';
    QSqlQuery values = Select("SELECT " + list);
    Next(values);
    return ColumnsOf(table)->ValuesIn(values);
}

bool SqliteSession::HasTable(const std::string& name) {
    QSqlQuery table = Select("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = '" + ReplaceAll(name, "'", "''") +
                             "' COLLATE NOCASE");
    return Next(table);
}

// A view has no rows of its own and therefore no order to add.
std::string SqliteSession::ReadKey(const std::string& table) {
    std::string key;
    const std::string name = '\'' + ReplaceAll(table, "'", "''") + '\'';
    QSqlQuery columns = Select("SELECT name FROM pragma_table_info(" + name + ") WHERE pk > 0 ORDER BY pk");
    while (Next(columns))
        key += (key.empty() ? "" : ",") + QuotedName(columns.value(0).toString().toStdString());
    QSqlQuery view = Select("SELECT 1 FROM sqlite_master WHERE type = 'view' AND name = " + name + " COLLATE NOCASE");
    if (key.empty()) key = Next(view) ? "NULL" : "rowid";
    return key;
}

// The exclusive lock detects a reader that would delay the end of each change, and the journal detects a full disk.
void SqliteSession::TryWriting() {
    SelectPrepared("BEGIN EXCLUSIVE", {}).finish();
    try {
        Select("PRAGMA user_version=1");
    } catch (const Error&) {
        RollBack();
        throw;
    }
    RollBack();
}

void SqliteSession::RollBack() {
    QSqlQuery(driver_->database).exec(QStringLiteral("ROLLBACK"));
}

void SqliteSession::RequireOpen() const {
    if (!open_) throw Error("The connection to '" + Path() + "' is closed.");
}

// Readers need not pay for this.
void SqliteSession::PrepareForChanges() {
    if (readyForChanges_) return;
    Select(kSynchronous);
    Select(kJournal);
    readyForChanges_ = true;
}

void SqliteSession::FailOf(const QSqlQuery& query) {
    Fail(query.lastError());
}

void SqliteSession::Fail(const QSqlError& error) {
    Distrust();
    const std::string text = error.databaseText().toStdString();
    const std::string database = "The database '" + Path() + "' ";
    switch (error.nativeErrorCode().toInt() & 0xFF) {
        case Busy:
        case Locked:
            throw LockedError(database + "is locked by another program.");
        case ReadOnly:
            throw Error(database + "cannot be written: " + text);
        case InputOutput:
            throw Error(database + "cannot be read or written: " + text);
        case Corrupt:
            throw DamagedError(database + "is damaged: " + text);
        case Full:
            throw Error(database + "was not changed: the disk is full.");
        case NoDatabase:
            throw NoDatabaseError(Path());
        default:
            throw Error(text.empty() ? error.text().toStdString() : text);
    }
}

}  // namespace korvane
