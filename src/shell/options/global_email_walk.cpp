#include "shell/options/global_email_walk.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "platform/operator.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kAllServers = "SELECT * from servers order by id";
constexpr const char* kNoServer = "No server record is current";
constexpr const char* kAssignToAll = "This will assign global values to the email settings of all the servers\r\nProceed?";

constexpr GlobalEmailInput kGlobalEmailInputs[] = {
    {"strEmailList1", &GlobalEmailFields::strToList1, AsTyped, "txtToList1",
     "Email Notify #&1:", "The addresses that a new server tells first, with ';' between them.", "Global Email Notify 1"},
    {"strEmailList2", &GlobalEmailFields::strToList2, AsTyped, "txtToList2",
     "Email Notify #&2:", "More addresses that a new server tells, with ';' between them.", "Global Email Notify 2"},
    {"strEmailFrom", &GlobalEmailFields::strFrom, AsTyped, "txtFrom",
     "&From:", "The address that the mails of a new server come from.", "Global From"},
    {"strEmailText", &GlobalEmailFields::strSubject, AsTyped, "txtSubject",
     "Su&bject:", "The subject of the mails of a new server. A comma and what follows it are lost.", "Global Subject"},
    {"", &GlobalEmailFields::strEmailCPU, AsTyped, "txtEmailCPU",
     "CP&U:", "Who is told of a high CPU load. Blank means the addresses of the first server.", "Address of the CPU monitor"},
    {"", &GlobalEmailFields::strEmailDisk, AsTyped, "txtEmailDisk", "&Disk:",
     "Who is told of a disk that fills up. Blank means the addresses of the first server.", "Address of the disk monitor"},
    {"", &GlobalEmailFields::strEmailMemory, AsTyped, "txtEmailMemory", "&Memory:",
     "Who is told when memory runs short. Blank means the addresses of the first server.", "Address of the memory monitor"},
    {"", &GlobalEmailFields::strEmailServices, AsTyped, "txtEmailServices", "S&ervices:",
     "Who is told of a service that stops. Blank means the addresses of the first server.", "Address of the service monitor"},
    {"strEmailList1", &GlobalEmailFields::strEmailList1, AsTyped, "txtEmailList1",
     "Email N&otify #1:", "The addresses that this server tells first, with ';' between them.", "Email Notify 1 of the server"},
    {"strEmailList2", &GlobalEmailFields::strEmailList2, AsTyped, "txtEmailList2",
     "Email No&tify #2:", "More addresses that this server tells, with ';' between them.", "Email Notify 2 of the server"},
    {"strEmailFrom", &GlobalEmailFields::strEmailFrom, AsTyped, "txtEmailFrom",
     "F&rom:", "The address that the mails of this server come from.", "From of the server"},
    {"strEmailText", &GlobalEmailFields::strEmailText, AsTyped, "txtEmailText",
     "Sub&ject:", "The subject of the mails of this server.", "Subject of the server"},
};
constexpr std::span kGlobalTexts = std::span(kGlobalEmailInputs).first<4>();
constexpr std::span kMonitorTexts = std::span(kGlobalEmailInputs).subspan<4, 4>();
constexpr std::span kServerTexts = std::span(kGlobalEmailInputs).last<4>();

std::string PositionText(std::size_t number, std::size_t total) {
    return "Server: " + std::to_string(number) + " of " + std::to_string(total);
}

}  // namespace

std::span<const GlobalEmailInput> GlobalEmailInputs() {
    return kGlobalEmailInputs;
}

GlobalEmailWalk::GlobalEmailWalk(const Desk& desk, ResourceEmailFiles& monitors) : desk_(desk), monitors_(monitors) {}

std::string GlobalEmailWalk::Open(GlobalEmailFields& fields) {
    clsGlobalEmail email(desk_.files, desk_.dir);
    email.OpenFile();
    fields.strToList1 = email.getToList1();
    fields.strToList2 = email.getToList2();
    fields.strFrom = email.getFrom();
    fields.strSubject = email.getSubject();
    for (std::size_t i = 0; i < kMonitorTexts.size(); ++i)
        fields.*kMonitorTexts[i].text = monitors_.getEmail(static_cast<ResourceMonitor>(i));
    return OnDatabase("Form_Load", [this](Connection& connection) {
        const auto servers = OpenRows(desk_.store, connection, kAllServers);
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
    for (std::size_t i = 0; i < kMonitorTexts.size(); ++i)
        monitors_.setEmail(static_cast<ResourceMonitor>(i), fields.*kMonitorTexts[i].text);
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
    for (const GlobalEmailInput& each : kServerTexts)
        (fields.*each.text).clear();
    return OnCurrentServer("ReadServer", [&](Recordset& row) {
        if (!hasServer_) return;
        title_ = row.Fields("strDesc").Value().Text();
        for (const GlobalEmailInput& each : kServerTexts)
            fields.*each.text = row.Fields(each.key).Value().Text();
    });
}

std::string GlobalEmailWalk::UpdateServer(const GlobalEmailFields& fields) {
    const std::string error = OnCurrentServer("UpdateServer", [&](Recordset& row) {
        if (!hasServer_) return;
        for (const GlobalEmailInput& each : kServerTexts)
            row.Fields(each.key) = fields.*each.text;
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
        const auto servers = OpenRows(desk_.store, connection, kAllServers);
        const auto total = static_cast<std::size_t>(servers->RecordCount());
        std::vector<std::int64_t> ids;
        connection.BeginTrans();
        for (; !servers->Eof(); servers->MoveNext()) {
            ids.push_back(servers->Fields("id").Value().Int64());
            for (const GlobalEmailInput& each : kGlobalTexts)
                servers->Fields(each.key) = fields.*each.text;
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
        const auto row = OpenRows(desk_.store, connection, "SELECT * from servers where id = " + std::to_string(id));
        hasServer_ = !row->Eof();
        work(*row);
    });
}

std::string GlobalEmailWalk::OnDatabase(std::string_view routine, const std::function<void(Connection& connection)>& work) {
    try {
        const auto connection = OpenDatabase(desk_.store, desk_.dir);
        work(*connection);
        return "";
    } catch (const std::exception& error) {
        desk_.log.WriteLog(kLogOrdinary, kLogError, "frmGlobalEmail:" + std::string(routine) + ": " + error.what());
        return error.what();
    }
}

}  // namespace korvane
