// A service of this program as a unit file of systemd: its name, its text, and how to tell it from the units of others.
// systemd.unit(5), systemd.service(5) and systemd.exec(5) have the forms.
#pragma once

#include <string>
#include <string_view>

#include "platform/service_manager.h"

namespace korvane {

/// Whose manager keeps the service running.
enum class UnitScope { System, User };

/// "Korvane" is "Korvane.service"; what no unit name may hold is written as "\xNN". Throws Error for a name that is blank or too
/// long.
std::string UnitName(const std::string& name);

/// The whole file. `user` is who the system's manager runs the program as. Throws Error for a path that no unit can name: with a
/// control character, a blank or a backslash at its end, or, for the system's manager, below the temporary folders, of which the
/// service sees only its own.
std::string UnitText(const std::string& name, const ServiceProgram& program, UnitScope scope, const std::string& user);

/// Of an installed unit: what Uninstall needs to know, beside what systemd itself reads.
struct UnitMarks {
    std::string home;     ///< blank: the unit is not one of this program
    bool linger = false;  ///< the installation let the person's services run without a session
};
UnitMarks MarksOf(std::string_view unitText);
std::string WithLingerMark(const std::string& unitText);

}  // namespace korvane
