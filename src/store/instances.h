// The table `Instances` of a shared list: each instance of the program that works on it has a row there while it runs. Moments are
// those of the server. Without a shared list there is no such table.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "base/datetime.h"
#include "platform/connection.h"

namespace korvane {

struct Instance {
    std::int64_t id = 0;  ///< of the row
    std::string name = {};
    std::string host = {};
    std::int64_t pid = 0;
    std::string home = {};
    std::string version = {};
    DateTime started = {};
    DateTime seen = {};
    std::int64_t checking = 0;       ///< ID of the entry; 0: none
    std::chrono::seconds offset{0};  ///< how far the server's clock is ahead of this machine's
    bool mailed = false;             ///< that it has gone silent
};

/// Who has written nothing for so long is silent, and is forgotten after a day.
constexpr std::chrono::seconds kSilentAfter{60};
constexpr std::chrono::hours kForgottenAfter{24};

/// Returns "db1:home on db1, since ..., checks Shop, seen 3 s ago"; `entry` is the name of what it checks, or empty. A clock that
/// differs by more than five seconds is named.
std::string InstanceText(const Instance& instance, const std::string& entry, DateTime now);

class Instances {
public:
    explicit Instances(Store& store) : store_(store) {}

    // All throw Error for the store's reason.

    /// Returns those that are in the table, by name; nothing without a table.
    std::vector<Instance> ReadAll(Connection& conn);
    /// Returns a line for each; nothing with a file, which is not asked.
    std::vector<std::string> Lines(Connection& conn);
    /// Returns the name of an entry, or its address; empty when there is none.
    std::string NameOf(Connection& conn, std::int64_t entry);

    /// Adds the row of an instance that starts, in the place of one that its former life has left, and returns its ID.
    std::int64_t Add(Connection& conn, const Instance& instance);
    /// Writes what changes while it runs. Throws RowGoneError when the row was forgotten meanwhile.
    void Update(Connection& conn, const Instance& instance);
    void MarkMailed(Connection& conn, std::int64_t id);
    void Remove(Connection& conn, std::int64_t id);

private:
    Store& store_;
};

}  // namespace korvane
