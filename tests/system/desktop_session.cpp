#include "system/desktop_session.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "base/text.h"
#include "support/temporary_folder.h"

namespace korvane::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr int kFirstDisplay = 70;
constexpr int kDisplays = 400;
constexpr int kTrayHeight = 24;
constexpr const char* kTray = "xdotool search --onlyvisible --classname '^panel$'";

std::string Quoted(const std::string& word) {
    return "'" + ReplaceAll(word, "'", "'\\''") + "'";
}

bool HasPart(const std::vector<std::string>& texts, const std::string& part) {
    return std::any_of(texts.begin(), texts.end(), [&](const std::string& text) { return text.find(part) != std::string::npos; });
}

}  // namespace

const std::vector<std::string>& DesktopSession::Programs() {
    static const std::vector<std::string> programs = {"Xvfb", "openbox", "trayer", "xdotool", "xprop", "scrot"};
    return programs;
}

DesktopSession::DesktopSession(Tray tray, const std::string& size) {
    fs::create_directories(folder_.Path("run"));
    fs::permissions(folder_.Path("run"), fs::perms::owner_all);
    StartDisplay(size);
    const auto start = [&](const std::vector<std::string>& command) {
        std::vector<std::string> words = Environment();
        words.insert(words.end(), command.begin(), command.end());
        return std::make_unique<Process>(words, folder_);
    };
    // A window that comes while it is still looking around on the screen may go unseen, so it tells when it is through.
    windowManager_ = start({"openbox", "--sm-disable", "--startup", "touch " + folder_.Path("ready")});
    if (!Waited([&] { return fs::exists(folder_.Path("ready")); }))
        throw std::runtime_error("no window manager: " + folder_.Read("output"));
    if (tray == Tray::None) return;
    tray_ = start({"trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request", "--height",
                   std::to_string(kTrayHeight), "--SetDockType", "true", "--SetPartialStrut", "true"});
    if (!Waited([&] { return !Ask(kTray).empty(); })) throw std::runtime_error("no notification area: " + folder_.Read("output"));
}

// The display takes the files of its number away when it ends in order.
DesktopSession::~DesktopSession() {
    tray_.reset();
    windowManager_.reset();
    if (display_ == nullptr) return;
    display_->Signal(SIGTERM);
    display_->Ended(5s);
}

// The lock of a number is taken by one server only, whatever network it is in; so the next number is tried where that is
// gone already.
void DesktopSession::StartDisplay(const std::string& size) {
    for (int i = 0; i < kDisplays; ++i) {
        number_ = kFirstDisplay + (getpid() + i) % kDisplays;
        if (fs::exists("/tmp/.X11-unix/X" + std::to_string(number_))) continue;
        display_ = std::make_unique<Process>(
            std::vector<std::string>{"Xvfb", Display(), "-screen", "0", size + "x24", "-nolisten", "tcp", "-noreset"}, folder_);
        const auto answers = [&] { return !Ask("xdotool getdisplaygeometry").empty(); };
        bool ended = false;
        if (Waited([&] { return (ended = display_->Ended(0ms)) || answers(); }) && !ended) return;
    }
    throw std::runtime_error("no display: " + folder_.Read("output"));
}

std::vector<std::string> DesktopSession::Environment() const {
    // No message bus, not even one that the D-Bus library would start: the notification area is X's own.
    return {"env",
            "-u",
            "WAYLAND_DISPLAY",
            "-u",
            "SESSION_MANAGER",
            "-u",
            "GTK_THEME",
            "-u",
            "QT_QPA_PLATFORM",
            "-u",
            "QT_QPA_PLATFORMTHEME",
            "DISPLAY=" + Display(),
            "DBUS_SESSION_BUS_ADDRESS=disabled:",
            "XDG_RUNTIME_DIR=" + folder_.Path("run"),
            "HOME=" + folder_.Path(),
            "XDG_CONFIG_HOME=" + folder_.Path(".config"),
            "XDG_CACHE_HOME=" + folder_.Path(".cache")};
}

std::string DesktopSession::Ask(const std::string& command) const {
    FILE* answer = popen(("DISPLAY=" + Display() + " " + command + " 2>/dev/null").c_str(), "r");
    std::string text;
    for (int byte = fgetc(answer); byte != EOF; byte = fgetc(answer))
        text += static_cast<char>(byte);
    pclose(answer);
    return text;
}

void DesktopSession::Type(const std::string& text) const {
    Ask("xdotool type --delay 5 -- " + Quoted(text));
}

void DesktopSession::Key(const std::string& keys) const {
    Ask("xdotool key --delay 20 " + keys);
}

bool DesktopSession::KeyUntil(const std::string& keys, const std::function<bool()>& condition) const {
    for (int tries = 0; tries < 5; ++tries) {
        Key(keys);
        if (Waited(condition, 2s)) return true;
    }
    return false;
}

void DesktopSession::ClickTrayIcon(int button) const {
    const std::string middle = std::to_string(kTrayHeight / 2);
    Ask(std::string(kTray) + " mousemove --window %1 " + middle + " " + middle + " click " + std::to_string(button));
}

void DesktopSession::Activate(const std::string& titlePart) const {
    for (const std::string& window : Managed()) {
        if (HasPart(Titles({window}), titlePart)) Ask("xdotool windowactivate " + window);
    }
}

bool DesktopSession::Waited(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

bool DesktopSession::WaitForWindow(const std::string& titlePart) const {
    return Waited([&] { return ActiveTitle().find(titlePart) != std::string::npos; });
}

bool DesktopSession::WaitForTitle(const std::string& title) const {
    return Waited([&] { return ActiveTitle() == title; });
}

bool DesktopSession::WaitForNoWindow(const std::string& titlePart) const {
    return Waited([&] { return !HasPart(WindowTitles(), titlePart); });
}

// "_NET_CLIENT_LIST(WINDOW): window id # 0x1, 0x2"
std::vector<std::string> DesktopSession::Managed() const {
    std::string list = Ask("xprop -root _NET_CLIENT_LIST");
    list = list.substr(std::min(list.size(), list.find('#') + 1));
    std::vector<std::string> windows;
    for (const std::string& window : Split(list, ','))
        if (!Trim(window).empty()) windows.push_back(Trim(ReplaceAll(window, "\n", "")));
    return windows;
}

std::vector<std::string> DesktopSession::Titles(const std::vector<std::string>& windows) const {
    std::vector<std::string> titles;
    for (const std::string& window : windows) {
        const std::string title = Ask("xdotool getwindowname " + window);
        if (!title.empty()) titles.push_back(title.substr(0, title.find('\n')));
    }
    return titles;
}

std::vector<std::string> DesktopSession::WindowTitles() const {
    std::vector<std::string> shown;
    for (const std::string& window : Managed())
        if (Ask("xprop -id " + window + " WM_STATE").find("Normal") != std::string::npos) shown.push_back(window);
    return Titles(shown);
}

std::vector<std::string> DesktopSession::TaskBar() const {
    return Titles(Managed());
}

// The window manager names a window active a moment before the keyboard is its own.
std::string DesktopSession::ActiveTitle() const {
    const std::string active = Ask("xdotool getactivewindow");
    if (active != Ask("xdotool getwindowfocus")) return "";
    const std::string title = Ask("xdotool getactivewindow getwindowname");
    return title.substr(0, title.find('\n'));
}

// The notification area is as wide as its icons, and has an edge without any.
bool DesktopSession::HasTrayIcon() const {
    const std::string geometry = Ask(std::string(kTray) + " getwindowgeometry");
    const std::string size = "Geometry: ";
    const std::size_t width = geometry.find(size);
    return width != std::string::npos && std::atoi(geometry.c_str() + width + size.size()) > kTrayHeight / 2;
}

void DesktopSession::Screenshot(const std::string& name) const {
    const char* wanted = std::getenv("KORVANE_SCREENSHOTS");
    if (wanted == nullptr) return;
    fs::create_directories(wanted);
    const std::string path = std::string(wanted) + "/" + name + ".png";
    std::string before;
    Waited(
        [&] {
            Ask("scrot --overwrite " + Quoted(path));
            const std::string now = ReadAll(path);
            const bool still = !now.empty() && now == before;
            before = now;
            return still;
        },
        3s);
}

}  // namespace korvane::test
