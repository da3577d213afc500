#include "engine/witnesses.h"

#include <algorithm>
#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "store/database_files.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kSilent = 60s;  // then an instance no longer counts as alive

constexpr std::string_view kTable = "Sightings";
constexpr std::string_view kCreatesSightings =
    "CREATE TABLE IF NOT EXISTS Sightings (ID INTEGER PRIMARY KEY AUTOINCREMENT, IDParent INTEGER, strInstance TEXT, dtSeen "
    "TEXT, "
    "strReason TEXT)";
constexpr std::string_view kForgetsSightings =
    "CREATE TRIGGER IF NOT EXISTS SightingsOfDeleted AFTER DELETE ON Servers BEGIN DELETE FROM Sightings WHERE IDParent = "
    "OLD.ID; END";

std::string SightingsOf(std::int64_t id) {
    return "SELECT * FROM Sightings WHERE IDParent = " + std::to_string(id) + " ORDER BY ID";
}

std::optional<DateTime> MomentIn(Recordset& rs, std::string_view column) {
    std::optional<DateTime> when;
    IgnoreErrors([&] { when = DateTime::FromStored(rs.Fields(column).Value().Text()); });
    if (!when) IgnoreErrors([&] { when = rs.Fields(column).Value().When(); });
    return when;
}

}  // namespace

int Witnesses::Wanted() const {
    const std::string* const value = ports_.settings.Find("Witnesses");
    const std::string number = value == nullptr ? "" : Trim(*value);
    return number.size() == 1 && number >= "2" && number <= "9" ? number.front() - '0' : 0;
}

bool Witnesses::See(Connection& conn, std::int64_t id, bool begins, const std::string& strReason) {
    unwritten_.reset();
    words_.clear();
    const int wanted = Wanted();
    if (wanted == 0) return true;
    unwritten_ = {id, begins, {ports_.instance, ports_.clock.Now(), Left(WithoutControls(strReason), kMostStoredCharacters)}};
    std::vector<Sighting> seen{unwritten_->sighting};
    if (!begins && conn.HasTable(kTable))
        for (const auto rs = OpenRows(ports_.store, conn, SightingsOf(id), CursorType::Static); !rs->Eof(); rs->MoveNext())
            if (ColumnText(*rs, "strInstance") != ports_.instance)
                seen.push_back(
                    {ColumnText(*rs, "strInstance"), MomentIn(*rs, "dtSeen").value_or(DateTime()), ColumnText(*rs, "strReason")});
    const int alive = Alive(conn);
    const int needed = refused_ ? 1 : std::min(wanted, alive);
    const int count = static_cast<int>(seen.size());
    words_ = "\r\n\r\nSeen by " + std::to_string(count) + (count == 1 ? " instance:" : " instances:");
    for (const Sighting& each : seen)
        words_ += "\r\n" + each.strInstance + ", " + each.dtSeen.Text() + ": " + Or(each.strReason, "no reason given");
    if (count < wanted)
        words_ += "\r\n" + std::to_string(wanted) + " witnesses are wanted, but " +
                  (refused_ ? "the database does not keep what they see." : "only " + std::to_string(alive) + " can be asked.");
    return count >= needed;
}

int Witnesses::Alive(Connection& conn) {
    int alive = 0;
    IgnoreErrors([&] {
        if (!conn.HasTable("Instances")) return;
        for (const auto rs = OpenRows(ports_.store, conn, "SELECT * FROM Instances", CursorType::Static); !rs->Eof();
             rs->MoveNext())
            if (const auto seen = MomentIn(*rs, "dtSeen"); seen && ports_.clock.Now() - *seen < kSilent) ++alive;
    });
    return std::max(alive, 1);
}

void Witnesses::WriteWith(Connection& conn) {
    if (!unwritten_) return;
    const Unwritten unwritten = *std::exchange(unwritten_, std::nullopt);
    try {
        Write(conn, unwritten);
        refused_ = false;
    } catch (const std::exception& error) {
        if (!std::exchange(refused_, true))
            ports_.log.WriteLog(kLogOrdinary, kLogError, "What a witness saw could not be kept: " + std::string(error.what()));
    }
}

void Witnesses::Write(Connection& conn, const Unwritten& unwritten) {
    if (!conn.HasTable(kTable)) {
        conn.Execute(kCreatesSightings);
        conn.Execute(kForgetsSightings);
    }
    const auto rs = OpenRows(ports_.store, conn, SightingsOf(unwritten.id));
    if (unwritten.begins)
        for (; !rs->Eof(); rs->MoveNext())
            rs->Delete();
    while (!rs->Eof() && ColumnText(*rs, "strInstance") != ports_.instance)
        rs->MoveNext();
    if (rs->Eof()) rs->AddNew();
    rs->Fields("IDParent") = unwritten.id;
    rs->Fields("strInstance") = ports_.instance;
    rs->Fields("dtSeen") = unwritten.sighting.dtSeen.Stored();
    rs->Fields("strReason") = unwritten.sighting.strReason;
    rs->Update();
}

std::map<std::int64_t, DateTime> Witnesses::SeenHere(Connection& conn) {
    std::map<std::int64_t, DateTime> seen;
    if (Wanted() == 0 || !conn.HasTable(kTable)) return seen;
    const std::string query =
        "SELECT ID, IDParent, dtSeen FROM Sightings WHERE strInstance = '" + ReplaceAll(ports_.instance, "'", "''") + "'";
    for (const auto rs = OpenRows(ports_.store, conn, query, CursorType::Static); !rs->Eof(); rs->MoveNext())
        if (const auto when = MomentIn(*rs, "dtSeen")) seen[rs->Fields("IDParent").Value().Int64()] = *when;
    return seen;
}

}  // namespace korvane
