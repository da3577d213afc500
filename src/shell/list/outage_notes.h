// The desktop's notifications of outages: one for each entry that goes DOWN or comes back, gathered into one when there are many.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/timer.h"
#include "store/settings_collection.h"

namespace korvane {

/// The switch in the settings; on unless it is "False".
inline constexpr const char* kDesktopNotes = "DesktopNotes";

class OutageNotes {
public:
    struct Note {
        std::string title;
        std::string text;
        bool isDown;
    };

    /// `show` shows a note to the user and returns at once.
    OutageNotes(Timers& timers, std::function<void(const Note& note)> show);

    static bool IsOn(const SettingsCollection& settings);

    /// Keeps it for the ten seconds in which others may follow, counted from the first of them. Then up to three are shown one
    /// after the other, since some trays show only one at a time; more are gathered, the outages into one note and those that are
    /// over into another.
    void Add(const std::string& entry, bool isDown, const std::string& reason);

private:
    struct Outage {
        std::string entry, reason;
    };
    void ShowNext();
    void Gather();
    void AddNotes(const std::vector<Outage>& outages, bool isDown, bool gathered);

    std::function<void(const Note& note)> show_;
    std::unique_ptr<Timer> timer_;
    std::vector<Outage> down_;
    std::vector<Outage> over_;
    std::deque<Note> toShow_;
};

}  // namespace korvane
