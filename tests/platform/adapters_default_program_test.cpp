// Which program opens a page: the desktop's lists in their order, and the variable BROWSER where there is no desktop.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "platform/linux/default_program.h"
#include "platform/linux/linux_processes.h"
#include "platform/qt/qt_events.h"
#include "support/child_process.h"
#include "support/qt_application.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

namespace fs = std::filesystem;

class DefaultProgram : public testing::Test {
protected:
    void Write(const std::string& name, const std::string& text) const {
        const fs::path path = fs::path(folder.Path()) / name;
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }
    std::string Entry() const {
        return DefaultDesktopEntry(kPageKind, [&](const std::string& name) {
            const auto found = variables.find(name);
            return found == variables.end() ? "" : found->second;
        });
    }

    TemporaryFolder folder;
    std::map<std::string, std::string> variables = {{"HOME", folder.Path() + "/home"},
                                                    {"XDG_CONFIG_DIRS", folder.Path() + "/etc"},
                                                    {"XDG_DATA_DIRS", folder.Path() + "/none:" + folder.Path() + "/usr"}};
};

TEST_F(DefaultProgram, IsTheFirstChoiceThatIsInstalled) {
    EXPECT_EQ(Entry(), "");
    Write("usr/applications/mimeinfo.cache", "[MIME Cache]\ntext/html=gone.desktop;cached.desktop;\n");
    EXPECT_EQ(Entry(), "") << "none of them is installed";
    for (const char* name : {"cached", "added", "system", "kde", "own"})
        Write("usr/applications/" + std::string(name) + ".desktop", "[Desktop Entry]\n");
    EXPECT_EQ(Entry(), "cached.desktop");
    Write("etc/mimeapps.list", "[Added Associations]\ntext/html=added.desktop\n[Removed Associations]\ntext/html=own.desktop\n");
    EXPECT_EQ(Entry(), "added.desktop");
    Write("etc/mimeapps.list", "[Default Applications]\r\ntext/plain=own.desktop\r\n text/html = system.desktop;\r\n");
    EXPECT_EQ(Entry(), "system.desktop");
    Write("etc/kde-mimeapps.list", "[Default Applications]\ntext/html=kde.desktop\n");
    EXPECT_EQ(Entry(), "system.desktop");
    variables["XDG_CURRENT_DESKTOP"] = "Some:KDE";
    EXPECT_EQ(Entry(), "kde.desktop");
    Write("home/.config/mimeapps.list", "[Default Applications]\ntext/html=gone.desktop;own.desktop\n");
    EXPECT_EQ(Entry(), "own.desktop");
}

TEST_F(DefaultProgram, WithoutADesktopTheVariableNamesBrowsers) {
    EXPECT_TRUE(PassesInChild([&] {
        NeedQtApplication();
        QtEvents events;
        LinuxProcesses processes(events);
        for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CONFIG_DIRS", "XDG_DATA_DIRS", "PATH"})
            ::setenv(name, folder.Path().c_str(), 1);  // no xdg-open is found there
        ::unsetenv("BROWSER");
        if (processes.HasDefaultProgram("htm")) return false;
        std::string why;
        const auto notOpened = [&](const std::string& reason) { why = reason; };
        if (processes.OpenPage("/page", notOpened) || why != "xdg-open: No such file or directory") return false;
        fs::create_symlink("/bin/false", folder.Path() + "/xdg-open");  // as one that knows no program
        if (!processes.OpenText("/text", notOpened)) return false;
        for (int i = 0; i < 3000 && !why.ends_with("status 1"); ++i)
            events.WaitForEvent(std::chrono::milliseconds(10));
        if (why != "xdg-open ended with status 1") return false;
        ::setenv("BROWSER", ("no-such-browser:/bin/cp %s --target-directory=" + folder.Path() + "/out").c_str(), 1);
        fs::create_directory(folder.Path() + "/out");
        const std::string page = folder.Path() + "/it's a page.htm";
        std::ofstream(page) << "text";
        if (processes.DefaultProgram("HTM") != "no-such-browser" || processes.HasDefaultProgram("gif")) return false;
        processes.OpenPage(page, notOpened);
        for (int i = 0; i < 3000 && !fs::exists(folder.Path() + "/out/it's a page.htm"); ++i)
            events.WaitForEvent(std::chrono::milliseconds(10));
        return fs::exists(folder.Path() + "/out/it's a page.htm");
    }));
}

}  // namespace
}  // namespace korvane
