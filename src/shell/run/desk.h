// Everything that the windows use: the rooms of the run, and its ports. All of it belongs to the run, which outlives every
// window.
#pragma once

#include <functional>
#include <string>

#include "engine/collaborators.h"
#include "engine/http_requester.h"
#include "engine/machine_restart.h"
#include "engine/ping_checker.h"
#include "engine/run_command.h"
#include "engine/tcp_checker.h"
#include "engine/trace_route.h"
#include "notify/dispatcher.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "platform/processes.h"
#include "platform/services.h"
#include "platform/sound.h"
#include "platform/system_info.h"
#include "platform/timer.h"
#include "resources/alert_mails.h"
#include "shell/run/report_commands.h"
#include "shell/service/service_mode.h"
#include "shell/web/version_check.h"
#include "shell/web/web_pages.h"
#include "store/log.h"
#include "store/maintenance.h"
#include "store/server_entries.h"
#include "store/server_id.h"
#include "store/settings.h"
#include "store/status_log.h"

namespace korvane {

struct Desk {
    std::string dir;      ///< the home: database, settings, logs
    std::string version;  ///< "major.minor.revision" of this program
    Store& store;
    const Clock& clock;
    Events& events;
    Timers& timers;
    Operator& person;
    Files& files;
    Processes& processes;
    Sound& sound;
    const SystemInfo& systemInfo;
    Services& services;
    std::function<std::string()> proxyServer;  ///< the proxy of this session, as "host:port"; empty: none
    Log& log;
    StatusLog& status;
    ServerIds& ids;
    SettingsCollection& collection;
    IniFile& settingsFile;  ///< for what windows remember; the global keys go through `settings`
    Settings& settings;
    ServerEntries& entries;
    LegacyLog& legacyLog;
    Dispatcher& mail;
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
    ConversationWindow& conversation;

    // The checkers for the operator's tests. They share nothing with those of the cycle, which may be running a check.
    HttpRequester& http;
    TcpChecker& tcp;
    PingChecker& ping;
};

}  // namespace korvane
