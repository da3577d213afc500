#include "shell/process/adapters.h"

#include <QCoreApplication>
#include <filesystem>

#include "store/database_files.h"
#include "store/ini_file.h"
#include "store/settings.h"

namespace korvane {
namespace {

/// The icon's name in the desktop's theme.
constexpr const char* kIconName = "korvane";

std::string CommandLine(int argc, char** argv) {
    std::string line;
    for (int i = 1; i < argc; ++i)
        line += (i > 1 ? " " : "") + std::string(argv[i]);
    return line;
}

}  // namespace

SharedDatabase SharedDatabaseOf(const std::string& dir, Files& files) {
    const std::string address = IniFile(files, SettingsFilePath(dir)).Read(kSettingsSection, "Database", "");
    if (address.empty()) return {};
    return {.file = DatabasePath(dir), .address = address, .schema = DatabaseStatements()};
}

RunOptions OptionsOf(int argc, char** argv) {
    const std::string folder = QCoreApplication::applicationDirPath().toStdString();
    const std::string home = EnvironmentVariable("KORVANE_HOME");
    RunOptions options{.dir = folder,
                       .dataDir = folder,
                       .commandLine = CommandLine(argc, argv),
                       .version = KORVANE_VERSION,
                       .program = QCoreApplication::applicationFilePath().toStdString(),
                       .icon = kIconName};
    if (!home.empty()) options.dir = std::filesystem::absolute(home).lexically_normal().string();
    while (options.dir.size() > 1 && options.dir.ends_with('/'))
        options.dir.pop_back();
    LinuxFiles files;
    options.isShared = !SharedDatabaseOf(options.dir, files).address.empty();
    return options;
}

}  // namespace korvane
