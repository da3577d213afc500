// The operator's own commands: started, reported, and left to themselves.
#pragma once

#include <string>

#include "notify/hidden_passwords.h"
#include "platform/processes.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

class CommandRunner {
public:
    struct Ports {
        Processes& processes;
        StatusLog& status;
        Log& log;
        const HiddenPasswords& hidden;
    };

    explicit CommandRunner(const Ports& ports) : ports_(ports) {}

    /// Starts the command line and returns at once; status line and log say whether it started. `variables` are in the environment
    /// of the command and nowhere else, without passwords. Never tries again. Throws nothing.
    void RunCommand(const std::string& strCommand, int nUnused, WindowStyle nWindowStyle, Variables variables = {});

private:
    Ports ports_;
};

}  // namespace korvane
