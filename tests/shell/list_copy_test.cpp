// A list that moves from a file to a server and back.
#include <gtest/gtest.h>

#include "notify/outbox_table.h"
#include "shell/list/list_copy.h"
#include "store/database_files.h"
#include "store/entry_safeguards.h"
#include "store/last_checks.h"
#include "support/shared_home.h"

namespace korvane::list_copy_test {

using namespace std::chrono_literals;

constexpr const char* kTables[] = {"Servers",         "Failures",   "Response",         "ResponseFailText",
                                   "EntrySafeguards", "LastChecks", "CertificateMails", "MailOutbox"};
const DateTime kMoment = DateTime::Of(2026, 3, 29, 2, 30, 0);  // in the hour that some zones leave out

struct Side {
    explicit Side(TestDatabase& database) : rows(database), connection(database.Connected()) {}
    ListPlace Place() { return {rows.TheStore(), *connection}; }
    TestDatabase& rows;
    std::unique_ptr<Connection> connection;
};

void Fill(TestDatabase& rows) {
    std::vector<Entry> entries;
    for (int i = 0; i < 120; ++i)
        entries.push_back({.strDesc = "it's \"" + std::to_string(i) + "\"\n\xC3\xA9", .dtNextCheck = kMoment});
    const std::int64_t id = rows.AddMany(entries);
    const auto connection = rows.Connected();
    connection->Execute("UPDATE Servers SET nAveResponse = 0.1, bIsMonitoring = 0, strCMD = NULL WHERE ID = ?", {Value(id)});
    for (const std::int64_t failure : {7, 4711})
        connection->Execute("INSERT INTO Failures (ID, IDParent, dateFail) VALUES (?, ?, ?)",
                            {Value(failure), Value(id), Value(kMoment)});
    LastChecks checks(rows.TheStore());
    checks.Write(*connection, {.id = id, .when = kMoment, .phases = {.name = 1ms, .certificateEnd = kMoment}});
    checks.AddMail(*connection, {id, kMoment, 24h, kMoment});
    EntrySafeguards(rows.TheStore(), rows.DriverString()).Write(id, "Key", "value");
    OutboxTable(rows.TheStore(), rows.Folder()).Add({.idEntry = id, .recipients = {"a@example.com"}, .created = kMoment});
}

std::string Copied(
    Side& from, Side& to, const std::function<void()>& between = [] {}) {
    try {
        CopyList(from.Place(), to.Place(), [&](const CopiedTable& table) {
            if (table.name == "Failures") between();
        });
        return "";
    } catch (const Error& error) {
        return error.what();
    }
}

TEST(ListCopy, MovesAllRowsToAServerAndBack) {
    TestDatabase first, back;
    SharedHome home;
    Fill(first);
    {
        Side from(first), to(home.rows);
        EXPECT_NE(Copied(from, to,
                         [&] {
                             PostgresServer::Running().Run(
                                 "SELECT pg_terminate_backend(pid, 10000) FROM pg_stat_activity WHERE datname = '" +
                                 PostgresServer::NameIn(home.address) + "'");
                         }),
                  "");
    }
    Side from(first), server(home.rows), to(back);
    EXPECT_EQ(home.rows.Count("Servers"), 0) << "what was broken off has left nothing";
    EXPECT_EQ(Copied(from, server), "");
    EXPECT_EQ(Copied(from, server), "The target is not empty: its table Servers has 120 rows.");
    EXPECT_EQ(Copied(server, to), "");
    for (const char* table : kTables) {
        EXPECT_EQ(home.rows.Rows(table), first.Rows(table)) << table;
        EXPECT_EQ(back.Rows(table), first.Rows(table)) << table;
        EXPECT_GT(first.Count(table) + (std::string_view(table).starts_with("Response") ? 1 : 0), 0) << table;
    }
    const auto failures = OpenRows(home.store, *server.connection, "SELECT * FROM Failures WHERE ID = -1");
    failures->AddNew();
    failures->Update();
    EXPECT_EQ(failures->Fields("ID").Value(), Value(4712)) << "new rows come after those that were copied";
}

}  // namespace korvane::list_copy_test
