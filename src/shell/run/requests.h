// Requests of the command line to the program that runs with the same home: each is a small file in a folder of the home, which
// the program reads and removes within a second. Without such a folder nothing is read.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/files.h"
#include "platform/timer.h"
#include "store/log.h"

namespace korvane {

class Requests {
public:
    struct Ports {
        Files& files;
        Timers& timers;
        Log& log;
    };

    /// `set` stores a setting, and may throw; `look` is called after each look that found a request.
    Requests(const Ports& ports, const std::string& dir, std::function<void()> look,
             std::function<void(const std::string& key, const std::string& value)> set);

    void Start() { timer_->SetEnabled(true); }

private:
    void Look();
    void Take(const std::string& path);

    Ports ports_;
    std::string folder_;
    std::function<void()> look_;
    std::function<void(const std::string& key, const std::string& value)> set_;
    std::optional<FileIdentity> seen_;
    int looks_ = 0;  ///< still to come: times of files are coarse, so a change is looked at more than once
    std::unique_ptr<Timer> timer_;
};

/// Asks the program that runs with the home to look at its entries, and to store a setting when `key` is not empty. Returns the file
/// of the request, which disappears when that is done. `name` distinguishes requests that may lie there together. Throws Error.
std::string LeaveRequest(Files& files, const std::string& dir, const std::string& name, const std::string& key = "",
                         const std::string& value = "");

}  // namespace korvane
