// Which instances have seen an entry fail in this outage. With the setting `Witnesses` an entry of a shared list goes DOWN only when so
// many have, or all that are alive if these are fewer, so that the cut line of one machine alarms nobody.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/connection.h"
#include "store/log.h"
#include "store/settings_collection.h"

namespace korvane {

class Witnesses {
public:
    struct Ports {
        Store& store;
        const Clock& clock;  ///< of the list
        Log& log;
        const SettingsCollection& settings;
        std::string instance;  ///< the name of this one
    };

    explicit Witnesses(const Ports& ports) : ports_(ports) {}

    /// Returns the number of the setting, 2 to 9; 0: off.
    int Wanted() const;

    /// Called with each failure of an entry, whose row is locked; `begins`: the outage does. Returns whether enough instances have
    /// seen it fail, this one included. Throws store errors.
    bool See(Connection& conn, std::int64_t id, bool begins, const std::string& strReason);

    /// Writes what was seen last inside the transaction of the entry's row. Throws nothing: while it fails, each instance's own
    /// sight is enough.
    void WriteWith(Connection& conn);

    /// Returns who saw what, as it stands at the end of the mail; empty while the setting is off.
    const std::string& Words() const { return words_; }

    /// Returns when this instance saw entries fail, by `ID`; empty while the setting is off.
    std::map<std::int64_t, DateTime> SeenHere(Connection& conn);

private:
    struct Sighting {
        std::string strInstance;
        DateTime dtSeen;
        std::string strReason;
    };
    struct Unwritten {
        std::int64_t id;
        bool begins;
        Sighting sighting;
    };

    int Alive(Connection& conn);
    void Write(Connection& conn, const Unwritten& unwritten);

    Ports ports_;
    std::optional<Unwritten> unwritten_;
    std::string words_;
    bool refused_ = false;  ///< the store did not take the last one
};

}  // namespace korvane
