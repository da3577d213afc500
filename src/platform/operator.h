// Port: the person at the desk. With a display it is the main window and the tray icon; without one it is standard output. No
// call waits for the person but AskYesNo, and the messages of a start-up: whatever waits for somebody who has gone home holds up
// the check or the mail from whose events it was called.
#pragma once

#include <functional>
#include <string>

namespace korvane {

enum class TrayPicture { Normal, Warning, Error, Off };

class Operator {
public:
    virtual ~Operator() = default;

    /// Whether somebody can see the main window now. Always false without a display.
    virtual bool WindowVisible() const = 0;

    /// Adds a line to the status log; line ends in the text are already gone. Without a display it is printed.
    virtual void StatusLine(const std::string& time, const std::string& text) = 0;

    /// Empties the status log, where there is one that stays.
    virtual void ClearStatus() {}

    virtual void SetClockText(const std::string& time) = 0;
    /// The short message of the cycle ("Sleeping for 20 seconds.").
    virtual void SetCycleText(const std::string& text) = 0;

    virtual void ShowProgress(bool shown) = 0;
    /// 0 <= value <= max.
    virtual void SetProgress(int value, int max) = 0;
    virtual void SetProgressTip(const std::string& text) = 0;

    virtual void SetTray(TrayPicture picture, const std::string& tip) = 0;
    virtual void SetTrayTip(const std::string& tip) = 0;

    /// Monitoring has been switched on or off, or begins with the program.
    virtual void SetMonitoring(bool /*on*/) {}

    /// "Number of distinct company names", shown once there is more than one.
    virtual void SetCustomerCount(int /*count*/) {}

    virtual void RefreshURLList() = 0;
    virtual void SetWaitCursor(bool wait) = 0;

    /// Shows the message; several follow one another. While the program starts it waits until the message is closed, afterwards
    /// it goes on at once. Without a display it goes to standard error.
    virtual void ShowMessage(const std::string& title, const std::string& text) = 0;
    /// The same for something that went wrong.
    virtual void ShowError(const std::string& title, const std::string& text) { ShowMessage(title, text); }
    /// Waits for the answer. Without a display it is No.
    virtual bool AskYesNo(const std::string& title, const std::string& text) = 0;

    /// Asks and goes on: `yes` is called when that is the answer. Nothing is called when the window over which the question
    /// stands goes before that.
    virtual void Ask(
        const std::string& title, const std::string& text, const std::function<void()>& yes,
        const std::function<void()>& no = [] {}) {
        AskYesNo(title, text) ? yes() : no();
    }
};

}  // namespace korvane
