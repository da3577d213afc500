#include "platform/linux/linux_processes.h"

#include <errno.h>
#include <sys/wait.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/linux/desktop_entries.h"
#include "platform/linux/program_runner.h"

namespace korvane {
namespace {

constexpr std::string_view kShellSigns = "|&;<>()$`\\\"'*?[]{}#~=%!\n\r";

/// Each watched process costs a descriptor; commands that hang for ever must not use up those that the checks need.
constexpr std::size_t kMostWatched = 100;

constexpr std::string_view kPagePlace = "%s";

/// A program that fails within this time has not opened the file; one that fails later has shown it for a while.
constexpr std::chrono::seconds kGivesUpWithin{10};

/// For a desktop without xdg-open: editors with their own window.
constexpr const char* kTextEditors[] = {"gnome-text-editor", "gedit", "kate", "kwrite", "mousepad", "xed", "pluma", "featherpad"};

constexpr const char* kPlayers[] = {"pw-play", "paplay", "aplay"};

using Words = std::vector<std::string>;

Words ShellWords(const std::string& command) {
    return {"/bin/sh", "-c", "--", command};
}

Words PlainWords(const std::string& command) {
    Words words = Split(ReplaceAll(command, "\t", " "), ' ');
    std::erase(words, "");
    return words;
}

// Returns the commands between the colons of BROWSER; the page replaces "%s" or is appended to a command without it.
std::vector<Words> BrowserCommands(const std::string& page) {
    std::vector<Words> commands;
    for (const std::string& command : Split(EnvironmentVariable("BROWSER"), ':')) {
        Words words = PlainWords(command);
        if (words.empty()) continue;
        const bool hasPlace = Holds(command, kPagePlace);
        for (std::string& word : words)
            word = ReplaceAll(word, kPagePlace, page);
        if (!hasPlace) words.push_back(page);
        commands.push_back(std::move(words));
    }
    return commands;
}

/// Returns whether the process is completely gone.
bool Reap(pid_t pid, int& status) {
    const pid_t ended = ::waitpid(pid, &status, WNOHANG);
    return ended == pid || (ended < 0 && errno == ECHILD);
}

}  // namespace

int LinuxProcesses::Shell(const std::string& command, WindowStyle /*style*/, const Variables& variables) {
    ReapUnwatched();
    const std::string line = TrimAll(command);
    if (line.empty()) throw Error("The command is blank");
    if (line.find('\0') != std::string::npos) throw Error("The command holds a character that no command can have");
    const bool plain = line.find_first_of(kShellSigns) == std::string::npos;

    pid_t pid = 0;
    const auto start = [&](Words words) { return Spawn(std::move(words), pid, {}, "", variables); };
    int error = start(plain ? PlainWords(line) : ShellWords(line));
    if (error == ENOEXEC) error = start(ShellWords(line));  // a script that does not name its interpreter
    if (error != 0) throw Error(std::strerror(error), error);
    ReapAtItsEnd(pid);
    return pid;
}

int LinuxProcesses::Start(const Words& words, const std::function<void(int status)>& ended) {
    ReapUnwatched();
    const pid_t pid = StartProgram(words);
    ReapAtItsEnd(pid, ended);
    return pid;
}

std::string LinuxProcesses::DefaultProgram(const std::string& extension) {
    const std::string kind = KindOfFile(extension);
    if (kind.empty()) return "";
    std::string entry = DefaultDesktopEntry(kind, EnvironmentVariable);
    if (!entry.empty() || kind != kPageKind) return entry;
    const std::vector<Words> commands = BrowserCommands("");
    return commands.empty() ? "" : commands.front().front();
}

bool LinuxProcesses::OpenPage(const std::string& path, const NotOpened& notOpened) {
    std::vector<Words> ways = BrowserCommands(path);
    ways.insert(ways.begin(), {"xdg-open", path});
    return Open(std::move(ways), "", notOpened);
}

bool LinuxProcesses::OpenText(const std::string& path, const NotOpened& notOpened) {
    std::vector<Words> ways{{"xdg-open", path}};
    for (const char* editor : kTextEditors)
        ways.push_back({editor, path});
    return Open(std::move(ways), "", notOpened);
}

// The next way is tried if a program is not installed or gives up, as xdg-open does when it knows no program. The reported reason
// is that of the first way, which is the desktop's own.
bool LinuxProcesses::Open(std::vector<Words> ways, std::string why, const NotOpened& notOpened) {
    while (!ways.empty()) {
        const Words words = std::move(ways.front());
        ways.erase(ways.begin());
        try {
            Start(words, [=, this, name = words.front(), began = std::chrono::steady_clock::now()](int status) {
                const bool failed = WIFEXITED(status) && WEXITSTATUS(status) != 0;
                if (!failed || std::chrono::steady_clock::now() - began > kGivesUpWithin) return;
                const std::string gaveUp = name + " ended with status " + std::to_string(WEXITSTATUS(status));
                Open(ways, why.empty() ? gaveUp : why, notOpened);
            });
            return true;
        } catch (const std::exception& error) {
            if (why.empty()) why = error.what();
        }
    }
    notOpened(why);
    return false;
}

void LinuxProcesses::ReapAtItsEnd(pid_t pid, const std::function<void(int status)>& ended) {
    Child child;
    child.ended = ended;
    if (watched_.size() < kMostWatched) child.end = OpenProcess(pid);
    const auto watch = [&] { child.watch = events_.WatchReadable(child.end.Number(), [this, pid] { Ended(pid); }); };
    if (child.end && IgnoreErrors(watch)) {
        watched_[pid] = std::move(child);
    } else {
        unwatched_.push_back(pid);
    }
}

void LinuxProcesses::Ended(pid_t pid) {
    ReapUnwatched();
    int status = 0;
    if (!Reap(pid, status)) return;
    const auto ended = std::move(watched_[pid].ended);
    watched_.erase(pid);
    if (!unwatched_.empty()) {
        const pid_t next = unwatched_.back();  // a descriptor is available for one more now
        unwatched_.pop_back();
        ReapAtItsEnd(next);
    }
    if (ended) ended(status);
}

void LinuxProcesses::ReapUnwatched() {
    int status = 0;
    std::erase_if(unwatched_, [&](pid_t pid) { return Reap(pid, status); });
}

void DesktopSound::PlaySound(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return;
    // An absolute path, so that no player takes a file name for one of its options.
    const std::filesystem::path file = std::filesystem::absolute(path, error);
    if (error) return;
    for (const char* player : kPlayers) {
        if (IgnoreErrors([&] { processes_.Start({player, file.string()}); })) return;
    }
}

}  // namespace korvane
