#include "support/world.h"

#include <fstream>

#include "base/text.h"
#include "support/qt_application.h"

namespace korvane {
namespace {

std::string NewHome(std::unique_ptr<TemporaryFolder>& folder) {
    folder = std::make_unique<TemporaryFolder>();
    return folder->Path();
}

// A key that comes first counts, so the test's own stands before.
std::string SettingsText(const std::string& settings) {
    return "[Settings]\n" + settings + "\nBegin=0\nServer=mail.example\n";
}

}  // namespace

World::World(const Setup& setup)
    : time_(setup.start, std::chrono::hours(-5)),
      home(setup.home.empty() ? NewHome(folder_) : setup.home),
      rows(home, database),
      face(setup.makeFace(time_.timers)),
      run({.clock = time_.clock,
           .events = time_.events,
           .timers = time_.timers,
           .store = store,
           .person = face.person == nullptr ? person : *face.person,
           .files = files,
           .tcpSocket = socket,
           .sckesmtp = sckesmtp,
           .plainSocket = plainSocket,
           .testSocket = testSocket,
           .alertEsmtp = alertEsmtp,
           .alertPlain = alertPlain,
           .echo = echo,
           .sound = sound,
           .processes = processes,
           .guids = guids,
           .power = power,
           .serviceManager = serviceManager,
           .services = services,
           .autostart = autostart,
           .systemInfo = systemInfo,
           .newInet = [this] { return std::make_unique<VirtualInet>(net); },
           .proxyServer = [this] { return proxyServer; },
           .exit = [this] { exits += 1; },
           .window = face.window,
           .conversation = face.conversation},
          {.dir = home,
           .dataDir = setup.dataDir,
           .commandLine = setup.commandLine,
           .version = "1.0.0",
           .program = "/opt/korvane/korvanecore",
           .icon = "korvane"}) {
    NeedQtApplication();
    if (folder_ != nullptr && setup.settings) Write("kvurlwatchn.ini", SettingsText(*setup.settings));
}

void World::Start() {
    started = run.StartUp();
}

void World::Write(const std::string& name, std::string_view text) {
    std::ofstream(PathOf(name), std::ios::binary) << text;
}

std::vector<std::string> World::LogTexts() {
    const std::string today = time_.clock.Now().Stored();
    const std::string name = "Logs/kvmonlog " + today.substr(0, 4) + " " + today.substr(5, 5) + ".txt";
    std::vector<std::string> texts;
    for (const std::string& line : Split(Text(name), '\n')) {
        const auto tab = line.find('\t');
        if (tab == std::string::npos || tab == 0) continue;
        texts.push_back((line[tab - 1] == '#' ? "# " : "") + line.substr(tab + 1));
    }
    return texts;
}

bool World::Logged(const std::string& part) {
    for (const std::string& text : LogTexts()) {
        if (Holds(text, part)) return true;
    }
    return false;
}

}  // namespace korvane
