// The program with its windows: what the executable loads where there is a display.
#include <QApplication>
#include <QByteArray>
#include <QSessionManager>
#include <exception>
#include <iostream>
#include <memory>

#include "shell/desktop/frm_monitor.h"
#include "shell/desktop/theme.h"
#include "shell/process/process.h"

namespace korvane {
namespace {

constexpr const char* kPlatforms = "QT_QPA_PLATFORM";
constexpr const char* kNoDisplay = "minimal";

// A display that is named but not there ends a Qt program on the spot, unless there is one more platform to fall back on.
void AllowForDeadDisplay() {
    QByteArray platforms = qgetenv(kPlatforms);
    if (platforms.isEmpty()) platforms = qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? "xcb" : "wayland;xcb";
    qputenv(kPlatforms, platforms + ";" + kNoDisplay);
}

// The session ends, perhaps with the power: everything is saved, and the program goes on until it is ended with the session.
void SaveWithTheSession(Run& run) {
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, qApp,
                     [&run](QSessionManager&) { run.TheDesk().settings.Save(); });
}

int DesktopMain(int argc, char** argv) {
    AllowForDeadDisplay();
    QApplication application(argc, argv);
    if (QGuiApplication::platformName() == kNoDisplay) {
        std::cerr << "Korvane goes on without a window: the display does not answer" << std::endl;
        return RunInTerminal(argc, argv);
    }
    QApplication::setApplicationName("korvane");
    QApplication::setQuitOnLastWindowClosed(false);
    const DesktopTheme theme;
    std::unique_ptr<frmMonitor> window;
    return RunProcess(argc, argv, [&](Timers& timers) {
        window = std::make_unique<frmMonitor>(timers);
        return Face{.person = *window,
                    .window = window.get(),
                    .conversation = &window->Conversation(),
                    .mailTrace = &window->Mail(),
                    .attach =
                        [&](Run& run, const std::function<void()>& exit) {
                            window->Attach(run, exit);
                            SaveWithTheSession(run);
                        },
                    .beforeExit = [&] { window->BeforeExit(); }};
    });
}

}  // namespace
}  // namespace korvane

extern "C" __attribute__((visibility("default"))) int KorvaneDesktopMain(int argc, char** argv) {
    try {
        return korvane::DesktopMain(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "Korvane can't start: " << error.what() << std::endl;
        return 1;
    }
}
