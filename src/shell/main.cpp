// The only executable. If there is a display, it loads the windows from a separate module, so that a start without a display
// needs neither desktop libraries nor memory for them.
#include <dlfcn.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>

#include "platform/linux/process_setup.h"
#include "shell/process/command.h"
#include "shell/process/errand.h"
#include "shell/process/process.h"
#include "store/safeguards.h"

namespace korvane {
namespace {

constexpr int kCannotStart = 1;
constexpr const char* kWindows = "korvanedesktop.so";
/// The word with which the program only prints how the settings file of a new home begins.
constexpr std::string_view kRecommendedSettings = "--recommended-settings";

bool HasDisplay() {
    const auto set = [](const char* name) {
        const char* value = std::getenv(name);
        return value != nullptr && *value != '\0';
    };
    return set("DISPLAY") || set("WAYLAND_DISPLAY");
}

using DesktopMain = int(int argc, char** argv);

/// Returns the main function of the windows, or null when they or the libraries they need are not installed.
DesktopMain* LoadWindows() {
    const std::filesystem::path beside = std::filesystem::read_symlink("/proc/self/exe").parent_path() / kWindows;
    void* library = dlopen(beside.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* found = library == nullptr ? nullptr : dlsym(library, "KorvaneDesktopMain");
    if (found == nullptr) std::cerr << "Korvane goes on without a window: " << dlerror() << std::endl;
    return reinterpret_cast<DesktopMain*>(found);
}

int Main(int argc, char** argv) {
    if (argc == 2 && argv[1] == kRecommendedSettings) {
        std::cout << RecommendedSettings();
        return 0;
    }
    PrepareProcess();
    if (IsErrand(argc, argv)) return RunErrand(argc, argv);
    if (HasDisplay()) {
        if (DesktopMain* desktopMain = LoadWindows(); desktopMain != nullptr) return desktopMain(argc, argv);
    }
    const QCoreApplication application(argc, argv);
    RunInTerminal(argc, argv);
}

}  // namespace
}  // namespace korvane

int main(int argc, char** argv) {
    korvane::OpenStandardDescriptors();
    if (korvane::IsCommand(argc, argv)) return korvane::RunCommand(argc, argv);
    const korvane::UnwaitingStream output(std::cout, STDOUT_FILENO);
    const korvane::UnwaitingStream errors(std::cerr, STDERR_FILENO);
    try {
        return korvane::Main(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "Korvane can't start: " << error.what() << std::endl;
        return korvane::kCannotStart;
    }
}
