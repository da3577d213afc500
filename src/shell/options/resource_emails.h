// The addresses that the four resource monitors notify, in their settings files: they can be read and set whether or not the
// monitors are running.
#pragma once

#include <functional>
#include <string>

#include "platform/files.h"
#include "shell/options/global_email_walk.h"

namespace korvane {

class ResourceEmailFiles : public ResourceEmails {
public:
    /// `dir` is the home. `loadData` makes the monitors read their files again; it may be empty. `files` must outlive this.
    ResourceEmailFiles(Files& files, std::string dir, std::function<void()> loadData = {});

    std::string getEmail(ResourceMonitor monitor) override;
    void setEmail(ResourceMonitor monitor, const std::string& email) override;
    void LoadData() override;

private:
    Files& files_;
    std::string dir_;
    std::function<void()> loadData_;
};

}  // namespace korvane
