#include "store/database_rescue.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/wait.h"
#include "store/database_files.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kRestoreDatabase = "RestoreDatabase";
constexpr auto kLongestLock = 10s;
constexpr auto kBetweenLooks = 500ms;
/// A full disk or a database without entries is not looked at every few seconds.
constexpr auto kRest = 10min;

constexpr std::string_view kCopyBegin = "kvdata2 ";
constexpr std::string_view kCopyEnd = ".mdb";
constexpr const char* kUnfinished = ".new";
constexpr std::size_t kCopiesKept = 7;

constexpr const char* kJournals[] = {"-journal", "-wal", "-shm"};

/// Ends a compaction after its copy: the file itself is then left as it is.
struct OnlyTheCopy {};

std::string BackupOf(const std::string& dir) {
    return DatabasePath(dir) + ".BAK";
}

std::string FolderOfCopies(const std::string& dir) {
    return dir + "/Copies";
}

bool IsDailyCopy(const std::string& name) {
    return name.starts_with(kCopyBegin) && name.ends_with(kCopyEnd);
}

}  // namespace

bool DatabaseRescue::IsOn() const {
    return ports_.safeguards.IsOn(kRestoreDatabase);
}

void DatabaseRescue::BeforeTheStart() {
    if (!IsOn()) return;
    State state = Look();
    if (state == State::Locked) Tell("The database is locked by another program and is waited for.");
    for (const auto end = ports_.clock.GetTickCount() + kLongestLock;
         state == State::Locked && ports_.clock.GetTickCount() < end;) {  // a look itself waits for the store
        WaitFor(ports_.events, ports_.clock, kBetweenLooks, [] { return false; });
        state = Look();
    }
    if (state == State::Missing) BringBack("was missing");
    if (state == State::Damaged) BringBack("was damaged");
    ports_.store.Rest();
}

// A link that leads nowhere is not replaced: the disk of its database may come back.
bool DatabaseRescue::IsMissing() {
    if (ports_.files.Exists(DatabasePath(dir_))) return false;
    const std::vector<std::string> names = ports_.files.FileNames(dir_);
    return std::find(names.begin(), names.end(), kDatabaseFile) == names.end();
}

// Reads all entries, but not the whole database: that is for the daily copy and the compaction.
DatabaseRescue::State DatabaseRescue::Look() {
    try {
        if (IsMissing()) return State::Missing;
        const auto connection = OpenDatabase(ports_.store, dir_);
        const auto table =
            OpenRows(ports_.store, *connection, "SELECT name FROM sqlite_master where type = 'table' and lower(name) = 'servers'",
                     CursorType::Static);
        if (table->Eof()) return State::Damaged;  // of another program, or the beginning of one
        OpenRows(ports_.store, *connection, "SELECT * FROM Servers", CursorType::Static);
        connection->TryWriting();
        return State::Usable;
    } catch (const DamagedError&) {
        return State::Damaged;
    } catch (const LockedError&) {
        return State::Locked;
    } catch (const std::exception&) {
        return State::Unknown;
    }
}

// Nothing for what is no database of ours.
std::optional<int> DatabaseRescue::EntriesIn(const std::string& file) {
    std::optional<int> entries;
    IgnoreErrors([&] {
        if (!ports_.files.Exists(file)) return;
        const auto connection = ports_.store.NewConnection();
        connection->SetConnectionString(FileConnectionText(file));
        connection->Open();
        entries = OpenRows(ports_.store, *connection, "SELECT id FROM Servers", CursorType::Static)->RecordCount();
    });
    ports_.store.Rest();
    return entries;
}

bool DatabaseRescue::MayReplaceBackup() {
    if (!IsOn()) return true;
    const int inBackup = EntriesIn(BackupOf(dir_)).value_or(0);
    const int now = EntriesIn(DatabasePath(dir_)).value_or(0);
    if (now >= inBackup) return true;
    Tell("The backup has " + std::to_string(inBackup) + " entries and the database has " + std::to_string(now) +
         ": the backup was kept.");
    return false;
}

void DatabaseRescue::AfterFailedCompaction(const std::exception& error) {
    if (IsOn()) damaged_ = dynamic_cast<const DamagedError*>(&error) != nullptr;
}

void DatabaseRescue::KeepDailyCopy() {
    if (!IsOn() || ports_.store.InUse() || ports_.clock.GetTickCount() < nextTry_) return;
    try {
        if (damaged_) damaged_ = !BringBack("was damaged");
        const bool missing = IsMissing();
        if (!missing && !damaged_) CopyToday();
        if (missing && missing_) BringBack("was missing");
        missing_ = missing;
    } catch (const DamagedError&) {
        damaged_ = true;            // and brought back by the next call
    } catch (const LockedError&) {  // for a moment
    } catch (const std::exception& error) {
        TellProblem(error.what());
    }
}

void DatabaseRescue::CopyToday() {
    const std::string today = ports_.clock.Now().Stored().substr(0, std::string_view("2026-11-22").size());
    const std::string copy = FolderOfCopies(dir_) + "/" + std::string(kCopyBegin) + today + std::string(kCopyEnd);
    if (ports_.files.Exists(copy)) return;
    if (EntriesIn(DatabasePath(dir_)) == 0) {  // nothing to lose
        nextTry_ = ports_.clock.GetTickCount() + kRest;
        return;
    }
    ports_.files.CreatePrivateFolder(FolderOfCopies(dir_));
    CopyWhole(DatabasePath(dir_), copy);
    lastProblem_.clear();
    RemoveOldCopies(copy);
}

// Throws DamagedError for a file that is damaged anywhere.
void DatabaseRescue::CopyWhole(const std::string& file, const std::string& to) {
    try {
        ports_.store.Compact(file, to + kUnfinished, [&] {
            ports_.files.Rename(to + kUnfinished, to);
            throw OnlyTheCopy();
        });
    } catch (const OnlyTheCopy&) {
    }
}

// That of today stays, even if the clock was once ahead. A program that was killed while it made one left the beginning of it.
void DatabaseRescue::RemoveOldCopies(const std::string& today) {
    std::vector<std::string> names = ports_.files.FileNames(FolderOfCopies(dir_));
    for (const std::string& name : names)
        if (Holds(name, std::string(kCopyEnd) + kUnfinished)) ports_.files.Remove(FolderOfCopies(dir_) + "/" + name);
    std::erase_if(names, [](const std::string& name) { return !IsDailyCopy(name); });
    for (std::size_t old = 0; old + kCopiesKept < names.size(); ++old)
        if (const std::string path = FolderOfCopies(dir_) + "/" + names[old]; path != today) ports_.files.Remove(path);
}

// The newest first.
std::vector<std::string> DatabaseRescue::Copies() {
    std::vector<std::string> names;
    IgnoreErrors([&] { names = ports_.files.FileNames(FolderOfCopies(dir_)); });
    std::vector<std::pair<std::int64_t, std::string>> copies;
    const auto add = [&](const std::string& copy) {
        IgnoreErrors([&] {
            if (const auto identity = ports_.files.Identity(copy)) copies.emplace_back(-identity->changedNanoseconds, copy);
        });
    };
    add(BackupOf(dir_));
    for (const std::string& name : names)
        if (IsDailyCopy(name)) add(FolderOfCopies(dir_) + "/" + name);
    std::sort(copies.begin(), copies.end());
    std::vector<std::string> paths;
    for (auto& [age, path] : copies)
        paths.push_back(std::move(path));
    return paths;
}

bool DatabaseRescue::BringBack(const std::string& why) {
    ports_.store.Rest();
    for (const std::string& copy : Copies())
        if (EntriesIn(copy).value_or(0) > 0 && TakeCopy(copy)) {
            const std::string text = "The database " + why + " and was brought back from " + copy + ".";
            Tell(text);
            ports_.mail(text);
            return true;
        }
    if (why != "was missing" || !Copies().empty())
        TellProblem("The database " + why + ", and there is no good copy of it with entries.");
    return false;
}

// Returns false for a copy that is damaged itself.
bool DatabaseRescue::TakeCopy(const std::string& copy) {
    const std::string restored = DatabasePath(dir_) + ".restored";
    try {
        CopyWhole(copy, restored);
    } catch (const DamagedError& error) {
        TellProblem(error.what());
        return false;
    }
    const std::string aside = SetAside();
    ports_.files.Rename(restored, DatabasePath(dir_));
    if (!aside.empty()) Tell("The former database was kept as " + aside + ".");
    return true;
}

// Returns the new name of the database, empty if there was none. The database goes first: without its journal it could look whole.
// A journal that was left without its database must not meet another one.
std::string DatabaseRescue::SetAside() {
    const std::string file = DatabasePath(dir_);
    const std::string when = ReplaceAll(ports_.clock.Now().Stored(), ":", "");
    std::string aside = file + ".damaged " + when;
    for (int more = 2; ports_.files.Exists(aside); ++more)
        aside = file + ".damaged " + when + " " + std::to_string(more);
    const bool exists = ports_.files.Exists(file);
    if (exists) ports_.files.Rename(file, aside);
    for (const char* journal : kJournals)
        if (const auto identity = ports_.files.Identity(file + journal))
            identity->size == 0 ? ports_.files.Remove(file + journal) : ports_.files.Rename(file + journal, aside + journal);
    return exists ? aside : "";
}

void DatabaseRescue::Tell(const std::string& text) {
    ports_.safeguards.Acted(kRestoreDatabase, text);
    ports_.status.setStatusMSG(text);
}

void DatabaseRescue::TellProblem(const std::string& text) {
    nextTry_ = ports_.clock.GetTickCount() + kRest;
    if (std::exchange(lastProblem_, text) == text) return;
    ports_.log.WriteLog(kLogFatal, kLogError, std::string(kRestoreDatabase) + ": " + text);
    ports_.status.setStatusMSG(text);
}

}  // namespace korvane
