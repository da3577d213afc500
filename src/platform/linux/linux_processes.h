// Programs that are started and left to themselves: the operator's commands, what opens a page or a file, and what plays a sound.
// They are reaped when they end, also where no init process does it.
#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/events.h"
#include "platform/linux/descriptor.h"
#include "platform/processes.h"
#include "platform/sound.h"

namespace korvane {

class LinuxProcesses : public Processes {
public:
    /// `events` must outlive this. Its pump reaps children that end.
    explicit LinuxProcesses(Events& events) : events_(events) {}

    /// As described by the port; `style` has no effect. Blocks only for the start, about a millisecond. Also throws Error for an
    /// empty command.
    int Shell(const std::string& command, WindowStyle style, const Variables& variables = {}) override;

    /// Like Shell, for a command that is already split into words: the first is the program, and no shell interprets any of them.
    /// `ended` receives the status in the form of waitpid(2), unless the system is short of descriptors. Errors name the program.
    int Start(const std::vector<std::string>& words, const std::function<void(int status)>& ended = {});

    /// Uses the desktop's choice for that kind of file or, for pages, the variable BROWSER.
    std::string DefaultProgram(const std::string& extension) override;
    /// Uses xdg-open, which asks the desktop, if it is installed; else the commands of BROWSER, in their order.
    bool OpenPage(const std::string& path, const NotOpened& notOpened) override;
    /// Uses xdg-open if it is installed, else the first editor that is.
    bool OpenText(const std::string& path, const NotOpened& notOpened) override;

private:
    struct Child {
        Descriptor end;  ///< readable when the process has ended
        std::unique_ptr<Events::Watch> watch;
        std::function<void(int status)> ended;
    };

    bool Open(std::vector<std::vector<std::string>> ways, std::string why, const NotOpened& notOpened);
    void ReapAtItsEnd(pid_t pid, const std::function<void(int status)>& ended = {});
    void Ended(pid_t pid);
    void ReapUnwatched();

    Events& events_;
    std::unordered_map<pid_t, Child> watched_;
    std::vector<pid_t> unwatched_;  ///< without a descriptor; reaped when another process starts or ends
};

/// Plays sounds through an installed player: that of PipeWire, of PulseAudio, or of ALSA.
class DesktopSound : public Sound {
public:
    /// `processes` must outlive this.
    explicit DesktopSound(LinuxProcesses& processes) : processes_(processes) {}

    /// Starts the first player that is installed (in the folders of PATH) and returns without waiting for it. Does nothing if the
    /// path is empty or is not a file; whether the player can play the file is not known.
    void PlaySound(const std::string& path) override;

private:
    LinuxProcesses& processes_;
};

}  // namespace korvane
