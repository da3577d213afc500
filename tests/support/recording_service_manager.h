// The service manager and the startup group that only write down what they are asked, and answer as the test has laid down.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/error.h"
#include "platform/autostart.h"
#include "platform/service_manager.h"

namespace korvane {

class RecordingServiceManager : public ServiceManager {
    using Name = const std::string&;

public:
    bool present = true, startedThis = false, shuttingDown = false;
    std::optional<std::chrono::milliseconds> aliveInterval;
    std::string refusal;     ///< of whatever is asked next; empty: everything is done
    std::string remark;      ///< goes with what is done
    bool ofManager = false;  ///< the refusal is in its own words

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
        if (!refusal.empty() || !done) return {.done = false, .words = refusal, .ofManager = ofManager};
        return {.done = true, .words = remark};
    }
};

class RecordingAutostart : public Autostart {
public:
    std::string refusal;  ///< of each change; empty: they are done
    std::set<std::string> names;
    AutostartEntry last;

    std::string FileName(const std::string& name) const override { return "/autostart/" + name + ".desktop"; }
    bool Exists(const std::string& name) override { return names.contains(name); }
    void Add(const AutostartEntry& entry) override {
        Refuse();
        last = entry;
        names.insert(entry.name);
    }
    void Remove(const std::string& name) override {
        Refuse();
        names.erase(name);
    }

private:
    void Refuse() const {
        if (!refusal.empty()) throw Error(refusal);
    }
};

}  // namespace korvane
