#include "shell/entry/entry_save.h"

#include <utility>

#include "base/datetime.h"
#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/http_status.h"
#include "engine/ping_checker.h"
#include "engine/server_table.h"
#include "notify/global_email.h"
#include "platform/operator.h"
#include "shell/entry/fresh_entry.h"
#include "store/database_files.h"

namespace korvane {
namespace {

// For routines that continue after errors and only report the last one at their end.
class LastError {
public:
    /// Runs the statement; an error in it replaces earlier ones.
    template <class Statement>
    void Try(Statement statement) {
        try {
            statement();
        } catch (const Error& error) {
            Remember(error.what(), error.Number());
        } catch (const std::exception& error) {
            Remember(error.what(), 0);
        }
    }

    /// Empty and 0 as long as there was no error.
    const std::string& Text() const { return text_; }
    int Number() const { return number_; }

private:
    void Remember(const char* text, int number) {
        text_ = text;
        number_ = number;
    }

    std::string text_;
    int number_ = 0;
};

/// The query by which the editor finds its row.
std::string EntryQuery(const std::string& strID) {
    return "SELECT * from servers where id =" + strID;
}

constexpr std::string_view kNoRows = "SELECT * from servers where id < 0";

ColumnValues DefaultsOf(const clsGlobalEmail& email) {
    return {{"strGroup", "Group1"},
            {"strEmailList1", email.getToList1()},
            {"strEmailList2", email.getToList2()},
            {"strEmailFrom", email.getFrom()},
            {"strEmailText", email.getSubject()},
            {"nIntervalSeconds", 60}};
}

void AddEntry(const Desk& desk, Connection& connection, OpenedEntry& entry, LastError& last) {
    clsGlobalEmail email(desk.files, desk.dir);
    last.Try([&] { email.OpenFile(); });
    const auto row = desk.store.NewRecordset();
    last.Try([&] { row->Open(kNoRows, connection, CursorType::Keyset, LockType::Optimistic); });
    last.Try([&] { row->AddNew(); });
    last.Try([&] { entry.strID = desk.ids.NewServerID(); });
    last.Try([&] { row->Fields("id") = ParseWhole(entry.strID); });
    desk.log.Info("Adding new server In " + entry.strID + " Form_Load of frmURLData: " + last.Text());
    for (const auto& [column, value] : FreshEntry(DefaultsOf(email), desk.clock.Now()))
        last.Try([&row, name = column, &what = value] { row->Fields(name) = what; });
    last.Try([&] { row->Update(); });
    last.Try([&] { row->Close(); });
}

void ReadRow(Recordset& row, OpenedEntry& entry, LastError& last) {
    for (const EntryInput& each : EntryInputs()) {
        if (each.key.empty()) continue;
        last.Try([&] {
            const Value value = row.Fields(each.key).Value();
            if (each.text != nullptr) entry.fields.*each.text = value.Text();
            if (each.mark != nullptr) entry.fields.*each.mark = value.Bool();
        });
    }
    last.Try([&] { entry.strLastResponse = row.Fields("strLastResponse").Value().Text(); });
}

void TellMissingRow(const Desk& desk, const std::string& strID) {
    desk.person.ShowMessage(
        kMessageTitle,
        "Error with Database. Current record ID='" + strID +
            "' Recordset has zero records. We expected 1 record. \r\n\r\n"
            "To fix, manually open c:\\program files\\korvane\\kvdata2.mdb using Microsoft Access.  "
            "Edit the ID field (to 10 or 20 or something), or delete the record there and re-Add the record through Korvane "
            "\r\n\r\n"
            "SQLSource=" +
            EntryQuery(strID));
}

constexpr const char* kSchemeMessage =
    "do not use http://, https://, or ftp:// etc on the server name field. \r\n\r\n"
    "Instead, choose the type of server you want to monitor from the dropdown.\r\n\r\n"
    "URLs are acceptable for http and https but not for any other type of server.  "
    "Only the name or IP is valid for ftp, pop3, smtp etc.";

void Write(Recordset& row, const EntryInput& each, const EntryFields& fields, LastError& last) {
    if (each.mark != nullptr) {
        last.Try([&] { row.Fields(each.key) = fields.*each.mark; });
        // An entry whose monitoring is switched on again starts as "UP".
        const bool isWatched = each.mark == &EntryFields::bIsMonitoring && fields.bIsMonitoring;
        if (isWatched) last.Try([&] { row.Fields("strCurStatus") = status::kUp; });
        return;
    }
    last.Try([&] {
        if (const auto stored = each.stored(fields.*each.text, fields)) row.Fields(each.key) = *stored;
    });
}

void CleanName(const Desk& desk, EntryFields& fields, const std::function<void(const std::string& name)>& nameCleaned) {
    if (!BeginsWithScheme(fields.strAddress_IP)) return;
    desk.person.ShowMessage(kMessageTitle, kSchemeMessage);
    fields.strAddress_IP = WithoutSchemes(fields.strAddress_IP);
    nameCleaned(fields.strAddress_IP);
}

}  // namespace

OpenedEntry OpenEntry(const Desk& desk, bool isAddUrl, std::string strID) {
    OpenedEntry entry;
    entry.strID = std::move(strID);
    LastError last;
    desk.log.Info("Just In Form_Load of frmURLData");
    const auto connection = desk.store.NewConnection();
    connection->SetConnectionString(OdbcConnectionText(desk.dir));
    last.Try([&] { connection->Open(); });
    if (isAddUrl) {
        AddEntry(desk, *connection, entry, last);
    } else {
        desk.log.Info("Opening Existing server " + entry.strID + "  In Form_Load of frmURLData: " + last.Text());
    }
    const auto row = desk.store.NewRecordset();
    last.Try([&] { row->Open(EntryQuery(entry.strID), *connection, CursorType::Static, LockType::Optimistic); });
    last.Try([&] { entry.found = row->RecordCount() > 0; });
    if (entry.found) ReadRow(*row, entry, last);
    if (entry.found && desk.safeguards.IsOn(kHttpStatusFails))
        last.Try([&] { entry.fields.HTTPStatusGood = desk.ofEntries.Read(ParseWhole(entry.strID), kHttpStatusGood); });
    last.Try([&] { row->Close(); });
    last.Try([&] { connection->Close(); });
    if (!entry.found) TellMissingRow(desk, entry.strID);
    if (!last.Text().empty()) desk.log.WriteLog(kLogFatal, kLogError, "Form_Load of frmURLData: " + last.Text());
    desk.log.Info("Leaving Form_Load of frmURLData. Cur Err = " + std::to_string(last.Number()));
    return entry;
}

std::optional<EntryRefusal> CheckInputs(const EntryFields& fields) {
    if (!IsStatusList(fields.HTTPStatusGood)) {
        return EntryRefusal{&EntryFields::HTTPStatusGood,
                            "The good statuses must be numbers from 100 to 599 with commas between "
                            "them, such as 401,403.  You entered '" +
                                fields.HTTPStatusGood + "' which is invalid.  Please try again."};
    }
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
        for (const EntryInput& each : EntryInputs()) {
            if (each.text == &EntryFields::strAddress_IP) CleanName(desk, fields, nameCleaned);
            if (!each.key.empty()) Write(*row, each, fields, last);
        }
        last.Try([&] { row->Update(); });
        if (desk.safeguards.IsOn(kHttpStatusFails))
            last.Try([&] { desk.ofEntries.Write(ParseWhole(strID), kHttpStatusGood, TrimAll(fields.HTTPStatusGood)); });
    } else {
        desk.person.ShowMessage(kMessageTitle, "DB Error: Couldn't save " + last.Text() + " " + EntryQuery(strID));
    }
    last.Try([&] { row->Close(); });
    last.Try([&] { connection->Close(); });
    if (!last.Text().empty()) desk.log.WriteLog(kLogOrdinary, kLogError, "frmURLData:cmdOk: entry " + strID + ": " + last.Text());
    return isThere;
}

}  // namespace korvane
