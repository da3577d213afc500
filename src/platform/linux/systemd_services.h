// The services of the manager that is systemd, asked over D-Bus (org.freedesktop.systemd1(5)): the units that it has loaded, and
// the unit files that it could load.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/events.h"
#include "platform/services.h"

namespace korvane {

/// A service that is on its way has a state of its own: 2 starting, 3 stopping. One that has failed, or is in no state to run,
/// has stopped. Units that only others mention, templates and second names of a unit are no services. Nothing here is ever
/// paused.
class SystemdServices : public Services {
public:
    /// `address` of the bus in the form of D-Bus; that of the system when blank.
    explicit SystemdServices(Events& events, std::string address = "", std::chrono::milliseconds limit = std::chrono::seconds(5));

    std::unique_ptr<Question> EnumServices(std::function<void(const ServiceList&)> answer) override;

private:
    Events& events_;
    std::string address_;
    std::chrono::milliseconds limit_;
};

}  // namespace korvane
