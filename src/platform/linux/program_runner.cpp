#include "platform/linux/program_runner.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include "base/error.h"
#include "platform/linux/descriptor.h"
#include "platform/wait.h"

namespace korvane {
namespace {

constexpr std::size_t kMostOutput = 65536;
constexpr int kEndedBySignal = 128;

void Check(int error, const std::string& what) {
    if (error != 0) throw Error(what + ": " + std::strerror(error), error);
}

std::pair<Descriptor, Descriptor> NewPipe() {
    int ends[2];
    Check(::pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0 ? 0 : errno, "pipe");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

/// The new process gets its own process group, the default signals, and no open files but /dev/null and the pipe twice.
class Spawning {
public:
    explicit Spawning(const Descriptor& output) {
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        ::posix_spawn_file_actions_init(&files_);
        ::posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        for (const int standard : {STDOUT_FILENO, STDERR_FILENO})
            ::posix_spawn_file_actions_adddup2(&files_, output.Number(), standard);
        ::posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);
    }
    ~Spawning() {
        ::posix_spawn_file_actions_destroy(&files_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    Spawning(const Spawning&) = delete;
    Spawning& operator=(const Spawning&) = delete;

    pid_t Start(std::vector<std::string> words) const {
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        pid_t pid = 0;
        Check(::posix_spawnp(&pid, arguments[0], &files_, &attributes_, arguments.data(), environ), words.front());
        return pid;
    }

private:
    posix_spawnattr_t attributes_{};
    posix_spawn_file_actions_t files_{};
};

/// A program that was started. The destructor kills it if it is still running.
class Running {
public:
    Running(Events& events, const std::vector<std::string>& words) {
        auto [read, write] = NewPipe();
        output_ = std::move(read);
        pid_ = Spawning(write).Start(words);
        end_ = Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0U)));
        if (!end_) {
            const int error = errno;
            End();
            Check(error, "pidfd_open");
        }
        outputWatch_ = events.WatchReadable(output_.Number(), [this] { TakeOutput(); });
        endWatch_ = events.WatchReadable(end_.Number(), [this] { Reap(); });
    }
    ~Running() {
        if (!status_) End();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    bool Ended() const { return status_.has_value(); }

    ProgramResult Result() {
        TakeOutput();
        return {.status = WIFSIGNALED(*status_) ? kEndedBySignal + WTERMSIG(*status_) : WEXITSTATUS(*status_), .output = text_};
    }

private:
    void TakeOutput() {
        std::array<char, 4096> piece;
        ssize_t size = 0;
        while ((size = ::read(output_.Number(), piece.data(), piece.size())) > 0) {
            const std::size_t room = kMostOutput - text_.size();
            text_.append(piece.data(), std::min(static_cast<std::size_t>(size), room));
        }
        if (size == 0) outputWatch_.reset();  // at its end the pipe would stay readable for ever
    }

    void Reap() {
        int status = 0;
        if (::waitpid(pid_, &status, WNOHANG) != pid_) return;
        status_ = status;
        endWatch_.reset();
    }

    void End() {
        ::kill(-pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }

    Descriptor output_;
    Descriptor end_;  ///< readable when the program has ended
    pid_t pid_ = 0;
    std::string text_;
    std::optional<int> status_;
    std::unique_ptr<Events::Watch> outputWatch_;
    std::unique_ptr<Events::Watch> endWatch_;
};

}  // namespace

RunProgram ProgramRunner(Events& events, const Clock& clock) {
    return [&events, &clock](const std::vector<std::string>& words, std::chrono::milliseconds limit) {
        Running program(events, words);
        if (!WaitFor(events, clock, limit, [&] { return program.Ended(); })) {
            throw Error(words.front() + " did not answer within " + std::to_string(limit.count() / 1000) + " s");
        }
        return program.Result();
    };
}

}  // namespace korvane
