// Commands of the operator as processes of their own: started with nothing of this program but its folder and environment, and
// taken out of the system's table when they end, also where no init does that.
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

namespace korvane {

class LinuxProcesses : public Processes {
public:
    /// `events` must outlive this. A child that ends is reaped from its pump.
    explicit LinuxProcesses(Events& events) : events_(events) {}

    /// As the port says; `style` has no effect. Blocks for the start alone, a millisecond or so. Throws Error for a blank command
    /// too.
    int Shell(const std::string& command, WindowStyle style) override;

    /// As Shell, for a command that is in words already: the first names the program, and none of them is looked at by a shell.
    /// `ended` hears its status, as waitpid(2) gives it, unless the system is short of descriptors.
    int Start(const std::vector<std::string>& words, const std::function<void(int status)>& ended = {});

    /// By the desktop's choice for that kind of file, or for pages by the variable BROWSER.
    std::string DefaultProgram(const std::string& extension) override;
    /// With xdg-open where it is installed, which asks the desktop; else with the commands of BROWSER, in their order.
    bool OpenPage(const std::string& path, const NotOpened& notOpened) override;
    /// With xdg-open where it is installed, else with the first editor that is.
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
    std::vector<pid_t> unwatched_;  ///< for want of a descriptor; reaped when something else starts or ends
};

}  // namespace korvane
