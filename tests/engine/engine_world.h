// The whole engine in the virtual world: the cycle with its checkers and accounts on a real database, driven by the cycle's own
// timer.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/begin_wait.h"
#include "engine/collaborators.h"
#include "engine/cycle_state.h"
#include "engine/http_requester.h"
#include "engine/monitor_cycle.h"
#include "engine/outcome.h"
#include "engine/ping_checker.h"
#include "engine/stop_start.h"
#include "engine/tcp_checker.h"
#include "store/ini_file.h"
#include "store/log.h"
#include "store/server_id.h"
#include "store/settings_collection.h"
#include "store/status_log.h"
#include "support/faulty_store.h"
#include "support/memory_files.h"
#include "support/recording_operator.h"
#include "support/recording_service_manager.h"
#include "support/recording_sound.h"
#include "support/test_database.h"
#include "support/virtual_icmp_echo.h"
#include "support/virtual_inet.h"
#include "support/virtual_net.h"
#include "support/virtual_tcp_socket.h"
#include "support/virtual_world.h"

namespace korvane {

/// Notes what the engine asks for, in order: "down <desc>", "up <desc>", "notice".
class RecordingActions : public FailureActions {
public:
    std::vector<std::string> calls;
    std::string strAction = "None.<ul><li>noted</ul>";
    FailureActions* doer = nullptr;  ///< if there is one, it does what is asked for and gives the strAction

    std::string DoFailureStateStuff(Connection& conn, Recordset& rs, const std::string& strReason) override {
        calls.push_back("down " + rs.Fields("strDesc").Value().Text());
        return doer == nullptr ? strAction : doer->DoFailureStateStuff(conn, rs, strReason);
    }
    void DoUpAgainStuff(Recordset& rs) override {
        calls.push_back("up " + rs.Fields("strDesc").Value().Text());
        if (doer != nullptr) doer->DoUpAgainStuff(rs);
    }
    void SendStartupNotice() override {
        calls.push_back("notice");
        if (doer != nullptr) doer->SendStartupNotice();
    }
};

/// Tells a listener of each echo, before the program hears of it.
class OverheardEcho : public VirtualIcmpEcho {
public:
    using VirtualIcmpEcho::VirtualIcmpEcho;
    std::function<void(Ipv4Address address, const EchoReply& reply)> listener;

    EchoReply IcmpSendEcho(Ipv4Address address, std::string_view data, int timeToLive, std::chrono::milliseconds wait) override {
        const EchoReply reply = VirtualIcmpEcho::IcmpSendEcho(address, data, timeToLive, wait);
        if (listener) listener(address, reply);
        return reply;
    }
};

class RecordingReports : public ReportPublisher {
public:
    int published = 0;
    std::string problem;
    std::string PublishReports() override {
        ++published;
        return problem;
    }
};

/// Shows nothing, and knows whether somebody looks.
class RecordingConversation : public ConversationWindow {
public:
    bool visible = false;
    std::vector<std::string> lines;
    bool Visible() const override { return visible; }
    void setRequest(const std::string& text) override { lines.push_back("> " + text); }
    void setResponse(const std::string& text) override { lines.push_back("< " + text); }
};

struct EngineWorld {
    explicit EngineWorld(DateTime start = DateTime::Of(2026, 11, 21, 15, 0, 0));

    /// Lets the cycle tick for so long.
    void RunFor(std::chrono::milliseconds time) { world.RunFor(time); }

    /// The lines of today's log, without date, time and version.
    std::vector<std::string> LogTexts();
    /// Whether today's log holds this; the text of a record stands after its class and a tab.
    bool Logged(const std::string& part);
    std::string LogOfToday();

    VirtualWorld world;
    VirtualNet net{world};
    RecordingOperator person;
    RecordingSound sound;
    MemoryFiles files;
    TestDatabase database;
    FaultyStore store{database.TheStore()};
    SettingsCollection settings;
    CycleState state;
    Log log{files, world.clock, "/home/korvane", "1.0.0"};
    StatusLog status{person, world.clock};
    IniFile settingsFile{files, "/home/korvane/kvurlwatchn.ini"};
    ServerIds ids{settingsFile, world.clock};
    RecordingActions actions;
    RecordingServiceManager manager;
    RecordingReports reports;
    RecordingConversation conversation;
    VirtualTcpSocket socket{net};
    OverheardEcho echo{net};
    std::unique_ptr<Timer> TimerProgress = world.timers.NewTimer("TimerProgress");
    std::unique_ptr<Timer> TimerMonitorDB = world.timers.NewTimer("TimerMonitorDB");
    std::unique_ptr<Timer> Timer2 = world.timers.NewTimer("Timer2");
    std::unique_ptr<Timer> TimerLog = world.timers.NewTimer("TimerLog");
    CycleTimers switches{*Timer2, *TimerMonitorDB, *TimerLog};
    RequestProgress progress{{world.events, person, state, *TimerProgress}};
    HttpRequester http{{settings, world.events, world.clock, progress}};
    TcpChecker tcp{{socket, world.events, world.clock, person, status, conversation}};
    PingChecker ping{{echo, world.clock, person, status, log}};
    OutcomeAccounting accounting{{store, world.clock, world.events, person, sound, status, log, settings, ids, actions}};
    StoreAlarm alarm{{person, status, log, manager}};
    MonitorCycle cycle{{store, world.clock, world.events, person, status, log, settings, http, tcp, ping, accounting, alarm,
                        reports, state, database.DriverString()}};
};

}  // namespace korvane
