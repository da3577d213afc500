#include "shell/entry/entry_history.h"

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "shell/entry/entry_hints.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kGroupsQuery = "SELECT DISTINCT strGroup from servers where strGroup <> '' order by strGroup";

}  // namespace

void ShowLastTraceroute(const Desk& desk, const std::string& id, const std::string& name) {
    bool isThere = false;
    std::string file;
    IgnoreErrors([&] {
        file = desk.trace.GetTracertFile(ParseWhole(id));
        isThere = desk.files.Exists(file);
    });
    if (!isThere) return desk.person.ShowMessage(kMessageTitle, NoTraceMessage(name));
    OpenInEditor(desk.processes, desk.person, file);
}

void ShowLastResponse(const Desk& desk, const std::string& name, const std::string& response) {
    desk.conversation.Show();
    desk.conversation.setRequest("Server: " + name + "\r\n" + response);
}

std::vector<std::string> ExistingGroups(const Desk& desk) {
    std::vector<std::string> groups;
    IgnoreErrors([&] {
        const auto connection = OpenDatabase(desk.store, desk.dir);
        for (const auto row = OpenRows(desk.store, *connection, kGroupsQuery, CursorType::Static); !row->Eof(); row->MoveNext())
            groups.push_back(ColumnText(*row, "strGroup"));
    });
    return groups;
}

std::string CountedFailTexts(const Desk& desk, const std::string& id) {
    std::string counted;
    IgnoreErrors([&] {
        const auto connection = OpenDatabase(desk.store, desk.dir);
        const int count = OpenRows(desk.store, *connection, query::FailTextsOf(id), CursorType::Static)->RecordCount();
        counted = (count == 0 ? "No" : std::to_string(count)) + (count == 1 ? " failure text" : " failure texts");
    });
    return counted;
}

}  // namespace korvane
