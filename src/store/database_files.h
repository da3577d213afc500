// The files in the program's folder, the ways to open the database, and its checks at start-up.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/connection.h"
#include "platform/files.h"

namespace korvane {

constexpr std::string_view kDatabaseFile = "kvdata2.mdb";
/// The empty database.
constexpr std::string_view kEmptyDatabaseFile = "kvempty.mdb";

/// A template page for reports; `word` names it in messages.
struct ReportTemplate {
    std::string_view file;
    std::string_view word;
};

/// Returns the templates in the order in which start-up checks them.
std::span<const ReportTemplate> ReportTemplates();

std::string DatabasePath(const std::string& dir);

/// See Connection::SetConnectionString.
std::string OdbcConnectionText(const std::string& dir);
std::string OleDbConnectionText(const std::string& dir);

/// Opens the database in the folder for one piece of work. Throws Error.
std::unique_ptr<Connection> OpenDatabase(Store& store, const std::string& dir);

/// Opens the rows of a query on an open connection. Throws Error.
std::unique_ptr<Recordset> OpenRows(Store& store, Connection& connection, std::string_view query,
                                    CursorType cursor = CursorType::Keyset, LockType lock = LockType::Optimistic);

/// Returns whether the database exists and can be opened; if not, `errorText` says why.
bool IsDBConnectOK(Store& store, Files& files, const std::string& dir, std::string& errorText);

/// Returns why the database cannot be written now, empty when it can be. Does not change a byte of it.
std::string WriteProblemOf(Store& store, const std::string& dir);

/// Must be called before a database is put in the place of a missing one: SQLite would roll leftover journals of the missing one
/// back into it. Throws Error.
void RemoveJournals(Files& files, const std::string& database);

/// Returns what the database lacks of DatabaseSchema(): "Servers.nAveSession" for a column, "Failures" for a whole table. Throws
/// Error when it cannot be opened.
std::vector<std::string> MissingColumns(Store& store, const std::string& dir);

}  // namespace korvane
