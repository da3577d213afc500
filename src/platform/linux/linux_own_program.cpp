#include "platform/linux/linux_own_program.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <utility>

#include "base/error.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/program_runner.h"

namespace korvane {
namespace {

/// Names the running file, even after an update has replaced it.
constexpr const char* kOwnFile = "/proc/self/exe";

/// A child that prints no line ends must not fill the memory.
constexpr std::size_t kLongestLine = 65536;

void CheckStart(bool good, const char* what) {
    if (!good) throw Error(std::string("This program cannot be started once more: ") + what + ": " + std::strerror(errno), errno);
}

Descriptor InMemory(const std::string& input) {
    Descriptor memory(::memfd_create("input", MFD_CLOEXEC));
    CheckStart(static_cast<bool>(memory), "memfd_create");
    for (std::size_t done = 0; done < input.size();) {
        const ssize_t written = ::write(memory.Number(), input.data() + done, input.size() - done);
        CheckStart(written > 0, "write");
        done += static_cast<std::size_t>(written);
    }
    CheckStart(::lseek(memory.Number(), 0, SEEK_SET) == 0, "lseek");
    return memory;
}

class Child : public OwnProgram::Work {
public:
    Child(Events& events, const std::string& word, const std::string& input, OwnProgram::Listener listener)
        : listener_(std::move(listener)) {
        int ends[2];
        CheckStart(::pipe2(ends, O_CLOEXEC) == 0, "pipe");
        output_ = Descriptor(ends[0]);
        const Descriptor write(ends[1]);
        CheckStart(::fcntl(output_.Number(), F_SETFL, O_NONBLOCK) == 0, "fcntl");
        watch_ = events.WatchReadable(output_.Number(), [this] { TakeOutput(); });
        const Descriptor memory = InMemory(input);
        pid_ = StartProgram({"korvanecore", word, std::to_string(::getpid())},
                            {.input = memory.Number(), .output = write.Number()}, kOwnFile);
    }
    ~Child() override {
        if (pid_ == 0) return;
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

private:
    void TakeOutput() {
        std::array<char, 4096> piece;
        ssize_t size = 0;
        while ((size = ::read(output_.Number(), piece.data(), piece.size())) > 0) {
            text_.append(piece.data(), static_cast<std::size_t>(size));
            for (auto end = text_.find('\n'); end != std::string::npos; end = text_.find('\n')) {
                const std::string line = text_.substr(0, end);
                text_.erase(0, end + 1);
                listener_.line(line);
            }
            if (text_.size() > kLongestLine) text_.clear();
        }
        if (size == 0) Finish();
    }

    // The child closes its output only by ending.
    void Finish() {
        watch_.reset();
        int status = 0;
        ::waitpid(std::exchange(pid_, 0), &status, 0);
        std::string problem;
        if (WIFSIGNALED(status)) problem = "The process was ended by signal " + std::to_string(WTERMSIG(status)) + ".";
        if (WIFEXITED(status) && WEXITSTATUS(status) != 0)
            problem = "The process ended with status " + std::to_string(WEXITSTATUS(status)) + ".";
        const auto ended = std::move(listener_.ended);
        ended(problem);  // may have destroyed this
    }

    OwnProgram::Listener listener_;
    Descriptor output_;
    std::unique_ptr<Events::Watch> watch_;
    pid_t pid_ = 0;
    std::string text_;  ///< the beginning of a line
};

}  // namespace

std::unique_ptr<OwnProgram::Work> LinuxOwnProgram::Start(const std::string& word, const std::string& input, Listener listener) {
    return std::make_unique<Child>(events_, word, input, std::move(listener));
}

bool EndWithParent(const std::string& parent) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    return std::to_string(::getppid()) == parent;
}

}  // namespace korvane
