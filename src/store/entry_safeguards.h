// The values of safeguards that belong to one entry. They stand in a table of their own, `EntrySafeguards`, which is created when
// the first value is written. When an entry is deleted, by whatever program, the database removes its values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/connection.h"

namespace korvane {

class EntrySafeguards {
public:
    /// Returns the statements that create the table and what belongs to it.
    static std::vector<std::string> Statements();

    /// `connectionString` is that of the database. A call opens a Connection of its own unless it gets one; store errors are passed
    /// to the caller.
    EntrySafeguards(Store& store, std::string connectionString) : store_(store), connectionString_(std::move(connectionString)) {}

    /// Returns the value of the entry; empty if it has none. Keys are case-insensitive.
    std::string Read(std::int64_t id, std::string_view key) const;

    /// An empty value removes it.
    void Write(std::int64_t id, std::string_view key, const std::string& value);
    /// The same as part of the transaction that is open on `connection`.
    void Write(Connection& connection, std::int64_t id, std::string_view key, const std::string& value);

private:
    Store& store_;
    std::string connectionString_;
};

}  // namespace korvane
