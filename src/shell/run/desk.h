// Everything that the windows use: the rooms of the run, and its ports. All of it belongs to the run, which outlives every
// window.
#pragma once

#include <functional>
#include <string>

#include "engine/http_requester.h"
#include "engine/machine_restart.h"
#include "engine/ping_checker.h"
#include "engine/run_command.h"
#include "engine/tcp_checker.h"
#include "engine/trace_route.h"
#include "notify/dispatcher.h"
#include "notify/hidden_passwords.h"
#include "notify/mail_outbox.h"
#include "platform/operator.h"
#include "resources/alert_mails.h"
#include "shell/run/ports.h"
#include "shell/run/report_commands.h"
#include "shell/service/service_mode.h"
#include "shell/web/web_pages.h"
#include "store/entry_safeguards.h"
#include "store/log.h"
#include "store/maintenance.h"
#include "store/safeguards.h"
#include "store/server_entries.h"
#include "store/server_id.h"
#include "store/settings.h"
#include "store/status_log.h"

namespace korvane {

struct Desk : StorePorts, SystemPorts {
    Operator& person;
    std::string dir;      ///< the home: database, settings, logs
    std::string dataDir;  ///< of the installation: templates, manual
    std::string version;  ///< "major.minor.revision" of this program
    bool isShared;        ///< the list is on a server, where other instances may work on it
    Log& log;
    StatusLog& status;
    ServerIds& ids;
    SettingsCollection& collection;
    IniFile& settingsFile;  ///< for what windows remember; the global keys go through `settings`
    Settings& settings;
    ServerEntries& entries;
    LegacyLog& legacyLog;
    Safeguards& safeguards;
    const HiddenPasswords& hiddenPasswords;
    AlertPath& alertPath;
    EntrySafeguards& ofEntries;
    Dispatcher& mail;
    MailOutbox& outbox;
    TraceRoute& trace;
    CommandRunner& commands;
    ReportPublisher& publisher;
    ReportCommands& reports;
    Maintenance& maintenance;
    MachineRestart& restart;
    WebPages& pages;
    VersionCheck& versionCheck;
    ServiceMode& service;
    AlertMails& alertMails;
    std::function<void()> followSafeguards;  ///< called after a change of the settings
    ConversationWindow& conversation;

    // The checkers for the operator's tests. They share nothing with those of the cycle, which may be running a check.
    HttpRequester& http;
    TcpChecker& tcp;
    PingChecker& ping;
};

/// Opens a file of this program in the operator's text editor. Shows a message, at once or a little later, when no program opens
/// it. `person` must outlive `processes`.
inline void OpenInEditor(Processes& processes, Operator& person, const std::string& path) {
    processes.OpenText(path, [&person, path](const std::string& why) {
        person.ShowError(kMessageTitle, "The file " + path + " could not be opened in a text editor: " + why);
    });
}

}  // namespace korvane
