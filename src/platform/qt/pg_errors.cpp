#include "platform/qt/pg_errors.h"

#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <string_view>

#include "base/text.h"

namespace korvane {
namespace {

constexpr std::size_t kMostOfWords = 600;

// The classes and codes of "PostgreSQL Error Codes" in its manual.
constexpr std::string_view kConnectionClass = "08";
constexpr std::string_view kShutdownClass = "57P";
constexpr std::string_view kIdleInTransaction = "25P03";
constexpr std::string_view kReadOnly = "25006";
constexpr std::string_view kTaken = "23505";
constexpr std::string_view kLockTimeout = "55P03";
constexpr std::string_view kCanceled = "57014";
constexpr std::string_view kDiskFull = "53100";

std::string CodeOf(const QSqlError& error) {
    return error.nativeErrorCode().toStdString();
}

// The lines after the first repeat the statement, whose values may be passwords of entries.
std::string WordsOf(const QSqlError& error, bool onlyFirstLine) {
    std::string words = error.databaseText().toStdString();
    if (onlyFirstLine) words = words.substr(0, words.find('\n'));
    for (const char* blanks : {"\n", "\t", "  "})
        words = ReplaceAll(words, blanks, " ");
    for (const std::string_view head : {"ERROR: ", "FATAL: "})
        if (words.starts_with(head)) words.erase(0, head.size());
    return OneLine(TrimAll(words), kMostOfWords);
}

}  // namespace

void RequirePgDriver() {
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL"))) throw Error(kNoPgDriver);
}

ServerAwayError PgConnectError(const PgAddress& address, const QSqlError& error) {
    return ServerAwayError("The database " + address.Shown() + " cannot be reached: " + WordsOf(error, false));
}

// The library has no code for what the server did not say.
bool IsLost(const QSqlError& error) {
    const std::string code = CodeOf(error);
    return code.empty() || code.starts_with(kConnectionClass) || code.starts_with(kShutdownClass) || code == kIdleInTransaction;
}

void ThrowPgError(const PgAddress& address, const QSqlError& error, bool cut) {
    const std::string code = CodeOf(error), words = WordsOf(error, true), database = "The database " + address.Shown() + " ";
    if (cut) throw ServerAwayError(database + "did not answer in time.");
    if (IsLost(error)) throw ServerAwayError("The connection to the database " + address.Shown() + " was lost: " + words);
    if (code == kReadOnly) throw ServerAwayError(database + "is read-only: " + words);
    if (code == kLockTimeout || code == kCanceled) throw LockedError(database + "is busy: " + words);
    if (code == kDiskFull) throw Error(database + "was not changed: the disk is full.");
    if (code == kTaken) throw PgTakenError(words);
    throw Error(words);
}

}  // namespace korvane
