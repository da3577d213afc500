// The texts in one entry's answers that mean failure, with a command for each: how the operator's ten rows are read from the
// table `ResponseFailText` and saved to it, and what the window says about them.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "platform/connection.h"
#include "shell/run/desk.h"

namespace korvane {

/// The search text is case-sensitive. An empty command runs nothing.
struct FailTextRule {
    std::string strFailText;
    std::string strFailCommand;
    bool operator==(const FailTextRule&) const = default;
};

using FailTextRows = std::array<FailTextRule, 10>;

class FailTextRules {
public:
    struct Opened {
        bool found = true;  ///< false: no entry has this id
        FailTextRows rows;  ///< the stored rules, in the order of the table; the others are empty
    };

    /// `connectionText` selects the database; `id` is the entry's, digits only.
    FailTextRules(const Desk& desk, std::string connectionText, std::string id);

    /// Blocks for 100 ms after each stored row. A failure ends the reading, keeps what has been read and is logged.
    Opened Open();

    /// Stored rows are reused in their order and keep their ids, so an empty row between two filled ones removes a stored row and
    /// the following ones move up. Each row is durable by itself: a failure leaves the rows written before it, is logged, and is
    /// returned. Returns an empty text on success, and when the entry no longer exists, in which case nothing is written.
    std::string Save(const FailTextRows& rows);

private:
    std::unique_ptr<Connection> OpenConnection();
    std::unique_ptr<Recordset> OpenServer(Connection& conn, CursorType cursor);
    int SaveRows(Connection& conn, const FailTextRows& rows);
    void AddRow(Connection& conn, Recordset& stored, std::size_t row);
    void WriteError(const std::string& routine, const std::string& error);

    const Desk desk_;
    std::string connectionText_;
    std::string id_;
};

/// Returns the explanation of the search text that is being typed.
std::string FailTextHelp();
/// Returns the explanation of the command that is being typed, with its search text.
std::string FailCommandHelp(const FailTextRule& rule);
/// Returns the window's help message.
std::string FailTextRulesHelp();

}  // namespace korvane
