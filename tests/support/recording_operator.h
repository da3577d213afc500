// The person at the desk who says nothing and forgets nothing: records what the program shows and gives the answers that were
// laid down before.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "platform/operator.h"

namespace korvane {

class RecordingOperator : public Operator {
public:
    struct Status {
        std::string time;
        std::string text;
    };
    struct Tray {
        TrayPicture picture = TrayPicture::Normal;
        std::string tip;
        bool operator==(const Tray&) const = default;
    };
    struct Message {
        std::string title;
        std::string text;
        bool operator==(const Message&) const = default;
    };

    // What the test sets.
    bool windowVisible = false;
    std::deque<bool> answers;     ///< to the next questions, in order; No when there are none left
    bool keepOnlyCounts = false;  ///< for long runs: the lists below stay as they are, everything else goes on

    // What the program did, in order.
    std::vector<Status> status;
    std::vector<Tray> trays;  ///< each SetTray, and each SetTrayTip with the picture of that moment
    std::vector<std::string> cycleTexts;
    std::vector<Message> messages;
    std::vector<Message> questions;

    // What shows now, and how often things were done.
    Tray tray;
    std::string clockText;
    std::string cycleText;
    bool progressShown = false;
    int progressValue = 0;
    int progressMax = 0;
    std::string progressTip;
    bool waitCursor = false;
    std::uint64_t statusCount = 0;
    std::uint64_t trayCount = 0;
    std::uint64_t refreshCount = 0;
    std::uint64_t messageCount = 0;

    /// The texts of the status lines, oldest first.
    std::vector<std::string> StatusTexts() const;
    /// Whether a status line with exactly this text, or with this in it, came.
    bool Said(std::string_view text) const;
    bool SaidPart(std::string_view part) const;
    /// Empties the lists, so that a test sees what came after.
    void Forget();

    bool WindowVisible() const override { return windowVisible; }
    void StatusLine(const std::string& time, const std::string& text) override;
    void SetClockText(const std::string& time) override { clockText = time; }
    void SetCycleText(const std::string& text) override;
    void ShowProgress(bool shown) override { progressShown = shown; }
    void SetProgress(int value, int max) override;
    void SetProgressTip(const std::string& text) override { progressTip = text; }
    void SetTray(TrayPicture picture, const std::string& tip) override;
    void SetTrayTip(const std::string& tip) override;
    void RefreshURLList() override { ++refreshCount; }
    void SetWaitCursor(bool wait) override { waitCursor = wait; }
    void ShowMessage(const std::string& title, const std::string& text) override;
    bool AskYesNo(const std::string& title, const std::string& text) override;
};

}  // namespace korvane
