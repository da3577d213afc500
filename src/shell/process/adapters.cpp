#include "shell/process/adapters.h"

#include <unistd.h>

#include <QCoreApplication>
#include <climits>
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

std::string DefaultInstance(const std::string& dir) {
    char host[HOST_NAME_MAX + 1] = "";
    ::gethostname(host, HOST_NAME_MAX);
    return std::string(host) + ":" + dir.substr(dir.rfind('/') + 1);
}

}  // namespace

SharedDatabase SharedDatabaseOf(const std::string& dir, Files& files) {
    const std::string address = IniFile(files, SettingsFilePath(dir)).Read(kSettingsSection, "Database", "");
    return SharedDatabaseAt(dir, address);
}

SharedDatabase SharedDatabaseAt(const std::string& dir, const std::string& address) {
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
    options.pid = ::getpid();
    LinuxFiles files;
    options.isShared = !SharedDatabaseOf(options.dir, files).address.empty();
    if (options.isShared)
        options.instance =
            IniFile(files, SettingsFilePath(options.dir)).Read(kSettingsSection, "InstanceName", DefaultInstance(options.dir));
    return options;
}

}  // namespace korvane
