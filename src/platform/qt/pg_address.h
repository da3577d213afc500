// The address of a PostgreSQL database as the client library reads it: "postgresql://user@host1:5432,host2/database?name=value&...".
#pragma once

#include <map>
#include <string>

namespace korvane {

struct PgAddress {
    std::string hosts;  ///< several are separated by commas, and so are their ports
    std::string ports;
    std::string user;
    std::string database;
    std::map<std::string, std::string> parameters;  ///< all others, with this program's limits where the address has none

    /// Returns "'database' on host1,host2", for messages: no user, no parameters.
    std::string Shown() const;

    /// Returns ports and parameters in the driver's form.
    std::string ConnectOptions() const;
};

/// Throws Error for a text that is no address, or that holds a password: that one belongs into the password file. The message
/// repeats nothing of the text.
PgAddress ParsePgAddress(const std::string& text);

}  // namespace korvane
