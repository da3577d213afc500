// What a run gets from outside: the ports, in groups that are handed on whole, and what it is told at its start.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/collaborators.h"
#include "notify/mail_trace.h"
#include "platform/autostart.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/guid_source.h"
#include "platform/icmp_echo.h"
#include "platform/inet.h"
#include "platform/operator.h"
#include "platform/own_program.h"
#include "platform/power.h"
#include "platform/processes.h"
#include "platform/service_manager.h"
#include "platform/services.h"
#include "platform/sound.h"
#include "platform/system_info.h"
#include "platform/tcp_socket.h"
#include "platform/timer.h"
#include "shell/run/monitor_window.h"

namespace korvane {

// All objects must outlive the run.

struct CheckPorts {
    TcpSocket& tcpSocket;   ///< for conversations with servers
    TcpSocket& testSocket;  ///< for the operator's tests while the cycle uses its own
    IcmpEcho& echo;
    std::function<std::unique_ptr<Inet>()> newInet;
    TcpSocket& networkSocket;  ///< for questions whether this machine's own network is up
    IcmpEcho& networkEcho;
};

struct MailPorts {
    TcpSocket& sckesmtp;     ///< for mail with a login
    TcpSocket& plainSocket;  ///< for mail without a login
    TcpSocket& alertEsmtp;   ///< for mails of the resource monitors, which are sent independently of those of the cycle
    TcpSocket& alertPlain;
    TcpSocket& popSocket;  ///< for the mailbox of the daily proof
    GuidSource& guids;
    OwnProgram& ownProgram;  ///< sends the mails of the outbox
};

struct StorePorts {
    Store& store;
    Files& files;
};

struct SystemPorts {
    Clock& clock;
    Events& events;
    Timers& timers;
    Processes& processes;
    Sound& sound;
    Power& power;
    ServiceManager& serviceManager;
    Services& services;
    Autostart& autostart;
    const SystemInfo& systemInfo;
    std::function<std::string()> proxyServer;  ///< the proxy of this session, as "host:port"; empty: none
    std::function<void()> exit;                ///< mnuExit_Click and the end of the process
};

/// How the program communicates with the user.
struct DeskPorts {
    Operator& person;
    MonitorWindow* window = nullptr;             ///< null without a display
    ConversationWindow* conversation = nullptr;  ///< null: no window
    MailTrace* mailTrace = nullptr;              ///< the same for mail
};

struct RunPorts : CheckPorts, MailPorts, StorePorts, SystemPorts, DeskPorts {};

struct RunOptions {
    std::string dir;      ///< folder of settings, database and log, without a slash at the end
    std::string dataDir;  ///< folder of the installation's templates and empty database; may be the same
    std::string commandLine;
    std::string version;        ///< "major.minor.revision"
    std::string program = {};   ///< the executable's path
    std::string icon = {};      ///< the program's icon, by its name in the desktop's theme or its path
    bool isShared = false;      ///< the list is on a database server, where other instances may work on it
    std::string instance = {};  ///< the name of this one among them; empty: the machine and the home
    std::int64_t pid = 0;
    bool isGuest = false;  ///< another process may run with this home: new ids do not come from its settings file
};

}  // namespace korvane
