// The addresses of the four resource monitors, held in memory and written down as they are set.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "shell/options/global_email_walk.h"

namespace korvane {

class RecordedMonitors : public ResourceEmails {
public:
    std::vector<std::string> calls;  ///< "0 address" for the first monitor, and "LoadData"
    std::map<ResourceMonitor, std::string> emails;
    std::function<void()> onLoadData = [] {};

    std::string getEmail(ResourceMonitor monitor) override { return emails[monitor]; }
    void setEmail(ResourceMonitor monitor, const std::string& email) override {
        calls.push_back(std::to_string(static_cast<int>(monitor)) + " " + email);
        emails[monitor] = email;
    }
    void LoadData() override {
        calls.push_back("LoadData");
        onLoadData();
    }
};

}  // namespace korvane
