// A transfer slot in the virtual world: gives what the pages of a VirtualNet are scripted to give, and waits for it as a real one
// does, with the pump running.
#pragma once

#include <string>

#include "platform/inet.h"
#include "support/virtual_net.h"

namespace korvane {

class VirtualInet : public Inet {
public:
    explicit VirtualInet(VirtualNet& net) : net_(net) {}

    bool StillExecuting() const override { return executing_; }
    /// As the port says. Silence ends in "Operation timed out after <ms> milliseconds".
    std::string OpenURL(const Request& request) override;
    void Cancel() override;

private:
    PageAnswer AnswerTo(const Request& request);
    void Await(const PageAnswer& answer, std::chrono::milliseconds limit);

    VirtualNet& net_;
    bool executing_ = false;
    bool cancelled_ = false;
};

}  // namespace korvane
