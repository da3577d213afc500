// Port: the programs that the desktop starts when the user logs on, the "startup group" in the program's vocabulary.
#pragma once

#include <string>

namespace korvane {

/// A program to start. Paths are absolute.
struct AutostartEntry {
    std::string name;     ///< shown to the user; also the base name of the file
    std::string program;  ///< the executable
    std::string home;     ///< its working folder: settings, database and log
    std::string icon;     ///< path of a picture, or its name in the desktop's theme; empty: none
};

class Autostart {
public:
    virtual ~Autostart() = default;

    /// Returns the path of the entry's file, whether or not it exists.
    virtual std::string FileName(const std::string& name) const = 0;

    /// Returns whether that file exists.
    virtual bool Exists(const std::string& name) = 0;

    /// Writes the entry and overwrites an existing one of this program. Throws Error, also if the file belongs to another
    /// program.
    virtual void Add(const AutostartEntry& entry) = 0;

    /// Does nothing if there is no entry. Throws Error, also if the file belongs to another program.
    virtual void Remove(const std::string& name) = 0;
};

}  // namespace korvane
