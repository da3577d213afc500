// The commands that print what was recorded: failures and log.
#include <QJsonArray>
#include <fstream>
#include <iterator>
#include <ostream>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "shell/cli/session.h"
#include "shell/list/entry_csv_columns.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr int kMostLines = 100'000;

int LinesOf(const Session& session, int otherwise) {
    const std::string text = session.Given().Option("lines", std::to_string(otherwise));
    std::int64_t lines = 0;
    IgnoreErrors([&] { lines = ParseWhole(text); });
    if (lines < 1 || lines > kMostLines)
        throw WrongWords("--lines: '" + text + "' is not a number from 1 to " + std::to_string(kMostLines) + ".");
    return static_cast<int>(lines);
}

}  // namespace

int RunFailures(Session& session) {
    const int most = LinesOf(session, 20);
    const Desk& desk = session.TheDesk();
    std::string query = "SELECT * FROM Failures";
    if (!session.Given().arguments.empty()) query += " WHERE IDParent = " + session.Find(session.Given().arguments.front()).id;
    query += " ORDER BY dateFail DESC, ID DESC LIMIT " + std::to_string(most);
    std::vector<std::vector<std::string>> table{{"Time", "Entry", "Name", "Address", "Failure", "Reason"}};
    QJsonArray failures;
    const auto connection = OpenDatabase(desk.store, desk.dir);
    for (const auto row = OpenRows(desk.store, *connection, query, CursorType::Static); !row->Eof(); row->MoveNext()) {
        const auto text = [&](const char* column) {
            std::string read;
            IgnoreErrors([&] { read = ColumnText(*row, column); });
            return read;
        };
        const std::string count = text("nFailCount") + " of " + text("nFailMax");
        table.push_back({text("dateFail"), text("IDParent"), text("strDesc"), text("strAddress_IP"), count, text("strReason")});
        failures.append(QJsonObject{{"time", ForJson(text("dateFail"))},
                                    {"entry", ForJson(text("IDParent"))},
                                    {"name", ForJson(text("strDesc"))},
                                    {"address", ForJson(text("strAddress_IP"))},
                                    {"count", ForJson(text("nFailCount"))},
                                    {"tries", ForJson(text("nFailMax"))},
                                    {"reason", ForJson(text("strReason"))}});
    }
    if (session.Json()) {
        session.PrintJson({{"failures", failures}});
    } else if (table.size() == 1) {
        session.Say("No failure is on record.");
    } else {
        session.PrintTable(table);
    }
    return kDone;
}

int RunLog(Session& session) {
    using namespace std::chrono_literals;
    const int most = LinesOf(session, 10);
    const Desk& desk = session.TheDesk();
    std::ostream& out = session.Place().out;
    std::string path = desk.log.TodaysFile();
    const std::string all = desk.files.Read(path).value_or("");
    if (all.empty()) session.Place().errors << "The log of today is empty." << std::endl;
    std::size_t begin = all.size();
    for (int i = 0; i <= most && begin != std::string::npos && begin > 0; ++i)
        begin = all.rfind('\n', begin - 1);
    out << (all.empty() ? "" : all.substr(begin == std::string::npos || begin == 0 ? 0 : begin + 1)) << std::flush;
    auto at = static_cast<std::streamoff>(all.size());
    while (session.Given().Has("follow") && out) {
        desk.events.Sleep(300ms);
        const std::string today = desk.log.TodaysFile();
        if (std::ifstream later(path, std::ios::binary); later.seekg(at)) {
            const std::string more(std::istreambuf_iterator<char>(later), {});
            at += static_cast<std::streamoff>(more.size());
            if (!more.empty()) out << more << std::flush;
        }
        if (today != path) at = 0;  // after midnight, when the end of the former day has been printed
        path = today;
    }
    return kDone;
}

}  // namespace korvane
