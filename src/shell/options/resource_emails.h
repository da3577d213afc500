// The addresses that the four resource monitors notify, in their settings files: they can be read and set whether or not the
// monitors are running.
#pragma once

#include <functional>
#include <string>

#include "platform/files.h"

namespace korvane {

enum class ResourceMonitor { CPU, Disk, Memory, Services };

class ResourceEmailFiles {
public:
    /// `dir` is the home. `loadData` makes the monitors read their files again; it may be empty. `files` must outlive this.
    ResourceEmailFiles(Files& files, std::string dir, std::function<void()> loadData = {});

    /// Reads the address from the monitor's settings file; empty when there is none.
    std::string getEmail(ResourceMonitor monitor);
    /// Writes the address to the monitor's settings file; the rest of the file stays unchanged.
    void setEmail(ResourceMonitor monitor, const std::string& email);
    /// Makes the four monitors read their settings files again.
    void LoadData();

private:
    Files& files_;
    std::string dir_;
    std::function<void()> loadData_;
};

}  // namespace korvane
