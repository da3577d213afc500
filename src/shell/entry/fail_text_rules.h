// The texts of one entry's answers that mean failure, with a command for each: how the operator's ten rows are read from the
// table
// `ResponseFailText` and saved to it, and what the window says about them.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "store/log.h"

namespace korvane {

/// Upper and lower case of the search text count. A blank command runs nothing.
struct FailTextRule {
    std::string strFailText;
    std::string strFailCommand;
    bool operator==(const FailTextRule&) const = default;
};

using FailTextRows = std::array<FailTextRule, 10>;

class FailTextRules {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        Events& events;
        Log& log;
    };

    struct Opened {
        bool found = true;  ///< false: there is no entry with this id
        FailTextRows rows;  ///< those that are stored, in the order of the table; the others are blank
    };

    /// `connectionText` names the database, `id` is the entry's, all digits.
    FailTextRules(const Ports& ports, std::string connectionText, std::string id);

    /// Stands still for 100 ms after each stored row. A failure ends the reading with what has been read and goes to the log.
    Opened Open();

    /// Stored rows are used again in their stored order and keep their ids, so a blank row between two filled ones removes a
    /// stored row and those behind it move up. Each row is durable by itself: a failure leaves what was written before it, goes
    /// to the log, and is returned; blank when all went well, and when the entry is gone, where nothing is written.
    std::string Save(const FailTextRows& rows);

private:
    std::unique_ptr<Connection> OpenConnection();
    std::unique_ptr<Recordset> OpenServer(Connection& conn, CursorType cursor);
    int SaveRows(Connection& conn, const FailTextRows& rows);
    void AddRow(Connection& conn, Recordset& stored, std::size_t row);
    void WriteError(const std::string& routine, const std::string& error);

    Ports ports_;
    std::string connectionText_;
    std::string id_;
};

/// What the window says about the search text that is being typed.
std::string FailTextHelp();
/// What it says about the command that is being typed, with its search text.
std::string FailCommandHelp(const FailTextRule& rule);
/// Its help message.
std::string FailTextRulesHelp();

}  // namespace korvane
