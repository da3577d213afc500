// The program with its windows: the module that the executable loads if there is a display.
#include <QApplication>
#include <QByteArray>
#include <QSessionManager>
#include <exception>
#include <iostream>
#include <memory>

#include "shell/desktop/look/icons.h"
#include "shell/desktop/look/theme.h"
#include "shell/desktop/main/frm_monitor.h"
#include "shell/desktop/toolkit/spoken_figures.h"
#include "shell/process/process.h"

namespace korvane {
namespace {

constexpr const char* kPlatforms = "QT_QPA_PLATFORM";
constexpr const char* kNoDisplay = "minimal";

/// The application, which survives a dead display: Qt ends a program at once if the named display does not answer, unless there
/// is another platform to fall back on. Child processes do not inherit this setting.
class Application : public QApplication {
public:
    static std::unique_ptr<Application> Make(int& argc, char** argv) {
        const QByteArray asked = qgetenv(kPlatforms);
        QByteArray platforms = asked;
        if (platforms.isEmpty()) platforms = qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? "xcb" : "wayland;xcb";
        qputenv(kPlatforms, platforms + ";" + kNoDisplay);
        auto made = std::make_unique<Application>(argc, argv);
        if (asked.isEmpty()) {
            qunsetenv(kPlatforms);
        } else {
            qputenv(kPlatforms, asked);
        }
        return made;
    }

    using QApplication::QApplication;

    /// An exception in a command must not end the monitor.
    bool notify(QObject* receiver, QEvent* event) override {
        try {
            return QApplication::notify(receiver, event);
        } catch (const std::exception& error) {
            std::cerr << "Korvane: a command of the window failed: " << error.what() << std::endl;
            return true;
        }
    }
};

// The session ends, perhaps with a power-off: everything is saved, and the program continues until the session ends it.
void SaveWithTheSession(Run& run) {
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, qApp, [&run](QSessionManager&) { run.SaveOnExit(); });
}

[[noreturn]] void DesktopMain(int argc, char** argv) {
    const auto application = Application::Make(argc, argv);
    if (QGuiApplication::platformName() == kNoDisplay) {
        std::cerr << "Korvane goes on without a window: the display does not answer" << std::endl;
        RunInTerminal(argc, argv);
    }
    QApplication::setApplicationName("korvane");
    QGuiApplication::setDesktopFileName("korvane");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(ProgramIcon(true));
    QApplication::setStyle(new MarkStyle);
    SpeakFigures();
    const DesktopTheme theme;
    std::unique_ptr<frmMonitor> window;
    RunProcess(argc, argv, [&](Timers& timers) {
        window = std::make_unique<frmMonitor>(timers);
        return Face{.desk = {*window, window.get(), &window->Conversation(), &window->Mail()},
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
        korvane::DesktopMain(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "Korvane can't start: " << error.what() << std::endl;
        return 1;
    }
}
