// A service manager in the virtual world: it answers with the list of the moment, after a while if wanted.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/services.h"
#include "support/virtual_world.h"

namespace korvane {

class ScriptedServices : public Services {
public:
    explicit ScriptedServices(VirtualWorld& world) : world_(world) {}

    std::string whyNot;  ///< not empty: there is no manager
    std::chrono::milliseconds answersAfter{0};
    int asked = 0;

    /// Adds the service, or changes its state.
    void Set(const std::string& name, int state) { states_[name] = state; }
    void Remove(const std::string& name) { states_.erase(name); }

    std::unique_ptr<Question> EnumServices(std::function<void(const ServiceList&)> answer) override {
        ++asked;
        return std::make_unique<Pending>(world_,
                                         world_.After(answersAfter, [this, answer = std::move(answer)] { answer(List()); }));
    }

private:
    struct Pending : Question {
        Pending(VirtualWorld& in, EventId of) : world(in), event(of) {}
        ~Pending() override { world.Cancel(event); }
        VirtualWorld& world;
        EventId event;
    };

    ServiceList List() const {
        ServiceList list{.whyNot = whyNot, .services = {}};
        for (const auto& [name, state] : states_)
            if (whyNot.empty()) list.services.push_back({.name = name, .displayName = "the " + name, .state = state});
        return list;
    }

    VirtualWorld& world_;
    std::map<std::string, int> states_;
};

}  // namespace korvane
