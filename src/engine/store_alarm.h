// Tells once that the store does not take what the checks bring, and once that it takes it again. Without it a full disk shows in
// nothing but checks that succeed and are forgotten.
#pragma once

#include <exception>
#include <string>

#include "platform/operator.h"
#include "platform/service_manager.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

/// Why the store as a whole refused a write; empty for an entry that somebody has removed meanwhile.
std::string RefusalOf(const std::exception& error);

class StoreAlarm {
public:
    struct Ports {
        Operator& person;
        StatusLog& status;
        Log& log;
        ServiceManager& manager;
    };

    explicit StoreAlarm(const Ports& ports) : ports_(ports) {}

    /// After each entry: why its outcome could not be written; empty when it was.
    void Note(const std::string& refusal);

    /// The tray shows nothing else while this is so.
    bool Raised() const { return raised_; }

private:
    void Tell(const std::string& text);

    Ports ports_;
    bool raised_ = false;
};

}  // namespace korvane
