#include "platform/qt/sql_session.h"

#include <sys/stat.h>

#include <QtCore/QUrl>
#include <QtCore/QVariant>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlRecord>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <string_view>

#include "platform/connection.h"
#include "platform/qt/sql_text.h"

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

constexpr std::string_view kMagic("SQLite format 3\0", 16);

// The primary codes of https://sqlite.org/rescode.html.
enum SqliteCode { Busy = 5, Locked = 6, ReadOnly = 8, InputOutput = 10, Corrupt = 11, Full = 13, NoDatabase = 26 };

DamagedError NoDatabaseError(const std::string& path) {
    return DamagedError("The file '" + path + "' is not an SQLite 3 database. It was left untouched.");
}

Error CannotReadError(const std::string& path, int problem) {
    return Error("The database '" + path + "' cannot be read: " + std::strerror(problem));
}

// SQLite would take an empty file for a new database, and would roll an old journal back into a file that has replaced its own.
// Closing the file here drops this process's SQLite locks on it, so no statement may be running; in a single thread none is.
void CheckMagic(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
    if (!file) throw CannotReadError(path, errno);
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
    char magic[kMagic.size()];
    if (std::string_view(magic, std::fread(magic, 1, sizeof magic, file.get())) != kMagic) throw NoDatabaseError(path);
}

// In Qt, only the URI form can demand that the file must exist.
QString UriOf(const std::string& path) {
    const QByteArray encoded = QUrl::toPercentEncoding(QString::fromStdString(path), "/");
    return QString::fromUtf8((path.starts_with('/') ? "file://" : "file:") + encoded + "?mode=rw");
}

}  // namespace

struct SqlSession::Driver {
    // QSqlDatabase provides its connections by name to the whole program; one that is created like this belongs to its owner
    // alone.
    struct OwnDatabase : QSqlDatabase {
        OwnDatabase() : QSqlDatabase(QStringLiteral("QSQLITE")) {}
    };

    OwnDatabase database;
    std::map<std::string, QSqlQuery> statements;
    std::map<std::string, std::shared_ptr<const SqlColumns>, LessNoCase> columns;
    std::map<std::string, std::string, LessNoCase> keys;  ///< by table
};

SqlSession::SqlSession(std::string path, std::chrono::milliseconds busyTimeout, ColumnKindOf kindOf)
    : path_(std::move(path)), kindOf_(std::move(kindOf)), left_(Look()), driver_(std::make_unique<Driver>()) {
    CheckMagic(path_);
    driver_->database.setDatabaseName(UriOf(path_));
    driver_->database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=") +
                                        QString::number(busyTimeout.count()));
    if (!driver_->database.open()) Fail(driver_->database.lastError());
    open_ = true;
    Select(kCacheSize);  // reads the schema, so that a locked or damaged file fails here
}

SqlSession::~SqlSession() = default;

void SqlSession::Close() {
    open_ = false;
    driver_->statements.clear();
    driver_->database.close();
}

SqlSession::FileLook SqlSession::Look() const {
    struct stat status {};
    if (stat(path_.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) throw Error("Could not find file '" + path_ + "'.");
        throw CannotReadError(path_, errno);
    }
    if (!S_ISREG(status.st_mode)) throw NoDatabaseError(path_);
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

QSqlQuery SqlSession::Prepare(const std::string& sql) {
    RequireOpen();
    QSqlQuery query(driver_->database);
    query.setForwardOnly(true);
    if (!query.prepare(QString::fromStdString(sql))) Fail(query.lastError());
    return query;
}

void SqlSession::Run(QSqlQuery& query, const SqlBound& values) {
    for (qsizetype i = 0; i < values.size(); ++i)
        query.bindValue(static_cast<int>(i), values[i]);
    if (!query.exec()) Fail(query.lastError());
}

QSqlQuery SqlSession::Select(const std::string& sql) {
    return Select(sql, {});
}

QSqlQuery SqlSession::Select(const std::string& sql, const SqlBound& values) {
    QSqlQuery query = Prepare(sql);
    Run(query, values);
    return query;
}

QSqlQuery& SqlSession::SelectPrepared(const std::string& sql, const SqlBound& values) {
    RequireOpen();
    auto found = driver_->statements.find(sql);
    if (found == driver_->statements.end()) {
        if (driver_->statements.size() >= kMostStatements) driver_->statements.clear();
        found = driver_->statements.emplace(sql, Prepare(sql)).first;
    }
    Run(found->second, values);
    return found->second;
}

bool SqlSession::Next(QSqlQuery& query) {
    if (query.next()) return true;
    if (query.lastError().isValid()) Fail(query.lastError());
    return false;
}

SqlSession::Changed SqlSession::Change(const std::string& sql, const SqlBound& values) {
    PrepareForChanges();
    QSqlQuery& query = SelectPrepared(sql, values);
    const Changed changed{query.numRowsAffected(), query.lastInsertId().toLongLong()};
    query.finish();
    return changed;
}

void SqlSession::Begin() {
    PrepareForChanges();
    SelectPrepared("BEGIN IMMEDIATE", {}).finish();
    inTransaction_ = true;
}

void SqlSession::Commit() {
    inTransaction_ = false;
    try {
        SelectPrepared("COMMIT", {}).finish();
    } catch (const Error&) {
        RollBack();
        throw;
    }
}

void SqlSession::TakeForItself() {
    PrepareForChanges();
    Select("PRAGMA locking_mode=EXCLUSIVE");
    SelectPrepared("BEGIN EXCLUSIVE", {}).finish();
    SelectPrepared("COMMIT", {}).finish();  // in this mode the lock stays
}

void SqlSession::CopyInto(const std::string& path) {
    SelectPrepared("VACUUM INTO ?", {UriOf(path)}).finish();
}

std::shared_ptr<const SqlColumns> SqlSession::ColumnsOf(const std::string& table) {
    auto& columns = driver_->columns[table];
    if (!columns)
        columns =
            std::make_shared<SqlColumns>(Select("SELECT * FROM " + QuotedName(table) + " LIMIT 0").record(), table, kindOf_);
    return columns;
}

bool SqlSession::HasTable(const std::string& name) {
    QSqlQuery table = Select("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = '" + ReplaceAll(name, "'", "''") +
                             "' COLLATE NOCASE");
    return Next(table);
}

// A view has no rows of its own and therefore no order to add.
const std::string& SqlSession::KeyOf(const std::string& table) {
    std::string& key = driver_->keys[table];
    if (!key.empty()) return key;
    const std::string name = '\'' + ReplaceAll(table, "'", "''") + '\'';
    QSqlQuery columns = Select("SELECT name FROM pragma_table_info(" + name + ") WHERE pk > 0 ORDER BY pk");
    while (Next(columns))
        key += (key.empty() ? "" : ",") + QuotedName(columns.value(0).toString().toStdString());
    QSqlQuery view = Select("SELECT 1 FROM sqlite_master WHERE type = 'view' AND name = " + name + " COLLATE NOCASE");
    if (key.empty()) key = Next(view) ? "NULL" : "rowid";
    return key;
}

// The exclusive lock detects a reader that would delay the end of each change, and the journal detects a full disk.
void SqlSession::TryWriting() {
    SelectPrepared("BEGIN EXCLUSIVE", {}).finish();
    try {
        Select("PRAGMA user_version=1");
    } catch (const Error&) {
        RollBack();
        throw;
    }
    RollBack();
}

void SqlSession::RollBack() {
    QSqlQuery(driver_->database).exec(QStringLiteral("ROLLBACK"));
}

void SqlSession::RequireOpen() const {
    if (!open_) throw Error("The connection to '" + path_ + "' is closed.");
}

// Readers need not pay for this.
void SqlSession::PrepareForChanges() {
    if (readyForChanges_) return;
    Select(kSynchronous);
    Select(kJournal);
    readyForChanges_ = true;
}

void SqlSession::Fail(const QSqlError& error) {
    Distrust();
    const std::string text = error.databaseText().toStdString();
    const std::string database = "The database '" + path_ + "' ";
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
            throw NoDatabaseError(path_);
        default:
            throw Error(text.empty() ? error.text().toStdString() : text);
    }
}

}  // namespace korvane
