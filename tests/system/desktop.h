// A desktop of a test's own: an X server without a screen, a window manager and a notification area, and hands and eyes for it.
#pragma once

#include <stdexcept>

#include "system/servers.h"

namespace korvane::test {

class Desktop {
public:
    Desktop() {
        fs::create_directory(folder_.At("run"));
        fs::permissions(folder_.At("run"), fs::perms::owner_all);
        if (!Waited([&] { return folder_.Read("number").ends_with("\n"); })) throw std::runtime_error(folder_.Read("output"));
        // A window that comes while it is still looking around on the screen may go unseen, so it says when it is through.
        windowManager_ = Begin("openbox --sm-disable --startup \"touch ready\"");
        if (!Waited([&] { return fs::exists(folder_.At("ready")); })) throw std::runtime_error(folder_.Read("output"));
        tray =
            Begin("trayer --edge bottom --align right --widthtype request --height 24 --SetDockType true --SetPartialStrut true");
        if (!Waited([&] { return !Ask(kTray).empty(); })) throw std::runtime_error(folder_.Read("output"));
    }
    // The display takes the files of its number away when it ends in order.
    ~Desktop() {
        display_.Signal(SIGTERM);
        display_.Ended();
    }

    /// Variables of what runs in this desktop. There is no message bus: the notification area is X's own.
    std::string Words() const {
        return "DISPLAY=:" + TrimAll(folder_.Read("number")) + " HOME=" + folder_.Path() +
               " XDG_RUNTIME_DIR=" + folder_.At("run") + " DBUS_SESSION_BUS_ADDRESS=disabled: ";
    }
    void Type(const std::string& text) const { Ask("xdotool type --delay 5 -- '" + text + "'"); }
    /// Keys one after another, with a blank between them.
    void Key(const std::string& keys) const { Ask("xdotool key --delay 20 " + keys); }
    /// Waits then for a window with this in its title to have the keyboard. Throws when none has.
    void Press(const std::string& keys, const std::string& title) const {
        if (!keys.empty()) Key(keys);
        if (!Waited([&] { return Holds(Active(), title); }, 10s))
            throw std::runtime_error(keys + ": '" + Active() + "', not " + title);
    }
    /// The same, again after two seconds without success: the window manager may not yet know to whom its own keys go.
    bool PressUntil(const std::string& keys, const std::function<bool()>& condition) const {
        for (int tries = 0; tries < 5; ++tries) {
            Key(keys);
            if (Waited(condition, 2s)) return true;
        }
        return false;
    }
    void ClickTrayIcon() const { Ask(kTray + " mousemove --window %1 12 12 click 1"); }
    /// The notification area is as wide as its icons, and has an edge without any.
    bool HasTrayIcon() const {
        return !Ask(kTray + " getwindowgeometry | grep -E 'Geometry: [0-9]{2,}x' | grep -v 'Geometry: 1[0-2]x'").empty();
    }
    /// The window manager names a window active a moment before the keyboard is its own.
    std::string Active() const {
        return Ask(
            "sh -c 'now=$(xdotool getactivewindow) && [ $now = $(xdotool getwindowfocus) ] && xdotool getwindowname $now'");
    }
    bool Shows(const std::string& title) const { return !Ask("xdotool search --onlyvisible --name '^" + title + "'").empty(); }
    /// On the screen or minimised.
    bool InTaskBar(const std::string& title) const {
        return Holds(Ask("sh -c \"xprop -root _NET_CLIENT_LIST | grep -o 0x[0-9a-f]* | xargs -rn1 xdotool getwindowname\""),
                     title);
    }
    void Activate(const std::string& title) const { Ask("xdotool search --name '^" + title + "' windowactivate"); }

    std::unique_ptr<Process> tray;

private:
    std::unique_ptr<Process> Begin(const std::string& command) const {
        return std::make_unique<Process>("exec env " + Words() + command, folder_);
    }
    std::string Ask(const std::string& command) const { return Answer("export " + Words() + "; " + command + " 2>/dev/null"); }

    const std::string kTray = "xdotool search --onlyvisible --classname '^panel$'";
    Folder folder_;
    Process display_{"exec Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>number", folder_};
    std::unique_ptr<Process> windowManager_;
};

/// A session bus of a test's own, with a notification area, a notification service, and what screen readers read.
class Session {
public:
    std::string Words() const { return "DBUS_SESSION_BUS_ADDRESS=unix:path=" + bus_.folder.At("bus") + " "; }
    /// One line a notification.
    std::string Notes() const { return ReplaceAll(service_.Output(), "ready\n", ""); }
    void ClickTrayIcon() const { Ask("click"); }
    /// Waits until this is read on the screen, and that is not.
    testing::AssertionResult Reads(const std::string& text, const std::string& gone = "") const {
        std::string all;
        const auto found = [&] { return all = Ask("read"), Holds(all, text) && (gone.empty() || !Holds(all, gone)); };
        return Waited(found) ? testing::AssertionSuccess() : testing::AssertionFailure() << all;
    }

private:
    std::string Ask(const std::string& what) const {
        return Answer("timeout 30 env " + Words() + kScript + what + " 2>/dev/null");
    }

    const std::string kScript = "/usr/bin/python3 " + kSystemTests + "session.py ";
    Server bus_{"dbus-daemon --nofork --print-address --config-file=" + kSystemTests + "bus.conf",
                [](const Server& self) { return Holds(self.Output(), "guid="); }};
    Server service_{"env " + Words() + kScript + "serve", [](const Server& self) { return Holds(self.Output(), "ready\n"); }};
};

}  // namespace korvane::test
