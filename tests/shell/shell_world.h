// The program with somebody at the desk who keeps in order all that is shown, and scripts that hold what is done together with what
// comes of it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "support/world.h"

namespace korvane {

using Texts = std::vector<std::string>;
using Deed = std::function<std::string(const std::string& order)>;

/// What the deed gives for each of the orders, which have bars between them.
inline std::string Each(const std::string& orders, const Deed& deed) {
    std::string given;
    for (const std::string& order : Split(orders, '|'))
        given += deed(order) + "; ";
    return given;
}

/// Does what each line says between "$ " and " => ". The rest of the script must be what the deed gives for it.
inline void Play(const std::string& script, const Deed& deed) {
    std::string played = "\n";
    for (const std::string& line : Split(script, '\n')) {
        const std::string order = line.substr(0, line.find(" =>"));
        if (order.starts_with("$ ")) played += Trim(order + " => " + deed(order.substr(2))) + "\n";
    }
    EXPECT_EQ(played, script);
}

/// Operator and window at once.
struct ShellPerson : RecordingOperator, MonitorWindow {
    Texts heard;                                   ///< status lines, messages ("! "), questions ("? ")
    std::function<void()> meanwhile = [] {};       ///< while a message is open
    Deed window = [](const auto&) { return ""; };  ///< what it is asked for
    void StatusLine(const std::string&, const std::string& text) override { heard.push_back(text); }
    void ShowMessage(const std::string& title, const std::string& text) override {
        heard.push_back("! " + (title == "Korvane" ? text : title + ": " + text));
        meanwhile();
    }
    bool AskYesNo(const std::string& title, const std::string& text) override {
        const bool yes = RecordingOperator::AskYesNo(title, text);
        return heard.push_back((yes ? "? Yes: " : "? No: ") + text), yes;
    }
    std::function<void(const std::string&, bool, const std::string&)> noteOutage = [](auto&&...) {};
    void NoteOutage(const std::string& entry, bool isDown, const std::string& reason) override {
        noteOutage(entry, isDown, reason);
    }
    bool HasWindow() const override { return true; }
    void SetTitle(const std::string& text) override { window(text); }
    void Place(bool shown) override { window(shown ? "place, shown" : "place"); }
    void LoadResourceMonitors() override { window("monitors"); }
    void SetUpForTheFirstTime() override { window("set up"); }
};

struct ShellWorld : ShellPerson, World {
    explicit ShellWorld(Setup setup = {})
        : World((
              setup.makeFace = [this](Timers&) { return WorldFace{.person = this, .window = this}; }, setup)) {}
    const Desk desk = run.TheDesk();

    /// Everything since the last time, of long texts both ends. "~" is the home.
    std::string Heard() {
        std::string all;
        for (const std::string& text : std::exchange(heard, {})) {
            const std::string line = ReplaceAll(ReplaceAll(text, home, "~"), "\r\n", "|");
            all += (line.size() > 64 ? line.substr(0, 45) + ".." + line.substr(line.size() - 15) : line) + "; ";
        }
        return all;
    }
    std::string Stored(std::string_view key) const { return desk.settingsFile.Read("Settings", key, "(none)"); }
    /// How many rows there are in each table.
    std::string Counts() {
        return Each("Servers|Failures|Response|ResponseFailText",
                    [&](const auto& table) { return std::to_string(rows.Count(table)); });
    }
    /// Of the entry with the highest id.
    std::string Cells(const std::string& columns) {
        return Each(columns, [row = rows.Rows("Servers").back()](const auto& column) { return row.at(column).Text(); });
    }
};

/// It runs, and what the start said is forgotten.
struct StartedWorld : ShellWorld {
    explicit StartedWorld(Setup setup = {}) : ShellWorld(std::move(setup)) { Start(), heard.clear(); }
};

}  // namespace korvane
