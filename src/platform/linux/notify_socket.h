// Lets a service notify the manager that started it of its state, by datagrams to the manager's socket in the form of
// sd_notify(3).
#pragma once

#include <string>
#include <utility>

namespace korvane {

class NotifySocket {
public:
    /// A path, or "@" and a name in the abstract namespace; empty: there is no listener.
    explicit NotifySocket(std::string address = "") : address_(std::move(address)) {}

    /// Sends lines of "VARIABLE=value". Returns whether they were sent; never blocks, and a missing or busy listener is not an
    /// error.
    bool Send(const std::string& lines) const;

private:
    std::string address_;
};

}  // namespace korvane
