// The services of the manager systemd, queried over D-Bus (org.freedesktop.systemd1(5)): the units that it has loaded, and the
// unit files that it could load.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/events.h"
#include "platform/services.h"

namespace korvane {

/// A service that is changing its state has a state of its own: 2 starting, 3 stopping. A service that has failed or cannot run
/// counts as stopped. Units that are only mentioned by others, templates and alias names do not count as services. No service is
/// ever reported as paused.
class SystemdServices : public Services {
public:
    /// `address` is the bus in the form of D-Bus; the system bus when empty.
    explicit SystemdServices(Events& events, std::string address = "", std::chrono::milliseconds limit = std::chrono::seconds(5));

    std::unique_ptr<Question> EnumServices(std::function<void(const ServiceList&)> answer) override;

private:
    Events& events_;
    std::string address_;
    std::chrono::milliseconds limit_;
};

}  // namespace korvane
