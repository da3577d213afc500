// A service of this program as a unit file of systemd: its name, its text, and how to distinguish it from units of others. See
// systemd.unit(5), systemd.service(5) and systemd.exec(5).
#pragma once

#include <string>
#include <string_view>

#include "platform/service_manager.h"

namespace korvane {

/// The manager that keeps the service running.
enum class UnitScope { System, User };

/// The text of data/korvane.service.in, which the build embeds in the program; packages make their unit from the same file.
extern const std::string_view kUnitTemplate;

/// Returns "Korvane.service" for "Korvane"; characters that a unit name cannot contain are written as "\xNN". Throws Error for an
/// empty or too long name.
std::string UnitName(const std::string& name);

/// Returns the whole file. `user` is the user as whom the system's manager runs the program. Throws Error for a path that a unit
/// cannot express: with a control character, with a space or a backslash at its end, or, for the system's manager, inside the
/// temporary folders, of which the service sees only its own.
std::string UnitText(const std::string& name, const ServiceProgram& program, UnitScope scope, const std::string& user);

/// What Uninstall must know of an installed unit, besides what systemd itself reads.
struct UnitMarks {
    std::string home;     ///< empty: the unit is not one of this program
    bool linger = false;  ///< the installation allowed the user's services to run without a session
};
UnitMarks MarksOf(std::string_view unitText);
std::string WithLingerMark(const std::string& unitText);

}  // namespace korvane
