// The desktop's autostart folder: a desktop entry for each program that it starts with the session, as "Desktop Application
// Autostart" 0.5 and "Desktop Entry" 1.5 of freedesktop.org have them.
#pragma once

#include <string>

#include "platform/autostart.h"
#include "platform/files.h"
#include "platform/linux/default_program.h"

namespace korvane {

/// The text of the entry. The name of a program that holds "=" or a control character has no form there: throws Error.
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
