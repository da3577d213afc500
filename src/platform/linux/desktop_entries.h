// Desktop entries, the files by which the desktop knows programs ("Desktop Entry" 1.5 of freedesktop.org): those that start with
// the session ("Desktop Application Autostart" 0.5), and those that the user has chosen for a kind of file ("Association between
// MIME types and applications" 1.0.1).
#pragma once

#include <string>
#include <string_view>

#include "platform/autostart.h"
#include "platform/files.h"
#include "platform/linux/environment.h"

namespace korvane {

/// Returns the text of the entry. Throws Error when the name of the program contains "=" or a control character, which an entry
/// cannot express.
std::string DesktopEntryText(const AutostartEntry& entry);

class DesktopAutostart : public Autostart {
public:
    DesktopAutostart(Files& files, const Environment& environment);

    std::string FileName(const std::string& name) const override;
    bool Exists(const std::string& name) override { return files_.Exists(FileName(name)); }
    void Add(const AutostartEntry& entry) override;
    void Remove(const std::string& name) override;

private:
    void CheckIsOurs(const std::string& path);

    Files& files_;
    std::string folder_;
};

constexpr std::string_view kPageKind = "text/html";

/// Returns the MIME type of files with this extension (any case, no dot), empty for extensions that this program does not open.
std::string KindOfFile(std::string_view extension);

/// Returns the desktop entry ("firefox.desktop") that opens files of this MIME type: the first listed one that is installed.
/// Empty when there is none.
std::string DefaultDesktopEntry(std::string_view kind, const Environment& environment);

}  // namespace korvane
