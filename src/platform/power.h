// Port: the end of the session at the desk, and of the machine's run.
#pragma once

namespace korvane {

enum class PowerAction { LogOff, ForcedLogOff, ShutDown, ForcedShutDown, Reboot };

/// What on this machine serves the actions: a manager of services and sessions; the shutdown command alone, which can't log
/// anybody off; or nothing.
enum class PowerSystem { ServiceManager, ShutdownCommand, Unknown };

class Power {
public:
    virtual ~Power() = default;

    virtual PowerSystem System() const = 0;

    /// Asks the system for it and returns at once; whether the system does it is not known. The forced ones end programs without
    /// letting them finish. Throws Error with the reason when there is nobody to ask.
    virtual void Request(PowerAction action) = 0;
};

}  // namespace korvane
