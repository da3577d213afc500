#include "support/event_queue.h"

#include <algorithm>
#include <utility>

namespace korvane {

EventId EventQueue::Add(std::chrono::milliseconds when, Action action) {
    std::size_t slot = slots_.size();
    if (free_.empty()) {
        slots_.emplace_back();
    } else {
        slot = free_.back();
        free_.pop_back();
    }
    const std::uint64_t number = ++lastNumber_;
    slots_[slot] = {number, std::move(action)};
    heap_.push_back({when, number, slot});
    std::push_heap(heap_.begin(), heap_.end(), Later);
    return {slot, number};
}

void EventQueue::Cancel(EventId id) {
    if (id.number != 0 && slots_[id.slot].number == id.number) Free(id.slot);
}

std::optional<std::chrono::milliseconds> EventQueue::NextMoment() {
    // A cancelled action leaves its entry in the heap; it is dropped when it comes up.
    while (!heap_.empty() && slots_[heap_.front().slot].number != heap_.front().number)
        Pop();
    if (heap_.empty()) return std::nullopt;
    return heap_.front().when;
}

EventQueue::Action EventQueue::TakeNext() {
    NextMoment();
    const std::size_t slot = heap_.front().slot;
    Action action = std::move(slots_[slot].action);
    Pop();
    Free(slot);
    return action;
}

void EventQueue::Pop() {
    std::pop_heap(heap_.begin(), heap_.end(), Later);
    heap_.pop_back();
}

void EventQueue::Free(std::size_t slot) {
    slots_[slot] = {};
    free_.push_back(slot);
}

}  // namespace korvane
