#include "engine/engine_world.h"

#include "base/text.h"

namespace korvane {

EngineWorld::EngineWorld(DateTime start) : world(start) {
    for (const auto& [key, value] : {std::pair{"GlobalRetryDuration", "60"},
                                     {"Begin", "0"},
                                     {"bYellowAlert", "True"},
                                     {"bRedAlert", "True"},
                                     {"YellowAlertWav", "yellow.wav"},
                                     {"RedAlertWav", "red.wav"},
                                     {"ProxyName", ""},
                                     {"ProxyPort", ""}}) {
        settings.setKvSettingsColValue(key, value);
    }
    state.bReportsOK = true;
    http.LoadInets([this] { return std::make_unique<VirtualInet>(net); });
    TimerProgress->SetInterval(std::chrono::milliseconds(250));
    TimerProgress->OnTick([this] { progress.TimerProgress_Timer(); });
    TimerMonitorDB->OnTick([this] { cycle.TimerMonitorDB_Timer(); });
    TimerMonitorDB->SetEnabled(true);
}

std::string EngineWorld::LogOfToday() {
    const std::string stored = world.clock.Now().Stored();
    const std::string date = stored.substr(0, 4) + " " + stored.substr(5, 5);
    return files.Read("/home/korvane/Logs/kvmonlog " + date + ".txt").value_or("");
}

std::vector<std::string> EngineWorld::LogTexts() {
    std::vector<std::string> texts;
    for (const std::string& line : Split(LogOfToday(), '\n')) {
        const auto tab = line.find('\t');
        if (tab != std::string::npos) texts.push_back(line.substr(tab + 1));
    }
    return texts;
}

bool EngineWorld::Logged(const std::string& part) {
    return Holds(LogOfToday(), part);
}

}  // namespace korvane
