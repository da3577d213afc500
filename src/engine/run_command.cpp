#include "engine/run_command.h"

#include <exception>

namespace korvane {

void CommandRunner::RunCommand(const std::string& strCommand, int /*nUnused*/, WindowStyle nWindowStyle) {
    const std::string kRoutine = "frmMonitor:RunCommand: ";
    try {
        if (ports_.processes.Shell(strCommand, nWindowStyle) != 0) {
            ports_.status.setStatusMSG(strCommand + " Program executed successfully.");
            ports_.log.Info(kRoutine + "Program executed successfully: '" + strCommand + "'");
        } else {
            const std::string message = "Program failed to execute: '" + strCommand + "'";
            ports_.status.setStatusMSG(message);
            ports_.log.WriteLog(kLogFatal, kLogError, kRoutine + message);
        }
    } catch (const std::exception& error) {
        const std::string message = strCommand + " program could not be executed because " + error.what();
        ports_.status.setStatusMSG(message);
        ports_.log.WriteLog(kLogFatal, kLogError, kRoutine + message);
    }
}

}  // namespace korvane
