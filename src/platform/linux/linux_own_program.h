// Starts this program once more. The input is passed in memory: it contains passwords, which belong neither on a command line nor
// on a disk.
#pragma once

#include "platform/events.h"
#include "platform/own_program.h"

namespace korvane {

class LinuxOwnProgram : public OwnProgram {
public:
    /// `events` must outlive this and everything that it starts.
    explicit LinuxOwnProgram(Events& events) : events_(events) {}

    /// As described by the port; the second word on the command line is the process id of this process, for EndWithParent.
    std::unique_ptr<Work> Start(const std::string& word, const std::string& input, Listener listener) override;

private:
    Events& events_;
};

/// For the child: from now on the system kills it when the process `parent` ends. Returns false if that has happened already.
bool EndWithParent(const std::string& parent);

}  // namespace korvane
