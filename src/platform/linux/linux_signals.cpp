#include "platform/linux/linux_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "base/error.h"

namespace korvane {
namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

// A signal handler gets no argument of ours, so the pipe it writes to has to be reachable from everywhere in this file.
int signalPipe[2] = {-1, -1};

extern "C" void OnSignal(int) {
    const int saved = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(signalPipe[1], &byte, 1);
    errno = saved;
}

// A signal that whoever started the program made it ignore (nohup, a shell's background) stays ignored.
void SetHandler(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
    }
}

}  // namespace

TerminationSignals::TerminationSignals(Events& events, std::function<void()> asked) {
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) throw Error(std::strerror(errno), errno);
    watch_ = events.WatchReadable(signalPipe[0], [asked = std::move(asked)] {
        char bytes[16];
        while (read(signalPipe[0], bytes, sizeof bytes) > 0) {
        }
        asked();
    });
    SetHandler(OnSignal);
}

TerminationSignals::~TerminationSignals() {
    SetHandler(SIG_DFL);
    watch_.reset();
    close(signalPipe[0]);
    close(signalPipe[1]);
}

void IgnoreBrokenPipes() {
    signal(SIGPIPE, SIG_IGN);
}

}  // namespace korvane
