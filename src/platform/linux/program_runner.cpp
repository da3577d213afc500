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

#include "base/error.h"
#include "platform/wait.h"

namespace korvane {
namespace {

constexpr std::size_t kMostOutput = 65536;
constexpr int kEndedBySignal = 128;

[[noreturn]] void Throw(const std::string& what, int error) {
    throw Error(what + ": " + std::strerror(error), error);
}

/// A program that was started. The destructor kills it if it is still running.
class Running {
public:
    Running(Events& events, const std::vector<std::string>& words) {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) Throw("pipe", errno);
        output_ = Descriptor(ends[0]);
        const Descriptor write(ends[1]);
        pid_ = StartProgram(words, {.output = write.Number(), .errors = write.Number()});
        end_ = OpenProcess(pid_);
        if (!end_) {
            const int error = errno;
            End();
            Throw("pidfd_open", error);
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

int Spawn(std::vector<std::string> words, pid_t& pid, const StandardFiles& standard, const std::string& file) {
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    sigset_t none;
    sigset_t all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setsigmask(&attributes, &none);
    ::posix_spawnattr_setsigdefault(&attributes, &all);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    int error = 0;
    const int given[] = {standard.input, standard.output, standard.errors};  // in the order of their numbers
    for (int number = STDIN_FILENO; number <= STDERR_FILENO && error == 0; ++number)
        error = given[number] >= 0 ? ::posix_spawn_file_actions_adddup2(&files, given[number], number)
                                   : ::posix_spawn_file_actions_addopen(&files, number, "/dev/null", O_RDWR, 0);
    if (error == 0) error = ::posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    if (error == 0)
        error = ::posix_spawnp(&pid, file.empty() ? arguments[0] : file.c_str(), &files, &attributes, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&files);
    ::posix_spawnattr_destroy(&attributes);
    return error;
}

pid_t StartProgram(const std::vector<std::string>& words, const StandardFiles& files, const std::string& file) {
    pid_t pid = 0;
    const int error = Spawn(words, pid, files, file);
    if (error != 0) Throw(words.front(), error);
    return pid;
}

Descriptor OpenProcess(pid_t pid) {
    return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0U)));
}

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
