#include "shell/entry/entry_save.h"

#include "base/datetime.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "engine/ping_checker.h"
#include "engine/server_table.h"
#include "shell/entry/entry_columns.h"
#include "shell/entry/entry_last_error.h"
#include "shell/entry/entry_name.h"
#include "shell/entry/entry_row.h"
#include "shell/run/message_title.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr const char* kSchemeMessage =
    "do not use http://, https://, or ftp:// etc on the server name field. \r\n\r\n"
    "Instead, choose the type of server you want to monitor from the dropdown.\r\n\r\n"
    "URLs are acceptable for http and https but not for any other type of server.  "
    "Only the name or IP is valid for ftp, pop3, smtp etc.";

struct TimeAndMinutes {
    std::string EntryFields::*time;
    std::string EntryFields::*minutes;
};
constexpr TimeAndMinutes kDownTimes[] = {{&EntryFields::strDownTime1, &EntryFields::nDownDuration1},
                                         {&EntryFields::strDownTime2, &EntryFields::nDownDuration2}};

void Write(Recordset& row, const EntryColumn& each, const EntryFields& fields, LastError& last) {
    if (each.mark != nullptr) {
        last.Try([&] { row.Fields(each.column) = fields.*each.mark; });
        // An entry whose monitoring is switched on again starts as "UP".
        const bool isWatched = each.mark == &EntryFields::bIsMonitoring && fields.bIsMonitoring;
        if (isWatched) last.Try([&] { row.Fields("strCurStatus") = status::kUp; });
        return;
    }
    const std::string& typed = fields.*each.text;
    if (each.wanted != nullptr && !each.wanted(typed)) return;
    last.Try([&] { row.Fields(each.column) = each.stored == nullptr ? typed : each.stored(fields); });
}

void CleanName(const Desk& desk, EntryFields& fields, const std::function<void(const std::string& name)>& nameCleaned) {
    if (!BeginsWithScheme(fields.strAddress_IP)) return;
    desk.person.ShowMessage(kMessageTitle, kSchemeMessage);
    fields.strAddress_IP = WithoutSchemes(fields.strAddress_IP);
    nameCleaned(fields.strAddress_IP);
}

}  // namespace

std::optional<EntryRefusal> CheckDownTimes(const EntryFields& fields) {
    for (const auto& [time, minutes] : kDownTimes) {
        const std::string& typed = fields.*time;
        if (Trim(typed).empty()) continue;
        if (!IgnoreErrors([&] { ParseDateTime(typed); })) {
            return EntryRefusal{
                time, "We're sorry, but the time you entered in the downtime field could not be understood.  You entered '" +
                          typed + "' which is invalid.  Please try again."};
        }
        const std::string& duration = fields.*minutes;
        if (!IgnoreErrors([&] { (void)Value(duration).Int16(); })) {
            return EntryRefusal{minutes,
                                "We're sorry, but the downtime minutes number you entered was not a valid integer or was blank.  "
                                "You entered '" +
                                    duration + "' which is invalid.  Please try again. Values of 1-999 are valid"};
        }
    }
    return std::nullopt;
}

std::string NotAnAddressMessage(const std::string& name) {
    return "Sorry, please convert your host name to an IP address. " + name +
           " is not a valid IP address.\r\n\r\n"
           "1) Click the windows start button\r\n"
           "2) Choose Run...\r\n"
           "3) type 'command' (runs the command prompt)\r\n"
           "4) type in ping " +
           name +
           "\r\n"
           "5) the ping program will convert the name to an IP address.  Use that IP address here.";
}

bool SaveEntry(const Desk& desk, const std::string& strID, EntryFields fields,
               const std::function<void(const std::string& name)>& nameCleaned) {
    const bool warns = fields.strType == "PING" && !IsValidIPAddress(fields.strAddress_IP);
    if (warns) desk.person.ShowMessage(kMessageTitle, NotAnAddressMessage(fields.strAddress_IP));

    LastError last;
    const auto connection = desk.store.NewConnection();
    const auto row = desk.store.NewRecordset();
    connection->SetConnectionString(OdbcConnectionText(desk.dir));
    last.Try([&] { connection->Open(); });
    last.Try([&] { row->Open(EntryQuery(strID), *connection, CursorType::Keyset, LockType::Optimistic); });
    bool isThere = false;
    last.Try([&] { isThere = row->RecordCount() > 0; });
    if (isThere) {
        const auto columns = EntryColumns();
        for (const EntryColumn& each : columns.first(kColumnsBeforeName))
            Write(*row, each, fields, last);
        CleanName(desk, fields, nameCleaned);
        for (const EntryColumn& each : columns.subspan(kColumnsBeforeName))
            Write(*row, each, fields, last);
        last.Try([&] { row->Update(); });
    } else {
        desk.person.ShowMessage(kMessageTitle, "DB Error: Couldn't save " + last.Text() + " " + EntryQuery(strID));
    }
    last.Try([&] { row->Close(); });
    last.Try([&] { connection->Close(); });
    if (!last.Text().empty()) desk.log.WriteLog(kLogOrdinary, kLogError, "frmURLData:cmdOk: entry " + strID + ": " + last.Text());
    return isThere;
}

}  // namespace korvane
