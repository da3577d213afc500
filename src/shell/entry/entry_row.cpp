#include "shell/entry/entry_row.h"

#include <utility>

#include "base/numbers.h"
#include "notify/global_email.h"
#include "shell/entry/entry_columns.h"
#include "shell/entry/entry_last_error.h"
#include "shell/entry/fresh_entry.h"
#include "shell/run/message_title.h"
#include "store/database_files.h"

namespace korvane {
namespace {

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
    for (const EntryColumn& each : EntryColumns()) {
        last.Try([&] {
            const Value value = row.Fields(each.column).Value();
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

}  // namespace

std::string EntryQuery(const std::string& strID) {
    return "SELECT * from servers where id =" + strID;
}

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
    last.Try([&] { row->Close(); });
    last.Try([&] { connection->Close(); });
    if (!entry.found) TellMissingRow(desk, entry.strID);
    if (!last.Text().empty()) desk.log.WriteLog(kLogFatal, kLogError, "Form_Load of frmURLData: " + last.Text());
    desk.log.Info("Leaving Form_Load of frmURLData. Cur Err = " + std::to_string(last.Number()));
    return entry;
}

}  // namespace korvane
