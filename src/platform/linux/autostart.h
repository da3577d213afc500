// The desktop's autostart folder: one desktop entry for each program that starts with the session, according to "Desktop
// Application Autostart" 0.5 and "Desktop Entry" 1.5 of freedesktop.org.
#pragma once

#include <string>

#include "platform/autostart.h"
#include "platform/files.h"
#include "platform/linux/default_program.h"

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

}  // namespace korvane
