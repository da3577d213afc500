// Port: the user at the desk. With a display it is the main window and the tray icon; without one it is standard output. No call
// waits for the user except AskYesNo and the messages of a start-up: a wait for an absent user would hold up the check or mail
// from whose events it was called.
#pragma once

#include <functional>
#include <string>

namespace korvane {

/// The title of the messages to the user.
constexpr const char* kMessageTitle = "Korvane";

enum class TrayPicture { Normal, Warning, Error, Off };

class Operator {
public:
    virtual ~Operator() = default;

    /// Returns whether the main window is visible now. Always false without a display.
    virtual bool WindowVisible() const = 0;

    /// Adds a line to the status log; the text no longer contains line ends. Without a display the line is printed.
    virtual void StatusLine(const std::string& time, const std::string& text) = 0;

    /// Empties the status log, if it is a lasting one.
    virtual void ClearStatus() {}

    // What only a display shows: without one nothing happens.

    virtual void SetClockText(const std::string& /*time*/) {}
    /// Sets the short message of the cycle ("Sleeping for 20 seconds.").
    virtual void SetCycleText(const std::string& /*text*/) {}

    virtual void ShowProgress(bool /*shown*/) {}
    /// 0 <= value <= max.
    virtual void SetProgress(int /*value*/, int /*max*/) {}
    virtual void SetProgressTip(const std::string& /*text*/) {}

    virtual void SetTray(TrayPicture /*picture*/, const std::string& /*tip*/) {}
    virtual void SetTrayTip(const std::string& /*tip*/) {}

    /// Called when monitoring has been switched on or off, or begins with the program.
    virtual void SetMonitoring(bool /*on*/) {}

    /// Sets "Number of distinct company names", which is shown once there is more than one.
    virtual void SetCustomerCount(int /*count*/) {}

    /// Sets what is known of the way of the alerts; empty: it is not shown. An alarming state is shown in red.
    virtual void SetMailState(const std::string& /*text*/, bool /*alarming*/) {}

    /// Called once when an outage of an entry begins, before anybody is notified of it, and once when it is over. `reason` is that
    /// of the failure; empty when it is over.
    virtual void NoteOutage(const std::string& /*entry*/, bool /*isDown*/, const std::string& /*reason*/) {}

    virtual void RefreshURLList() {}
    virtual void SetWaitCursor(bool /*wait*/) {}

    /// Shows the message; several are shown one after another. While the program starts, the call waits until the message is
    /// closed; later it returns at once. Without a display the message goes to standard error.
    virtual void ShowMessage(const std::string& title, const std::string& text) = 0;
    /// Like ShowMessage, for an error.
    virtual void ShowError(const std::string& title, const std::string& text) { ShowMessage(title, text); }
    /// Like ShowError, for an error of which the log of the day tells more.
    virtual void ShowLoggedError(const std::string& title, const std::string& text) { ShowError(title, text); }
    /// Waits for the answer. Without a display the answer is No.
    virtual bool AskYesNo(const std::string& title, const std::string& text) = 0;

    /// Asks without waiting: `yes` is called when that is the answer. Nothing is called when the parent window of the question
    /// closes before that.
    virtual void Ask(
        const std::string& title, const std::string& text, const std::function<void()>& yes,
        const std::function<void()>& no = [] {}) {
        AskYesNo(title, text) ? yes() : no();
    }
};

/// Shows the wait cursor for as long as this lives.
class WaitCursor {
public:
    explicit WaitCursor(Operator& person) : person_(person) { person_.SetWaitCursor(true); }
    ~WaitCursor() { person_.SetWaitCursor(false); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    Operator& person_;
};

}  // namespace korvane
