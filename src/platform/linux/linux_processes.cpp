#include "platform/linux/linux_processes.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <string_view>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/linux/default_program.h"

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

using Words = std::vector<std::string>;

Words ShellWords(const std::string& command) {
    return {"/bin/sh", "-c", "--", command};
}

Words PlainWords(const std::string& command) {
    Words words = Split(ReplaceAll(command, "\t", " "), ' ');
    std::erase(words, "");
    return words;
}

void Check(int error) {
    if (error != 0) throw Error(std::strerror(error), error);
}

/// What the new process does not inherit: it gets its own session, the default signals, and no open files but /dev/null three
/// times.
class FreshStart {
public:
    FreshStart() {
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        Check(::posix_spawnattr_init(&attributes_));
        Check(::posix_spawnattr_setsigmask(&attributes_, &none));
        Check(::posix_spawnattr_setsigdefault(&attributes_, &all));
        Check(::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
        Check(::posix_spawn_file_actions_init(&files_));
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            Check(::posix_spawn_file_actions_addopen(&files_, standard, "/dev/null", O_RDWR, 0));
        Check(::posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1));
    }
    ~FreshStart() {
        ::posix_spawn_file_actions_destroy(&files_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    FreshStart(const FreshStart&) = delete;
    FreshStart& operator=(const FreshStart&) = delete;

    /// Returns the error number, 0 when the program of the first word runs as `pid`.
    int Spawn(Words words, pid_t& pid) const {
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        return ::posix_spawnp(&pid, arguments[0], &files_, &attributes_, arguments.data(), environ);
    }

private:
    posix_spawnattr_t attributes_{};
    posix_spawn_file_actions_t files_{};
};

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

// Returns an empty descriptor if the kernel is older than 5.3 or forbids the call.
Descriptor OpenProcess(pid_t pid) {
    return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0U)));
}

}  // namespace

int LinuxProcesses::Shell(const std::string& command, WindowStyle /*style*/) {
    ReapUnwatched();
    const std::string line = TrimAll(command);
    if (line.empty()) throw Error("The command is blank");
    if (line.find('\0') != std::string::npos) throw Error("The command holds a character that no command can have");
    const bool plain = line.find_first_of(kShellSigns) == std::string::npos;

    const FreshStart start;
    pid_t pid = 0;
    int error = start.Spawn(plain ? PlainWords(line) : ShellWords(line), pid);
    if (error == ENOEXEC) error = start.Spawn(ShellWords(line), pid);  // a script that does not name its interpreter
    Check(error);
    ReapAtItsEnd(pid);
    return pid;
}

int LinuxProcesses::Start(const Words& words, const std::function<void(int status)>& ended) {
    ReapUnwatched();
    pid_t pid = 0;
    Check(FreshStart().Spawn(words, pid));
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
            if (why.empty()) why = words.front() + ": " + error.what();
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

}  // namespace korvane
