// A D-Bus of a test's own, with a service manager on it that answers as systemd does, from a table.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace korvane {

/// Runs a dbus-daemon and a thread until it goes. Throws Error when there is no dbus-daemon.
class ServiceBus {
public:
    struct Unit {
        std::string name, loadState, activeState;
    };
    struct UnitFile {
        std::string path, state;
    };
    enum class Manager { None, Silent, Answers };

    ServiceBus(Manager manager, std::vector<Unit> units, std::vector<UnitFile> files);
    ~ServiceBus();

    const std::string& Address() const;

private:
    struct Running;
    std::unique_ptr<Running> running_;
};

}  // namespace korvane
