// Port: the system's service manager. What it is told about this process when it was the one that started it, and how this
// program is made one of the services that it keeps running.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace korvane {

/// What became of it, with words where it was refused, and where there is something to know about what was done.
struct ManagerAnswer {
    bool done = false;
    std::string words;
    bool ofManager = false;  ///< the words are those of the manager; otherwise they are this program's own
};

/// What a service runs. Paths are absolute and without a slash at their end.
struct ServiceProgram {
    std::string program;                    ///< the executable
    std::string home;                       ///< settings, database and log; the service can write there
    std::vector<std::string> folders = {};  ///< where else it can write; they need not be there yet
};

class ServiceManager {
public:
    virtual ~ServiceManager() = default;

    /// Whether there is a service manager that this user can install services with: the "NT family" of the program's own words.
    virtual bool IsPresent() const = 0;

    // What a process that it started tells it. Without StartedThis these do nothing. None of them blocks or throws.

    /// Whether the manager started this very process as a service and listens to it, by what it said itself at the start.
    virtual bool StartedThis() const = 0;
    /// The work begins: whoever waits for the start of the service waits no longer.
    virtual void Ready() = 0;
    /// How often Alive has to be called at least; nothing when the manager does not watch.
    virtual std::optional<std::chrono::milliseconds> AliveInterval() const = 0;
    virtual void Alive() = 0;
    virtual void Stopping() = 0;
    /// One line for the person who asks the manager about the service.
    virtual void Status(const std::string& text) = 0;

    // The rest waits for the manager through the event pump, some 10 s for each of a few questions at most, and throws nothing.

    /// Whether the manager is shutting everything down, and not this service alone. Waits 1 s at most.
    virtual bool IsShuttingDown() = 0;

    /// Whether a service of this program bears the name and starts by itself.
    virtual bool IsInstalled(const std::string& name) = 0;

    /// From now on the service starts with the system, and again when it fails. It is not started now: this process holds the
    /// home that it needs. Refused when it is installed already and when another service bears the name, which is left alone;
    /// after a refusal everything is as it was.
    virtual ManagerAnswer Install(const std::string& name, const ServiceProgram& program) = 0;

    /// An installed service of this home gets what `program` says now, from its next start on. Without one nothing happens.
    virtual ManagerAnswer Update(const std::string& name, const ServiceProgram& program) = 0;

    /// Undoes Install, and ends the service when it runs and is not this process. Refused when there is no such service, or it is
    /// not that of this home.
    virtual ManagerAnswer Uninstall(const std::string& name, const std::string& home) = 0;

    /// Starts an installed service without waiting for it. One that finds its home held tries again. Waits 3 s at most.
    virtual ManagerAnswer Start(const std::string& name) = 0;
};

}  // namespace korvane
