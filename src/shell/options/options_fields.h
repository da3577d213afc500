// Room `options`: the global settings and the addresses shared by all entries and monitors.
//
// The values of the settings dialog's inputs: every text as typed, and the check marks.
#pragma once

#include <string>

namespace korvane {

/// Named after the keys of the global settings.
struct OptionsFields {
    std::string Begin;                ///< minutes
    std::string GlobalRetryDuration;  ///< seconds
    std::string SuccessLT;            ///< seconds
    std::string Server;
    std::string SMTPUser1;
    std::string SMTPPass1;
    std::string SMTPPopHost1;
    std::string ServerBackup;
    std::string SMTPUser2;
    std::string SMTPPass2;
    std::string SMTPPopHost2;
    std::string Zone;
    std::string ReportPath;
    std::string YellowAlertWav;
    std::string RedAlertWav;
    std::string ServiceName;
    std::string ProxyName;
    std::string ProxyPort;
    bool Service = false;
    bool Reboot = false;
    bool RebootAny = false;
    bool bYellowAlert = false;
    bool bRedAlert = false;
};

}  // namespace korvane
