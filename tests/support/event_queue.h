// The calendar of the virtual world: actions in order of their moment, and of their coming in where moments are equal. Only small
// fixed entries move in the heap; the actions stay where they are in a table of slots.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace korvane {

/// Names one action; never used twice.
struct EventId {
    std::size_t slot = 0;
    std::uint64_t number = 0;  ///< 0: no action
};

class EventQueue {
public:
    using Action = std::function<void()>;

    EventId Add(std::chrono::milliseconds when, Action action);

    /// An action that has been taken out or cancelled is no error.
    void Cancel(EventId id);

    /// The moment of the next action; nothing when there is none.
    std::optional<std::chrono::milliseconds> NextMoment();

    /// Takes the next action out. There must be one.
    Action TakeNext();

private:
    struct Entry {
        std::chrono::milliseconds when;
        std::uint64_t number;
        std::size_t slot;
    };
    struct Slot {
        std::uint64_t number = 0;  ///< of the action that lives here, 0 for none
        Action action;
    };
    static bool Later(const Entry& a, const Entry& b) { return a.when != b.when ? a.when > b.when : a.number > b.number; }
    void Pop();
    void Free(std::size_t slot);

    std::vector<Entry> heap_;
    std::vector<Slot> slots_;
    std::vector<std::size_t> free_;
    std::uint64_t lastNumber_ = 0;
};

}  // namespace korvane
