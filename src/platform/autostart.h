// Port: what the desktop starts when the person logs on, the "startup group" of the program's own words.
#pragma once

#include <string>

namespace korvane {

/// One program that is started. Paths are absolute.
struct AutostartEntry {
    std::string name;     ///< shown to the person, and the base name of the file
    std::string program;  ///< the executable
    std::string home;     ///< where it works: settings, database and log
    std::string icon;     ///< a picture's path or its name in the desktop's theme; blank: none
};

class Autostart {
public:
    virtual ~Autostart() = default;

    /// The file of the entry with this name, whether it is there or not.
    virtual std::string FileName(const std::string& name) const = 0;

    /// Whether that file is there.
    virtual bool Exists(const std::string& name) = 0;

    /// Writes the entry, over one of this program if it is there. Throws Error, for a file that is not this program's too.
    virtual void Add(const AutostartEntry& entry) = 0;

    /// No error when there is none. Throws Error, for a file that is not this program's too.
    virtual void Remove(const std::string& name) = 0;
};

}  // namespace korvane
