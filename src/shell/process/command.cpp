#include "shell/process/command.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "platform/linux/process_setup.h"
#include "shell/cli/session.h"
#include "shell/process/adapters.h"
#include "shell/process/process.h"

namespace korvane {
namespace {

constexpr std::chrono::seconds kWaitsForDatabase{5};
constexpr const char* kHome = "--home";

std::vector<std::string> WordsOf(int argc, char** argv) {
    return {argv + 1, argv + argc};
}

std::size_t TerminalWidth() {
    winsize size{};
    return ::isatty(STDOUT_FILENO) == 1 && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

// The home is named before anything is opened; wrong words are found later.
void UseHomeOf(const std::vector<std::string>& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i].starts_with(std::string(kHome) + "=")) setenv("KORVANE_HOME", words[i].substr(7).c_str(), 1);
        if (words[i] == kHome && i + 1 < words.size()) setenv("KORVANE_HOME", words[i + 1].c_str(), 1);
    }
}

// A list that a full disk has cut must not look whole. A reader that has gone, as after "| head", wants no more.
int EndOfOutput(int status) {
    struct stat to {};
    const bool isPipe = ::fstat(STDOUT_FILENO, &to) == 0 && (S_ISFIFO(to.st_mode) || S_ISSOCK(to.st_mode));
    if (std::cout.flush() || isPipe) return status;
    std::cerr << "korvanecore: the output could not be written." << std::endl;
    return status == kDone ? kNotDone : status;
}

}  // namespace

bool IsCommand(int argc, char** argv) {
    return IsCommand(WordsOf(argc, argv));
}

int RunCommand(int argc, char** argv) try {
    PrepareProcess();
    const std::vector<std::string> words = WordsOf(argc, argv);
    UseHomeOf(words);
    const QCoreApplication application(argc, argv);
    RunOptions options = OptionsOf(argc, argv);
    options.isGuest = true;
    Adapters adapters(options, kWaitsForDatabase);
    CommandOperator person(std::cout, std::cerr);
    const RunPorts ports = adapters.PortsWith({person}, [] {});
    const auto storeAt = [&options](const std::string& address) {
        return std::make_unique<QtSqlStore>(KindOfColumn, kWaitsForDatabase, SharedDatabaseAt(options.dir, address));
    };
    const int status = RunCommandWords(
        words, {ports, options, person, std::cout, std::cerr, TerminalWidth(), std::to_string(::getpid()), storeAt});
    std::_Exit(EndOfOutput(status));  // nothing waits for a name server that does not answer
} catch (const std::exception& error) {
    std::cerr << "korvanecore: " << error.what() << std::endl;
    return kWrongWords;
}

}  // namespace korvane
