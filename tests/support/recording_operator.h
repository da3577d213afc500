// The person at the desk who says nothing and forgets nothing: records what the program shows and gives the answers that were
// laid down before.
#pragma once

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "platform/operator.h"

namespace korvane {

class RecordingOperator : public Operator {
public:
    struct Status {
        std::string time, text;
    };
    struct Tray {
        TrayPicture picture = TrayPicture::Normal;
        std::string tip;
        bool operator==(const Tray&) const = default;
    };
    struct Message {
        std::string title, text;
        bool operator==(const Message&) const = default;
    };

    // What the test sets.
    bool windowVisible = false;
    std::deque<bool> answers;     ///< to the next questions, in order; No when there are none left
    bool keepOnlyCounts = false;  ///< for long runs: no status lines

    // What the program did, in order.
    std::vector<Status> status;
    std::vector<Message> messages, questions;

    // What shows now.
    Tray tray;
    std::string cycleText;
    bool waitCursor = false;
    int progressValue = 0;

    /// The texts of the status lines, oldest first.
    std::vector<std::string> StatusTexts() const {
        std::vector<std::string> texts;
        for (const Status& line : status)
            texts.push_back(line.text);
        return texts;
    }
    /// Whether a status line with exactly this text, or with this in it, came.
    bool Said(std::string_view text) const {
        return std::any_of(status.begin(), status.end(), [text](const Status& line) { return line.text == text; });
    }
    bool SaidPart(std::string_view part) const {
        return std::any_of(status.begin(), status.end(), [part](const Status& line) { return Holds(line.text, part); });
    }
    /// Empties the lists, so that a test sees what came after.
    void Forget() {
        status.clear();
        messages.clear();
        questions.clear();
    }

    bool WindowVisible() const override { return windowVisible; }
    void StatusLine(const std::string& time, const std::string& text) override {
        if (!keepOnlyCounts) status.push_back({time, text});
    }
    void SetCycleText(const std::string& text) override { cycleText = text; }
    void SetProgress(int value, int /*max*/) override { progressValue = value; }
    void SetTray(TrayPicture picture, const std::string& tip) override { tray = {picture, tip}; }
    void SetTrayTip(const std::string& tip) override { SetTray(tray.picture, tip); }
    void SetWaitCursor(bool wait) override { waitCursor = wait; }
    void ShowMessage(const std::string& title, const std::string& text) override { messages.push_back({title, text}); }
    bool AskYesNo(const std::string& title, const std::string& text) override {
        questions.push_back({title, text});
        const bool answer = !answers.empty() && answers.front();
        if (!answers.empty()) answers.pop_front();
        return answer;
    }
};

}  // namespace korvane
