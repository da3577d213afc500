// A desktop of a test's own: an X server without a screen, a window manager and a notification area, and hands and eyes
// for it. Everything goes with this object.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "system/process.h"

namespace korvane::test {

class DesktopSession {
public:
    enum class Tray { Shown, None };

    /// `size`: of the screen, in pixels. Throws when a part of it does not come up.
    explicit DesktopSession(Tray tray = Tray::Shown, const std::string& size = "1280x800");
    ~DesktopSession();
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    /// What a test needs to be able to have a desktop.
    static const std::vector<std::string>& Programs();

    /// The beginning of a command that runs in this desktop and knows of no other: "env" and its words.
    std::vector<std::string> Environment() const;

    /// To the window that has the keyboard.
    void Type(const std::string& text) const;
    /// Keys one after another, with a blank between them, as "alt+f Return".
    void Key(const std::string& keys) const;
    /// The same, again after two seconds without success: the window manager may not yet know to whom its own keys go.
    bool KeyUntil(const std::string& keys, const std::function<bool()>& condition) const;
    /// A click on the only icon in the notification area.
    void ClickTrayIcon(int button = 1) const;
    /// As the task bar of a desktop would.
    void Activate(const std::string& titlePart) const;

    /// Whether the condition holds within the limit. Looks again and again.
    static bool Waited(const std::function<bool()>& condition, std::chrono::milliseconds limit = std::chrono::seconds(10));
    /// Whether a window with this in its title has the keyboard within the limit.
    bool WaitForWindow(const std::string& titlePart) const;
    /// As above, with just this title.
    bool WaitForTitle(const std::string& title) const;
    /// Whether no window on the screen has this in its title any more within the limit.
    bool WaitForNoWindow(const std::string& titlePart) const;
    /// Of the windows on the screen.
    std::vector<std::string> WindowTitles() const;
    /// Of those in the task bar, on the screen or not.
    std::vector<std::string> TaskBar() const;
    std::string ActiveTitle() const;
    bool HasTrayIcon() const;

    /// The whole screen, once it stands still, to `name` in the folder that KORVANE_SCREENSHOTS names; nowhere without that.
    void Screenshot(const std::string& name) const;

private:
    void StartDisplay(const std::string& size);
    std::string Ask(const std::string& command) const;
    std::vector<std::string> Titles(const std::vector<std::string>& windows) const;
    std::vector<std::string> Managed() const;
    std::string Display() const { return ":" + std::to_string(number_); }

    PrivateFolder folder_;
    int number_ = 0;
    std::unique_ptr<Process> display_;
    std::unique_ptr<Process> windowManager_;
    std::unique_ptr<Process> tray_;
};

}  // namespace korvane::test
