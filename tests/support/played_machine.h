// The machine around the program, as a test plays it: each part writes down what it is asked, and does and answers what the test
// has laid down.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "platform/autostart.h"
#include "platform/power.h"
#include "platform/processes.h"
#include "platform/service_manager.h"
#include "platform/services.h"
#include "platform/sound.h"
#include "platform/system_info.h"
#include "support/virtual_world.h"

namespace korvane {

struct RecordingPower : Power {
    PowerSystem system = PowerSystem::ServiceManager;
    std::vector<PowerAction> requests;

    PowerSystem System() const override { return system; }
    void Request(PowerAction action) override {
        requests.push_back(action);
        if (system == PowerSystem::Unknown) throw Error("Nothing on this machine can do it");
    }
};

struct RecordingSound : Sound {
    std::vector<std::string> played;
    void PlaySound(const std::string& path) override { played.push_back(path); }
};

struct RecordingProcesses : Processes {
    struct Started {
        std::string command;
        WindowStyle style;
        bool operator==(const Started&) const = default;
    };

    std::vector<Started> started;
    std::string environment;  ///< "NAME=value|" of all that was added to it
    std::string missing;      ///< a command that holds this is not there; empty: all are

    bool hasBrowser = true, browserStarts = true;
    std::string browser = "firefox.desktop";
    std::vector<std::string> opened;  ///< pages and texts

    int Shell(const std::string& command, WindowStyle style, const Variables& variables) override {
        if (!missing.empty() && Holds(command, missing)) throw Error("No such file or directory", 2);
        for (const auto& [name, value] : variables)
            environment += name + "=" + value + "|";
        started.push_back({command, style});
        return 4711;
    }
    std::string DefaultProgram(const std::string&) override { return hasBrowser ? browser : ""; }
    bool OpenPage(const std::string& path, const NotOpened& notOpened) override {
        browserStarts ? opened.push_back(path) : notOpened("No such file or directory");
        return browserStarts;
    }
    bool OpenText(const std::string& path, const NotOpened&) override { return opened.push_back(path), true; }
};

class RecordingServiceManager : public ServiceManager {
    using Name = const std::string&;

public:
    bool present = true, startedThis = false, shuttingDown = false;
    std::optional<std::chrono::milliseconds> aliveInterval;
    std::string refusal;  ///< of whatever is asked next; empty: everything is done

    std::vector<std::string> told;   ///< "READY", "ALIVE", "STOPPING", and the status lines
    std::vector<std::string> asked;  ///< "install <name>" and its like
    ServiceProgram program;
    std::set<std::string> installed;

    bool IsPresent() const override { return present; }
    bool StartedThis() const override { return startedThis; }
    void Ready() override { told.push_back("READY"); }
    std::optional<std::chrono::milliseconds> AliveInterval() const override { return aliveInterval; }
    void Alive() override { told.push_back("ALIVE"); }
    void Stopping() override { told.push_back("STOPPING"); }
    void Status(const std::string& text) override { told.push_back(text); }
    bool IsShuttingDown() override { return shuttingDown; }
    bool IsInstalled(Name name) override { return installed.contains(name); }

    ManagerAnswer Install(Name name, const ServiceProgram& what) override {
        program = what;
        return Answer("install " + name, refusal.empty() && installed.insert(name).second);
    }
    ManagerAnswer Update(Name name, const ServiceProgram& what) override {
        program = what;
        return Answer("update " + name, true);
    }
    ManagerAnswer Uninstall(Name name, Name home) override {
        return Answer("uninstall " + name + " of " + home, refusal.empty() && installed.erase(name) == 1);
    }
    ManagerAnswer Start(Name name) override { return Answer("start " + name, installed.contains(name)); }

private:
    ManagerAnswer Answer(Name question, bool done) {
        asked.push_back(question);
        return {.done = done && refusal.empty(), .words = refusal};
    }
};

/// The startup group.
struct RecordingAutostart : Autostart {
    std::set<std::string> names;
    AutostartEntry last;

    std::string FileName(const std::string& name) const override { return "/autostart/" + name + ".desktop"; }
    bool Exists(const std::string& name) override { return names.contains(name); }
    void Add(const AutostartEntry& entry) override {
        last = entry;
        names.insert(entry.name);
    }
    void Remove(const std::string& name) override { names.erase(name); }
};

/// A service manager that answers with the list of the moment, after a while if wanted.
class ScriptedServices : public Services {
public:
    explicit ScriptedServices(VirtualWorld& world) : world_(world) {}

    std::string whyNot;  ///< not empty: there is no manager
    std::chrono::milliseconds answersAfter{0};

    /// Adds the service, or changes its state.
    void Set(const std::string& name, int state) { states_[name] = state; }

    std::unique_ptr<Question> EnumServices(std::function<void(const ServiceList&)> answer) override {
        auto question = std::make_unique<Pending>(world_);
        question->event = world_.After(answersAfter, [this, answer = std::move(answer)] { answer(List()); });
        return question;
    }

private:
    struct Pending : Question {
        explicit Pending(VirtualWorld& in) : world(in) {}
        ~Pending() override { world.Cancel(event); }
        VirtualWorld& world;
        EventId event;
    };

    ServiceList List() const {
        ServiceList list{.whyNot = whyNot, .noManager = !whyNot.empty(), .services = {}};
        for (const auto& [name, state] : states_)
            if (whyNot.empty()) list.services.push_back({.name = name, .displayName = "the " + name, .state = state});
        return list;
    }

    VirtualWorld& world_;
    std::map<std::string, int> states_;
};

struct ScriptedSystemInfo : SystemInfo {
    std::optional<ProcessorTimes> processors = ProcessorTimes{.idle = 0, .total = 0, .processors = 1};
    std::optional<PhysicalMemory> memory = PhysicalMemory{.total = 4096, .available = 1024};
    DiskSpace disks{.total = 1000, .free = 500};

    /// The processors have been busy for `percent` of another 1000 units of time each.
    void Work(int percent) {
        const auto units = static_cast<std::uint64_t>(processors->processors);
        processors->total += 1000 * units;
        processors->idle += 10 * units * static_cast<std::uint64_t>(100 - percent);
    }

    SystemVersion Version() const override { return {"Linux", "6.1", "0"}; }
    std::optional<ProcessorTimes> Processors() const override { return processors; }
    std::optional<PhysicalMemory> Memory() const override { return memory; }
    DiskSpace FixedDisks() const override { return disks; }
};

}  // namespace korvane
