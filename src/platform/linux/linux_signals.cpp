#include "platform/linux/linux_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <initializer_list>
#include <string>

#include "base/error.h"

namespace korvane {
namespace {

using SignalPipe = int[2];

// A signal handler has no argument of ours, so the pipes that it writes to must be global in this file.
SignalPipe terminationPipe = {-1, -1};
SignalPipe pausePipe = {-1, -1};

void Write(const SignalPipe& to, int signal) {
    const int saved = errno;
    const char byte = static_cast<char>(signal);
    [[maybe_unused]] const auto written = write(to[1], &byte, 1);
    errno = saved;
}

extern "C" void OnTermination(int signal) {
    Write(terminationPipe, signal);
}

extern "C" void OnPause(int signal) {
    Write(pausePipe, signal);
}

// A signal that the parent process has set to be ignored (nohup, a shell's background job) stays ignored.
void SetHandler(std::initializer_list<int> signals, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigfillset(&action.sa_mask);  // a nested second signal would be noted before the first
    for (const int signal : signals) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
    }
}

void Open(SignalPipe& pipe) {
    if (pipe2(pipe, O_CLOEXEC | O_NONBLOCK) != 0) throw Error(std::strerror(errno), errno);
}

void Close(SignalPipe& pipe) {
    close(pipe[0]);
    close(pipe[1]);
}

}  // namespace

TerminationSignals::TerminationSignals(Events& events, std::function<void()> asked) : asked_(std::move(asked)) {
    Open(terminationPipe);
    watch_ = events.WatchReadable(terminationPipe[0], [this] { Look(); });
    SetHandler({SIGTERM, SIGINT, SIGHUP}, OnTermination);
}

void TerminationSignals::Look() {
    bool came = false;
    char bytes[16];
    while (read(terminationPipe[0], bytes, sizeof bytes) > 0)
        came = true;
    if (came) asked_();
}

TerminationSignals::~TerminationSignals() {
    SetHandler({SIGTERM, SIGINT, SIGHUP}, SIG_DFL);
    watch_.reset();
    Close(terminationPipe);
}

PauseSignals::PauseSignals(Events& events, std::function<void()> pause, std::function<void()> goOn) {
    Open(pausePipe);
    watch_ = events.WatchReadable(pausePipe[0], [pause = std::move(pause), goOn = std::move(goOn)] {
        char signal = 0;
        while (read(pausePipe[0], &signal, 1) == 1)
            signal == SIGUSR1 ? pause() : goOn();
    });
    SetHandler({SIGUSR1, SIGUSR2}, OnPause);
}

PauseSignals::~PauseSignals() {
    SetHandler({SIGUSR1, SIGUSR2}, SIG_DFL);
    watch_.reset();
    Close(pausePipe);
}

void IgnoreBrokenPipes() {
    signal(SIGPIPE, SIG_IGN);
}

}  // namespace korvane
