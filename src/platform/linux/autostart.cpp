#include "platform/linux/autostart.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kMark = "X-Korvane-Home=";

// Encodes a value: a backslash begins an escape, and a leading space needs one.
std::string Value(const std::string& text) {
    std::string value = ReplaceAll(text, "\\", "\\\\");
    if (value.starts_with(' ')) value.replace(0, 1, "\\s");
    return value;
}

// Encodes one argument of a command line: quoted, with shell characters escaped, and "%" doubled, since it would begin a field
// code.
std::string Argument(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
        if (c == '%') quoted += '%';
        quoted += c;
    }
    return quoted + "\"";
}

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

// A program in the same folder as its settings finds them by itself.
std::string CommandLine(const AutostartEntry& entry) {
    if (FolderOf(entry.program) == entry.home) return Argument(entry.program);
    return "env " + Argument("KORVANE_HOME=" + entry.home) + " " + Argument(entry.program);
}

void Check(const AutostartEntry& entry) {
    for (const std::string* text : {&entry.name, &entry.program, &entry.home, &entry.icon}) {
        if (std::any_of(text->begin(), text->end(), IsControl)) throw Error("No desktop entry can hold \"" + *text + "\"");
    }
    if (Holds(entry.program, "=")) throw Error("No desktop entry can start a program in a folder with \"=\": " + entry.program);
}

}  // namespace

std::string DesktopEntryText(const AutostartEntry& entry) {
    Check(entry);
    std::string text =
        "[Desktop Entry]\n"
        "Type=Application\n"
        "Version=1.0\n"
        "Name=" +
        Value(entry.name) +
        "\n"
        "Comment=Watches servers and tells when they fail\n"
        "Exec=" +
        Value(CommandLine(entry)) + "\nPath=" + Value(entry.home) + "\n";
    if (!entry.icon.empty()) text += "Icon=" + Value(entry.icon) + "\n";
    return text +
           "Terminal=false\n"
           "StartupNotify=false\n"
           "Categories=Network;Monitor;\n"
           "X-GNOME-Autostart-enabled=true\n" +
           std::string(kMark) + Value(entry.home) + "\n";
}

DesktopAutostart::DesktopAutostart(Files& files, const Environment& environment) : files_(files) {
    const std::string settings = environment("XDG_CONFIG_HOME");
    folder_ = (settings.empty() ? environment("HOME") + "/.config" : settings) + "/autostart";
}

// The name is the operator's and may contain anything; it must become a single valid file name.
std::string DesktopAutostart::FileName(const std::string& name) const {
    return folder_ + "/" + ReplaceAll(name, "/", "_") + ".desktop";
}

void DesktopAutostart::CheckIsOurs(const std::string& path) {
    const auto text = files_.Read(path);
    if (text && !Holds(*text, "\n" + std::string(kMark))) throw Error(path + " is not Korvane's");
}

void DesktopAutostart::Add(const AutostartEntry& entry) {
    const std::string path = FileName(entry.name);
    CheckIsOurs(path);
    const std::string text = DesktopEntryText(entry);
    files_.CreateFolder(folder_);
    files_.Publish(path, text);
}

void DesktopAutostart::Remove(const std::string& name) {
    const std::string path = FileName(name);
    CheckIsOurs(path);
    files_.Remove(path);
}

}  // namespace korvane
