// When a fake breaks: a list of faults, each for one kind of operation, at its nth time, on what the test names.
//
//     store.faults.Add({.operation = StoreOperation::Update, .nth = 2, .description = "disk I/O error"});
//     files.faults.Add({.forever = true, .about = "kvmonlog", .description = "No space left on device"});
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "base/text.h"

namespace korvane {

template <class Operation>
class FaultPlan {
public:
    struct Fault {
        std::optional<Operation> operation = std::nullopt;  ///< nothing: any operation
        int nth = 1;             ///< which one fails, counted from Add among those that match; 1 is the next
        bool forever = false;    ///< whether all after it fail too
        std::string about = "";  ///< what must be found, in any case, in the path, query, column or table; empty: whatever it is
        std::string description = "disk I/O error";
    };

    void Add(Fault fault) { faults_.push_back(std::move(fault)); }

    /// Everything works again.
    void Heal() { faults_.clear(); }

    std::function<void()> before = [] {};  ///< called before each operation

    /// Operations that failed so far.
    std::uint64_t Failures() const { return failures_; }

    /// For the fake, before each operation: throws Error when a fault says so, and otherwise hands on the real thing.
    template <class Real>
    Real& Pass(Operation operation, std::string_view about, Real& real) {
        before();
        for (auto fault = faults_.begin(); fault != faults_.end(); ++fault) {
            const bool meant = fault->operation.value_or(operation) == operation && Holds(ToLower(about), ToLower(fault->about));
            if (!meant || --fault->nth > 0) continue;
            fault->nth = 1;
            ++failures_;
            const Error error(fault->description);
            if (!fault->forever) faults_.erase(fault);
            throw error;
        }
        return real;
    }

private:
    std::vector<Fault> faults_;
    std::uint64_t failures_ = 0;
};

}  // namespace korvane
