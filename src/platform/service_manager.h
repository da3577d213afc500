// Port: the system's service manager. It receives notifications about this process if it started it, and it can install this
// program as one of its services.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace korvane {

/// The result of a request: whether it was done, and words that explain a refusal or add a note to what was done.
struct ManagerAnswer {
    bool done = false;
    std::string words;
    bool ofManager = false;  ///< the words are the manager's; otherwise they are this program's own
};

/// What a service runs. Paths are absolute and without a slash at their end.
struct ServiceProgram {
    std::string program;                    ///< the executable
    std::string home;                       ///< settings, database and log; the service can write there
    std::vector<std::string> folders = {};  ///< other folders that it can write to; they need not exist yet
};

class ServiceManager {
public:
    virtual ~ServiceManager() = default;

    /// Returns whether there is a service manager with which this user can install services: the "NT family" in the program's
    /// vocabulary.
    virtual bool IsPresent() const = 0;

    // Notifications from a process that the manager started. Without StartedThis they do nothing. None of them blocks or throws.

    /// Returns whether the manager started this very process as a service and listens to it, according to what the manager said
    /// at the start.
    virtual bool StartedThis() const = 0;
    /// Reports that the work begins: whoever waits for the start of the service no longer waits.
    virtual void Ready() = 0;
    /// Returns the longest allowed time between two calls of Alive, or nothing when the manager does not watch.
    virtual std::optional<std::chrono::milliseconds> AliveInterval() const = 0;
    virtual void Alive() = 0;
    virtual void Stopping() = 0;
    /// Sets the line that the manager shows to users who ask about the service.
    virtual void Status(const std::string& text) = 0;

    // The remaining calls wait for the manager while the event pump runs, for at most some 10 s per question, of which each asks
    // a few. They throw nothing.

    /// Returns whether the manager is shutting everything down, and not this service alone. Waits 1 s at most.
    virtual bool IsShuttingDown() = 0;

    /// Returns whether a service of this program has this name and starts automatically.
    virtual bool IsInstalled(const std::string& name) = 0;

    /// From now on the service starts with the system, and again when it fails. It is not started now, since this process holds
    /// the home that it needs. The request is refused if the service is already installed, or if another service has the name,
    /// which then stays unchanged; a refusal changes nothing.
    virtual ManagerAnswer Install(const std::string& name, const ServiceProgram& program) = 0;

    /// Gives the installed service of this home the values in `program`, from its next start on. Does nothing if there is none.
    virtual ManagerAnswer Update(const std::string& name, const ServiceProgram& program) = 0;

    /// Undoes Install, and ends the service if it is running and is not this process. Refused when there is no such service, or
    /// it belongs to another home.
    virtual ManagerAnswer Uninstall(const std::string& name, const std::string& home) = 0;

    /// Starts an installed service without waiting for it. The service tries again if it finds its home held. Waits 3 s at most.
    virtual ManagerAnswer Start(const std::string& name) = 0;
};

}  // namespace korvane
