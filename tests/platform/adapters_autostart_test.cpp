// The desktop's autostart folder: entries that desktops read back as they were meant, and the entries of others left alone.
#include "platform/linux/autostart.h"

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/text.h"
#include "support/memory_files.h"

namespace korvane {
namespace {

std::string LineOf(const std::string& text, const std::string& key) {
    for (const std::string& line : Split(text, '\n')) {
        if (line.starts_with(key + "=")) return line.substr(key.size() + 1);
    }
    return "none";
}

TEST(DesktopEntryTest, StartsTheProgramInItsHome) {
    EXPECT_EQ(
        DesktopEntryText({.name = "Korvane", .program = "/opt/korvane/korvanecore", .home = "/opt/korvane", .icon = "korvane"}),
        "[Desktop Entry]\n"
        "Type=Application\n"
        "Version=1.0\n"
        "Name=Korvane\n"
        "Comment=Watches servers and tells when they fail\n"
        "Exec=\"/opt/korvane/korvanecore\"\n"
        "Path=/opt/korvane\n"
        "Icon=korvane\n"
        "Terminal=false\n"
        "StartupNotify=false\n"
        "Categories=Network;Monitor;\n"
        "X-GNOME-Autostart-enabled=true\n"
        "X-Korvane-Home=/opt/korvane\n");
}

TEST(DesktopEntryTest, EscapesWhatTheFormatAndTheShellWouldRead) {
    struct Case {
        std::string home;
        std::string argument;
        std::string path;
    };
    const Case cases[] = {
        {"/my home", R"("KORVANE_HOME=/my home")", "/my home"}, {R"(/a"b)", R"("KORVANE_HOME=/a\\"b")", R"(/a"b)"},
        {"/100%", R"("KORVANE_HOME=/100%%")", "/100%"},         {"/$HOME`x`", R"("KORVANE_HOME=/\\$HOME\\`x\\`")", "/$HOME`x`"},
        {R"(/b\n)", R"("KORVANE_HOME=/b\\\\n")", R"(/b\\n)"},   {"/it's", R"("KORVANE_HOME=/it's")", "/it's"},
    };
    for (const Case& row : cases) {
        const std::string text = DesktopEntryText({.name = " K", .program = "/opt/k c", .home = row.home, .icon = ""});
        EXPECT_EQ(LineOf(text, "Exec"), "env " + row.argument + " \"/opt/k c\"");
        EXPECT_EQ(LineOf(text, "Path"), row.path);
        EXPECT_EQ(LineOf(text, "Icon"), "none");
        EXPECT_EQ(LineOf(text, "Name"), "\\sK");
    }
    for (const char* program : {"/a=b/korvanecore", "/a\nHidden=true/korvanecore"})
        EXPECT_THROW(DesktopEntryText({.name = "K", .program = program, .home = "/h", .icon = ""}), Error);
}

TEST(DesktopAutostartTest, AddsAndRemovesItsOwnEntryOnly) {
    MemoryFiles files;
    files.CreateFolder("/home/me/.config");
    DesktopAutostart autostart(files, [](const std::string& name) { return std::string(name == "HOME" ? "/home/me" : ""); });
    const AutostartEntry entry{.name = "a/b Korvane", .program = "/opt/korvanecore", .home = "/srv", .icon = ""};
    const std::string path = "/home/me/.config/autostart/a_b Korvane.desktop";
    EXPECT_EQ(autostart.FileName(entry.name), path);
    EXPECT_FALSE(autostart.Exists(entry.name));
    autostart.Remove(entry.name);
    autostart.Add(entry);
    autostart.Add(entry);
    EXPECT_TRUE(autostart.Exists(entry.name));
    EXPECT_FALSE(autostart.Exists("Korvane")) << "a service of another name has another entry";
    EXPECT_EQ(files.Text(path), DesktopEntryText(entry));
    autostart.Remove(entry.name);
    EXPECT_FALSE(autostart.Exists(entry.name));

    const std::string foreign = "[Desktop Entry]\nExec=other\n";
    files.Publish(path, foreign);
    EXPECT_THROW(autostart.Add(entry), Error);
    EXPECT_THROW(autostart.Remove(entry.name), Error);
    EXPECT_EQ(files.Text(path), foreign);

    const DesktopAutostart elsewhere(files, [](const std::string& name) { return "/" + ToLower(name); });
    EXPECT_EQ(elsewhere.FileName("K"), "/xdg_config_home/autostart/K.desktop");
}

}  // namespace
}  // namespace korvane
