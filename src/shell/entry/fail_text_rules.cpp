#include "shell/entry/fail_text_rules.h"

#include <exception>
#include <utility>

#include "base/text.h"
#include "engine/server_table.h"
#include "store/database_files.h"
#include "store/server_id.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kRestAfterRow = 100ms;

bool IdTaken(Store& store, Connection& conn, std::int64_t id) {
    const auto rows = OpenRows(store, conn, "SELECT * from ResponseFailText where id =" + std::to_string(id), CursorType::Static);
    return !rows->Eof();
}

}  // namespace

FailTextRules::FailTextRules(const Desk& desk, std::string connectionText, std::string id)
    : desk_(desk), connectionText_(std::move(connectionText)), id_(std::move(id)) {}

FailTextRules::Opened FailTextRules::Open() {
    Opened opened;
    try {
        const auto conn = OpenConnection();
        const auto server = OpenServer(*conn, CursorType::Static);
        opened.found = !server->Eof();
        if (!opened.found) return opened;
        const auto stored = OpenRows(desk_.store, *conn, query::FailTextsOf(id_));
        for (std::size_t i = 0; i < opened.rows.size() && !stored->Eof(); ++i, stored->MoveNext()) {
            opened.rows[i] = {stored->Fields("strFailText").Value().Text(), stored->Fields("strFailCommand").Value().Text()};
            desk_.events.Sleep(kRestAfterRow);
        }
    } catch (const std::exception& error) {
        WriteError("Form_Load", error.what());
    }
    return opened;
}

std::string FailTextRules::Save(const FailTextRows& rows) {
    try {
        const auto conn = OpenConnection();
        const auto server = OpenServer(*conn, CursorType::Keyset);
        if (server->Eof()) return "";  // the entry no longer exists: there is nothing to count
        server->Fields("nFailScanText") = SaveRows(*conn, rows);
        server->Update();
        return "";
    } catch (const std::exception& error) {
        WriteError("cmdOk", error.what());
        return error.what();
    }
}

// Returns the number of rules.
int FailTextRules::SaveRows(Connection& conn, const FailTextRows& rows) {
    const auto stored = desk_.store.NewRecordset();
    stored->Open("SELECT id,idparent,strFailText,strFailCommand from ResponseFailText where idParent =" + id_, conn,
                 CursorType::Keyset, LockType::Optimistic);
    int count = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!rows[i].strFailText.empty()) {
            if (stored->Eof()) AddRow(conn, *stored, i);
            stored->Fields("strFailText") = Trim(rows[i].strFailText);
            stored->Fields("strFailCommand") = Trim(rows[i].strFailCommand);
            stored->Update();
            ++count;
        } else if (!stored->Eof()) {
            stored->Delete();
        } else {
            continue;
        }
        stored->MoveNext();
    }
    return count;
}

// Different moments can give the same time stamp, but ids must be unique.
void FailTextRules::AddRow(Connection& conn, Recordset& stored, std::size_t row) {
    std::int64_t id = std::stoll(NewTimeStampID(desk_.clock) + std::to_string(row));
    while (IdTaken(desk_.store, conn, id))
        ++id;
    stored.AddNew();
    stored.Fields("id") = id;
    stored.Fields("idparent") = id_;
}

std::unique_ptr<Connection> FailTextRules::OpenConnection() {
    auto conn = desk_.store.NewConnection();
    conn->SetConnectionString(connectionText_);
    conn->Open();
    return conn;
}

std::unique_ptr<Recordset> FailTextRules::OpenServer(Connection& conn, CursorType cursor) {
    auto server = desk_.store.NewRecordset();
    server->Open("SELECT * from servers where id =" + id_, conn, cursor, LockType::Optimistic);
    return server;
}

void FailTextRules::WriteError(const std::string& routine, const std::string& error) {
    desk_.log.WriteLog(kLogOrdinary, kLogError, "frmCommands:" + routine + ": " + error);
}

std::string FailTextHelp() {
    return "Specify a substring that you expect may be returned which indicates a URL failure (such as a page returned from your "
           "firewall which contains the text 'URL can't be reached'). STRINGS ARE CASE SENSITIVE."
           "After you specify this search text, specify the command that should be executed if this type of URL failure occurs "
           "(optional).  You will always receive Email Notification if these failures occur.";
}

// The pair of parentheses once held a number; the texts are known as they are.
std::string FailCommandHelp(const FailTextRule& rule) {
    const std::string when = "if the response contains the string '" + rule.strFailText + "' ('  times in a row).  You will ";
    if (rule.strFailCommand.empty()) {
        return "You are specifying that No command should be executed " + when + "still receive Email Notification.";
    }
    return "The command '" + rule.strFailCommand + "' will be executed " + when + "also receive Email Notification";
}

std::string FailTextRulesHelp() {
    return "This multiple command configuration dialog allows you to monitor for specific text returned from your web "
           "page.\r\n\r\n"
           "By default, it's considered a URL failure when absolutely NOTHING is returned from the URL request ( times in a "
           "row).  \r\n\r\n" +
           FailTextHelp();
}

}  // namespace korvane
