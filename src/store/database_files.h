// The files beside the program, the two connection texts for the database, and the tests that start-up makes of it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/connection.h"
#include "platform/files.h"

namespace korvane {

constexpr std::string_view kDatabaseFile = "kvdata2.mdb";
/// The blank database.
constexpr std::string_view kEmptyDatabaseFile = "kvempty.mdb";

/// A page that reports are made from; `word` names it in messages.
struct ReportTemplate {
    std::string_view file;
    std::string_view word;
};

/// In the order in which start-up looks for them.
std::span<const ReportTemplate> ReportTemplates();

std::string DatabasePath(const std::string& dir);

/// A path that holds ";" or a double quote stands in double quotes, with double quotes inside it doubled.
std::string OdbcConnectionText(const std::string& dir);
std::string OleDbConnectionText(const std::string& dir);

/// Whether the database is there and opens; if not, `errorText` says why.
bool IsDBConnectOK(Store& store, Files& files, const std::string& dir, std::string& errorText);

/// Why nothing can be written to the database now; blank when it can be. Leaves it as it is, to the byte.
std::string WriteProblemOf(Store& store, const std::string& dir);

/// Before a database is put in the place of one that is not there: what SQLite left beside that one would be rolled back into
/// it. Throws Error.
void RemoveJournals(Files& files, const std::string& database);

/// What the database lacks of DatabaseSchema(): "Servers.nAveSession" for a column, "Failures" for a whole table. Throws Error
/// when it cannot be opened.
std::vector<std::string> MissingColumns(Store& store, const std::string& dir);

}  // namespace korvane
