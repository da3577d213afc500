// How a service tells the manager that started it what it is doing: datagrams to the socket that the manager named, as
// sd_notify(3) has them.
#pragma once

#include <string>
#include <utility>

namespace korvane {

class NotifySocket {
public:
    /// A path, or "@" and a name of the abstract kind; blank: nobody listens.
    explicit NotifySocket(std::string address = "") : address_(std::move(address)) {}

    /// Sends lines of "VARIABLE=value". Whether they went out; never blocks, and a listener that is gone or too busy is no error.
    bool Send(const std::string& lines) const;

private:
    std::string address_;
};

}  // namespace korvane
