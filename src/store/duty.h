// Work that one instance at a time does for all that share a list: whoever takes it first keeps it until it releases it, ends, or
// loses its connection.
#pragma once

#include <memory>
#include <string>

#include "platform/connection.h"

namespace korvane {

class Duty {
public:
    /// `dir` is the folder of the database.
    Duty(Store& store, std::string dir, std::string name) : store_(store), dir_(std::move(dir)), name_(std::move(name)) {}

    /// Returns whether this instance has the duty, after trying to get it. Asks the server each time: a connection that was lost
    /// has lost the duty. Throws nothing.
    bool Take();

    void Release() { conn_.reset(); }

private:
    Store& store_;
    std::string dir_;
    std::string name_;
    std::unique_ptr<Connection> conn_;  ///< open while this instance has the duty
};

}  // namespace korvane
