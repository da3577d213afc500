// The restart of this machine that the operator can test, and the command for it that the editor offers. A failing server
// restarts the machine only through its entry's own command.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "engine/cycle_state.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "platform/power.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

/// Each operation sends a request to the system and does not wait; a request that could not be made is logged.
class clsShutdown {
public:
    clsShutdown(Power& power, Log& log) : power_(power), log_(log) {}

    void DoLogOff() { Request(PowerAction::LogOff, "DoLogOff"); }
    void DoForcedLogOff() { Request(PowerAction::ForcedLogOff, "DoForcedLogOff"); }
    void DoShutdown() { Request(PowerAction::ShutDown, "DoShutdown"); }
    void DoForceShutdown() { Request(PowerAction::ForcedShutDown, "DoForceShutdown"); }
    void DoReboot() { Request(PowerAction::Reboot, "DoReboot"); }

private:
    void Request(PowerAction action, std::string_view routine);

    Power& power_;
    Log& log_;
};

class MachineRestart {
public:
    struct Ports {
        Power& power;
        Operator& person;
        StatusLog& status;
        Log& log;
        const CycleState& state;
        std::function<void()> cmdStopStart;  ///< stops or starts monitoring
    };

    explicit MachineRestart(Ports ports) : ports_(std::move(ports)) {}

    /// Reboots without a question. The operator is notified when nothing on this machine can do it.
    void RebootCommand();

    /// Asks without waiting; a Yes stops monitoring and reboots. `answered` is called after either answer. This must outlive the
    /// parent window of the question.
    void TestShutDown(const std::function<void()>& answered = [] {});

private:
    Ports ports_;
};

/// Returns this machine's `shutdown` command: the first existing path among those that distributions use, or the usual one when
/// none exists. Reads the disk, throws nothing.
std::string getShudownEXEPath(Files& files);

}  // namespace korvane
