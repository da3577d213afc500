#include "engine/run_command.h"

#include <exception>

namespace korvane {

void CommandRunner::RunCommand(const std::string& strCommand, int /*nUnused*/, WindowStyle nWindowStyle, Variables variables) {
    for (auto& [name, value] : variables)
        value = ports_.hidden.InWords(value);
    const std::string kRoutine = "frmMonitor:RunCommand: ";
    std::string problem;
    try {
        if (ports_.processes.Shell(strCommand, nWindowStyle, variables) == 0)
            problem = "Program failed to execute: '" + strCommand + "'";
    } catch (const std::exception& error) {
        problem = strCommand + " program could not be executed because " + error.what();
    }
    ports_.status.setStatusMSG(problem.empty() ? strCommand + " Program executed successfully." : problem);
    if (problem.empty()) return ports_.log.Info(kRoutine + "Program executed successfully: '" + strCommand + "'");
    ports_.log.WriteLog(kLogFatal, kLogError, kRoutine + problem);
}

}  // namespace korvane
