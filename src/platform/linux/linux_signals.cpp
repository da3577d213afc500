#include "platform/linux/linux_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "base/error.h"

namespace korvane {
namespace {

// A signal handler has no argument of ours, so the pipe that it writes to must be global in this file.
std::array<int, NSIG> pipeOfSignal;

extern "C" void NoteSignal(int signal) {
    const int saved = errno;
    const char byte = static_cast<char>(signal);
    [[maybe_unused]] const auto written = write(pipeOfSignal[static_cast<std::size_t>(signal)], &byte, 1);
    errno = saved;
}

// A signal that the parent process has set to be ignored (nohup, a shell's background job) stays ignored.
void SetHandler(const std::vector<int>& numbers, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigfillset(&action.sa_mask);  // a nested second signal would be noted before the first
    for (const int signal : numbers) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
    }
}

}  // namespace

NotedSignals::NotedSignals(Events& events, std::vector<int> numbers, std::function<void()> came) : numbers_(std::move(numbers)) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) throw Error(std::strerror(errno), errno);
    read_ = Descriptor(ends[0]);
    write_ = Descriptor(ends[1]);
    watch_ = events.WatchReadable(read_.Number(), std::move(came));
    for (const int signal : numbers_)
        pipeOfSignal[static_cast<std::size_t>(signal)] = write_.Number();
    SetHandler(numbers_, NoteSignal);
}

NotedSignals::~NotedSignals() {
    SetHandler(numbers_, SIG_DFL);
}

int NotedSignals::Take() const {
    char signal = 0;
    return read(read_.Number(), &signal, 1) == 1 ? signal : 0;
}

TerminationSignals::TerminationSignals(Events& events, std::function<void()> asked)
    : NotedSignals(events, {SIGTERM, SIGINT, SIGHUP}, [this] { Look(); }), asked_(std::move(asked)) {}

void TerminationSignals::Look() const {
    bool came = false;
    while (Take() != 0)
        came = true;
    if (came) asked_();
}

PauseSignals::PauseSignals(Events& events, std::function<void()> pause, std::function<void()> goOn)
    : NotedSignals(events, {SIGUSR1, SIGUSR2}, [this, pause = std::move(pause), goOn = std::move(goOn)] {
          while (const int signal = Take())
              signal == SIGUSR1 ? pause() : goOn();
      }) {}

}  // namespace korvane
