// Reports once that the store refuses the outcomes of checks, and once that it accepts them again. Otherwise a full disk would
// only mean successful checks that are forgotten.
#pragma once

#include <exception>
#include <string>

#include "platform/operator.h"
#include "platform/service_manager.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

/// Returns why the store as a whole refused a write; empty if only the entry was removed meanwhile.
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

    /// Called after each entry with the reason why its outcome could not be written; empty when it was.
    void Note(const std::string& refusal);

    /// While true, the tray shows nothing else.
    bool Raised() const { return raised_; }

private:
    void Tell(const std::string& text);

    Ports ports_;
    bool raised_ = false;
};

}  // namespace korvane
