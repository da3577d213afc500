#include "shell/options/global_email_walk.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "shell/options/help_table.h"
#include "shell/run/message_title.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kAllServers = "SELECT * from servers order by id";
constexpr const char* kNoServer = "No server record is current";
constexpr const char* kAssignToAll = "This will assign global values to the email settings of all the servers\r\nProceed?";

struct MonitorText {
    ResourceMonitor monitor;
    std::string GlobalEmailFields::*email;
};
constexpr MonitorText kMonitors[] = {{ResourceMonitor::CPU, &GlobalEmailFields::strEmailCPU},
                                     {ResourceMonitor::Disk, &GlobalEmailFields::strEmailDisk},
                                     {ResourceMonitor::Memory, &GlobalEmailFields::strEmailMemory},
                                     {ResourceMonitor::Services, &GlobalEmailFields::strEmailServices}};

struct ServerText {
    std::string_view column;
    std::string GlobalEmailFields::*server;
    std::string GlobalEmailFields::*global;
};
constexpr ServerText kServerTexts[] = {{"strEmailList1", &GlobalEmailFields::strEmailList1, &GlobalEmailFields::strToList1},
                                       {"strEmailList2", &GlobalEmailFields::strEmailList2, &GlobalEmailFields::strToList2},
                                       {"strEmailFrom", &GlobalEmailFields::strEmailFrom, &GlobalEmailFields::strFrom},
                                       {"strEmailText", &GlobalEmailFields::strEmailText, &GlobalEmailFields::strSubject}};

constexpr Help kGlobalEmailInputs[] = {
    {"txtToList1", "The addresses that a new server tells first, with ';' between them."},
    {"txtToList2", "More addresses that a new server tells, with ';' between them."},
    {"txtFrom", "The address that the mails of a new server come from."},
    {"txtSubject", "The subject of the mails of a new server. A comma and what follows it are lost."},
    {"txtEmailCPU", "Who is told of a high CPU load. Blank means the addresses of the first server."},
    {"txtEmailDisk", "Who is told of a disk that fills up. Blank means the addresses of the first server."},
    {"txtEmailMemory", "Who is told when memory runs short. Blank means the addresses of the first server."},
    {"txtEmailServices", "Who is told of a service that stops. Blank means the addresses of the first server."},
    {"cmdSaveGlobal", "Saves the global values and the addresses of the monitors. The servers stay as they are."},
    {"txtEmailList1", "The addresses that this server tells first, with ';' between them."},
    {"txtEmailList2", "More addresses that this server tells, with ';' between them."},
    {"txtEmailFrom", "The address that the mails of this server come from."},
    {"txtEmailText", "The subject of the mails of this server."},
    {"cmdUpdateServer", "Saves the four fields of this server."},
    {"cmdUpdateAll", "Gives the global values above to all servers."},
};

std::string PositionText(std::size_t number, std::size_t total) {
    return "Server: " + std::to_string(number) + " of " + std::to_string(total);
}

}  // namespace

GlobalEmailWalk::GlobalEmailWalk(const Desk& desk, ResourceEmails& monitors) : desk_(desk), monitors_(monitors) {}

std::string GlobalEmailWalk::Open(GlobalEmailFields& fields) {
    clsGlobalEmail email(desk_.files, desk_.dir);
    email.OpenFile();
    fields.strToList1 = email.getToList1();
    fields.strToList2 = email.getToList2();
    fields.strFrom = email.getFrom();
    fields.strSubject = email.getSubject();
    for (const MonitorText& each : kMonitors)
        fields.*each.email = monitors_.getEmail(each.monitor);
    return OnDatabase("Form_Load", [this](Connection& connection) {
        const auto servers = desk_.store.NewRecordset();
        servers->Open(kAllServers, connection, CursorType::Keyset, LockType::Optimistic);
        for (; !servers->Eof(); servers->MoveNext())
            ids_.push_back(servers->Fields("id").Value().Int64());
    });
}

void GlobalEmailWalk::SaveGlobalValues(const GlobalEmailFields& fields) {
    clsGlobalEmail email(desk_.files, desk_.dir);
    email.setToList1(fields.strToList1);
    email.setToList2(fields.strToList2);
    email.setFrom(fields.strFrom);
    email.setSubject(fields.strSubject);
    for (const MonitorText& each : kMonitors)
        monitors_.setEmail(each.monitor, fields.*each.email);
    monitors_.LoadData();
    email.UpdateData();
    desk_.person.ShowMessage(kMessageTitle, "Data updated");
}

void GlobalEmailWalk::MovePrevious() {
    if (position_ > 0) --position_;
}

void GlobalEmailWalk::MoveNext() {
    if (position_ + 1 < ids_.size()) ++position_;
}

void GlobalEmailWalk::MoveLast() {
    position_ = std::max<std::size_t>(ids_.size(), 1) - 1;
}

std::string GlobalEmailWalk::Position() const {
    return PositionText(ids_.empty() ? 0 : position_ + 1, ids_.size());
}

std::string GlobalEmailWalk::ReadServer(GlobalEmailFields& fields) {
    title_.clear();
    for (const ServerText& text : kServerTexts)
        (fields.*text.server).clear();
    return OnCurrentServer("ReadServer", [&](Recordset& row) {
        if (!hasServer_) return;
        title_ = row.Fields("strDesc").Value().Text();
        for (const ServerText& text : kServerTexts)
            fields.*text.server = row.Fields(text.column).Value().Text();
    });
}

std::string GlobalEmailWalk::UpdateServer(const GlobalEmailFields& fields) {
    const std::string error = OnCurrentServer("UpdateServer", [&](Recordset& row) {
        if (!hasServer_) return;
        for (const ServerText& text : kServerTexts)
            row.Fields(text.column) = fields.*text.server;
        row.Update();
    });
    if (!hasServer_ && error.empty()) desk_.person.ShowMessage(kMessageTitle, kNoServer);
    return error;
}

void GlobalEmailWalk::AskUpdateAll(std::function<void()> yes) const {
    desk_.person.Ask(kMessageTitle, kAssignToAll, std::move(yes));
}

std::string GlobalEmailWalk::UpdateAll(const GlobalEmailFields& fields,
                                       const std::function<void(const std::string& position)>& shown) {
    return OnDatabase("UpdateAll", [&](Connection& connection) {
        const auto servers = desk_.store.NewRecordset();
        servers->Open(kAllServers, connection, CursorType::Keyset, LockType::Optimistic);
        const auto total = static_cast<std::size_t>(servers->RecordCount());
        std::vector<std::int64_t> ids;
        connection.BeginTrans();
        for (; !servers->Eof(); servers->MoveNext()) {
            ids.push_back(servers->Fields("id").Value().Int64());
            for (const ServerText& text : kServerTexts)
                servers->Fields(text.column) = fields.*text.global;
            servers->Update();
            shown(PositionText(ids.size(), total));
        }
        connection.CommitTrans();
        ids_ = std::move(ids);
        MoveLast();
    });
}

// A row that no longer exists gives an empty result.
std::string GlobalEmailWalk::OnCurrentServer(std::string_view routine, const std::function<void(Recordset& row)>& work) {
    const std::int64_t id = position_ < ids_.size() ? ids_[position_] : -1;
    hasServer_ = false;
    return OnDatabase(routine, [&](Connection& connection) {
        const auto row = desk_.store.NewRecordset();
        row->Open("SELECT * from servers where id = " + std::to_string(id), connection, CursorType::Keyset, LockType::Optimistic);
        hasServer_ = !row->Eof();
        work(*row);
    });
}

std::string GlobalEmailWalk::OnDatabase(std::string_view routine, const std::function<void(Connection& connection)>& work) {
    try {
        const auto connection = desk_.store.NewConnection();
        connection->SetConnectionString(OdbcConnectionText(desk_.dir));
        connection->Open();
        work(*connection);
        return "";
    } catch (const std::exception& error) {
        desk_.log.WriteLog(kLogOrdinary, kLogError, "frmGlobalEmail:" + std::string(routine) + ": " + error.what());
        return error.what();
    }
}

std::string_view HelpOnGlobalEmailInput(std::string_view control) {
    return FindHelp(kGlobalEmailInputs, control);
}

}  // namespace korvane
