// Port: ending the desktop session, and shutting down or restarting the machine.
#pragma once

namespace korvane {

enum class PowerAction { LogOff, ForcedLogOff, ShutDown, ForcedShutDown, Reboot };

/// What performs the actions on this machine: a manager of services and sessions; the shutdown command alone, which cannot log
/// anyone off; or nothing.
enum class PowerSystem { ServiceManager, ShutdownCommand, Unknown };

class Power {
public:
    virtual ~Power() = default;

    virtual PowerSystem System() const = 0;

    /// Sends the request to the system and returns at once; whether the system obeys is not known. The forced actions end
    /// programs without letting them finish. Throws Error with the reason when nothing can take the request.
    virtual void Request(PowerAction action) = 0;
};

}  // namespace korvane
