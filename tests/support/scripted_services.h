// A service manager in the virtual world: it answers with the list of the moment, after a while if wanted.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/services.h"
#include "support/virtual_world.h"

namespace korvane {

class ScriptedServices : public Services {
public:
    explicit ScriptedServices(VirtualWorld& world) : world_(world) {}

    std::string whyNot;  ///< not blank: there is no manager
    std::chrono::milliseconds answersAfter{0};
    int asked = 0;

    /// Adds the service, or changes its state.
    void Set(const std::string& name, int state) {
        const auto known = std::find_if(list_.begin(), list_.end(), [&](const auto& each) { return each.name == name; });
        if (known != list_.end()) {
            known->state = state;
            return;
        }
        list_.push_back({.name = name, .displayName = "the " + name, .state = state});
        std::sort(list_.begin(), list_.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    }
    void Remove(const std::string& name) {
        std::erase_if(list_, [&](const auto& each) { return each.name == name; });
    }

    std::unique_ptr<Question> EnumServices(std::function<void(const ServiceList&)> answer) override {
        ++asked;
        return std::make_unique<Pending>(*this, std::move(answer));
    }

private:
    class Pending : public Question {
    public:
        Pending(ScriptedServices& services, std::function<void(const ServiceList&)> answer)
            : world_(services.world_), event_(world_.After(services.answersAfter, [&services, answer = std::move(answer)] {
                  const bool there = services.whyNot.empty();
                  answer({.whyNot = services.whyNot, .services = there ? services.list_ : std::vector<ServiceRecord>()});
              })) {}
        ~Pending() override { world_.Cancel(event_); }
        Pending(const Pending&) = delete;
        Pending& operator=(const Pending&) = delete;

    private:
        VirtualWorld& world_;
        EventId event_;
    };

    VirtualWorld& world_;
    std::vector<ServiceRecord> list_;
};

}  // namespace korvane
