// The vocabulary of a server entry: status words, the table of server types, and the engine's queries on the table `Servers`.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/datetime.h"
#include "platform/connection.h"

namespace korvane {

/// The values of `strCurStatus`, in their exact spelling.
namespace status {
inline constexpr std::string_view kUp = "UP";                   ///< the last check passed
inline constexpr std::string_view kFailing = "Failing";         ///< failed fewer than nTries times in a row
inline constexpr std::string_view kDown = "DOWN";               ///< failed nTries times or more in a row
inline constexpr std::string_view kDownTime = "Down-Time";      ///< inside a daily down-time window
inline constexpr std::string_view kInactive = "Inactive";       ///< not watched
inline constexpr std::string_view kNotChecked = "Not checked";  ///< set aside by a safeguard, because of its own values
/// The last check failed while this machine's own network was down.
inline constexpr std::string_view kOwnNetworkDown = "own network down";
}  // namespace status

/// One kind of server: the editor's values when the type is chosen, and the texts that `strType` is compared with.
struct ServerType {
    std::string_view name;
    std::string_view prefix;    ///< shown before the address
    std::string_view port;      ///< default `strPort`; empty: as typed
    std::string_view request;   ///< only shown: all TCP traffic comes from `strExpectedText`
    std::string_view expected;  ///< default `strExpectedText`; empty leaves it unchanged
};

/// All twenty, in the order of the list.
std::span<const ServerType> ServerTypeTable();

/// How an entry is checked. Every type except the first three, known or not, is a TCP conversation.
enum class CheckKind { Http, Https, Ping, Tcp };
CheckKind CheckKindOf(std::string_view strType);

/// Defaults of a new entry, also used for an old row whose column is blank.
inline constexpr int kNewTries = 3;
inline constexpr std::chrono::seconds kNewTimeout{15};

/// An entry that is not watched comes up every six hours.
inline constexpr std::chrono::seconds kInactiveInterval{21600};

inline constexpr int kHighestPort = 65535;

/// Responses and reasons are stored up to this length.
inline constexpr std::size_t kMostStoredCharacters = 249;

/// Returns the text of a column of the current row.
inline std::string ColumnText(Recordset& rs, std::string_view column) {
    return rs.Fields(column).Value().Text();
}

/// Return the column of the current row, or what stands in for one that cannot be read.
std::string TextOrEmpty(Recordset& rs, const char* column);
bool IsSet(Recordset& rs, const char* column, bool otherwise);

/// Return `nTries`, and `nTimeout` in seconds, of the current row.
Value TriesOf(Recordset& rs);
Value TimeoutOf(Recordset& rs);

/// The engine's queries, byte for byte.
namespace query {
std::string DueBy(DateTime when);
std::string FirstDueBy(DateTime when);  ///< no more than a hundred rows
std::string MonitoredAndDueBy(DateTime when);
std::string FailTextsOf(std::string_view id);
std::string ById(std::int64_t id);
inline constexpr std::string_view kAllByNextCheck = "SELECT  * from servers order by dtNextCheck asc ";
inline constexpr std::string_view kOwnNetworkDown = "SELECT * FROM Servers WHERE strCurStatus = 'own network down'";
inline constexpr std::string_view kOwnNetworkIsBack =
    "UPDATE Servers SET strLastResponse = replace(strLastResponse, 'own network is down', 'own network was down') "
    "WHERE strCurStatus = 'own network down'";
inline constexpr std::string_view kNoFailures = "SELECT * FROM Failures where id < 0";
}  // namespace query

}  // namespace korvane
