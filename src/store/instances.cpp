#include "store/instances.h"

#include <memory>

#include "base/error.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kInstancesTable = "Instances";
constexpr std::string_view kCreatesInstances =
    "CREATE TABLE IF NOT EXISTS Instances (ID INTEGER PRIMARY KEY, strName TEXT, strHost TEXT, nPid INTEGER, strHome TEXT, "
    "strVersion TEXT, dtStarted TEXT, dtSeen TEXT, nChecking INTEGER, nOffset INTEGER, bMailed BOOLEAN DEFAULT 0)";
constexpr std::chrono::seconds kUnnoticedOffset{5};

std::unique_ptr<Recordset> InstanceRows(Store& store, Connection& conn, const std::string& rest) {
    return OpenRows(store, conn, "SELECT * FROM Instances " + rest);
}

std::string InstanceById(std::int64_t id) {
    return "WHERE ID = " + std::to_string(id);
}

DateTime InstanceMoment(Recordset& rs, std::string_view column) {
    return DateTime::FromStored(rs.Fields(column).Value().Text()).value_or(DateTime());
}

void WriteInstanceLife(Recordset& rs, const Instance& instance) {
    rs.Fields("dtSeen") = Value(instance.seen.Stored());
    rs.Fields("nChecking") = instance.checking;
    rs.Fields("nOffset") = std::int64_t{instance.offset.count()};
}

Instance InstanceIn(Recordset& rs) {
    const auto text = [&](const char* column) { return rs.Fields(column).Value().Text(); };
    const auto number = [&](const char* column) {
        const Value value = rs.Fields(column).Value();
        return value.IsEmpty() ? 0 : value.Int64();
    };
    return {.id = number("ID"),
            .name = text("strName"),
            .host = text("strHost"),
            .pid = number("nPid"),
            .home = text("strHome"),
            .version = text("strVersion"),
            .started = InstanceMoment(rs, "dtStarted"),
            .seen = InstanceMoment(rs, "dtSeen"),
            .checking = number("nChecking"),
            .offset = std::chrono::seconds(number("nOffset")),
            .mailed = number("bMailed") != 0};
}

}  // namespace

std::string InstanceText(const Instance& instance, const std::string& entry, DateTime now) {
    const auto silent = now - instance.seen;
    const bool differs = std::chrono::abs(instance.offset) > kUnnoticedOffset;
    return instance.name + " on " + instance.host + ", since " + instance.started.Text() + ", " +
           (silent > kSilentAfter ? "silent, "
            : entry.empty()       ? ""
                                  : "checks " + entry + ", ") +
           "seen " + std::to_string(silent.count()) + " s ago" +
           (differs ? ", its clock differs by " + std::to_string(std::chrono::abs(instance.offset).count()) + " s" : "");
}

std::vector<Instance> Instances::ReadAll(Connection& conn) {
    std::vector<Instance> all;
    if (!conn.HasTable(kInstancesTable)) return all;
    const auto rows = OpenRows(store_, conn, "SELECT * FROM Instances ORDER BY strName, ID", CursorType::Static);
    for (; !rows->Eof(); rows->MoveNext())
        all.push_back(InstanceIn(*rows));
    return all;
}

std::vector<std::string> Instances::Lines(Connection& conn) {
    std::vector<std::string> lines;
    const auto now = conn.Now();
    if (!now) return lines;
    for (const Instance& each : ReadAll(conn))
        lines.push_back(InstanceText(each, NameOf(conn, each.checking), *now));
    return lines;
}

std::string Instances::NameOf(Connection& conn, std::int64_t entry) {
    if (entry == 0) return "";
    const auto row = OpenRows(store_, conn, "SELECT * FROM Servers " + InstanceById(entry), CursorType::Static);
    if (row->Eof()) return "";
    const std::string name = row->Fields("strDesc").Value().Text();
    return name.empty() ? row->Fields("strAddress_IP").Value().Text() : name;
}

std::int64_t Instances::Add(Connection& conn, const Instance& instance) {
    conn.Execute(kCreatesInstances);
    conn.Execute("DELETE FROM Instances WHERE strHost = ? AND strHome = ?", {Value(instance.host), Value(instance.home)});
    const auto row = InstanceRows(store_, conn, "WHERE ID = -1");
    row->AddNew();
    row->Fields("strName") = instance.name;
    row->Fields("strHost") = instance.host;
    row->Fields("nPid") = instance.pid;
    row->Fields("strHome") = instance.home;
    row->Fields("strVersion") = instance.version;
    row->Fields("dtStarted") = Value(instance.started.Stored());
    WriteInstanceLife(*row, instance);
    row->Update();
    return row->Fields("ID").Value().Int64();
}

void Instances::Update(Connection& conn, const Instance& instance) {
    const auto row = InstanceRows(store_, conn, InstanceById(instance.id));
    if (row->Eof()) throw RowGoneError("The row of this instance has gone.");
    WriteInstanceLife(*row, instance);
    row->Update();
}

void Instances::MarkMailed(Connection& conn, std::int64_t id) {
    conn.Execute("UPDATE Instances SET bMailed = ? WHERE ID = ?", {Value(true), Value(id)});
}

void Instances::Remove(Connection& conn, std::int64_t id) {
    conn.Execute("DELETE FROM Instances WHERE ID = ?", {Value(id)});
}

}  // namespace korvane
