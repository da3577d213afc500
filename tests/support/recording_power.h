// The machine that stays up and writes down what it was asked for.
#pragma once

#include <vector>

#include "base/error.h"
#include "platform/power.h"

namespace korvane {

class RecordingPower : public Power {
public:
    PowerSystem system = PowerSystem::ServiceManager;
    bool refuses = false;
    std::vector<PowerAction> requests;

    PowerSystem System() const override { return system; }
    void Request(PowerAction action) override {
        requests.push_back(action);
        if (refuses || system == PowerSystem::Unknown) throw Error("Nothing on this machine can do it");
    }
};

}  // namespace korvane
