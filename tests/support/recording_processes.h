// The system that starts nothing and writes down what it was asked to start.
#pragma once

#include <string>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "platform/processes.h"

namespace korvane {

class RecordingProcesses : public Processes {
public:
    struct Started {
        std::string command;
        WindowStyle style;
        bool operator==(const Started&) const = default;
    };

    std::vector<Started> started;
    int pid = 4711;       ///< of all of them; 0: the system gives none
    std::string missing;  ///< a command that holds this is not there; empty: all are
    bool keep = true;     ///< off for long runs

    bool hasBrowser = true, browserStarts = true, hasEditor = true;
    std::string browser = "firefox.desktop";
    std::vector<std::string> opened;       ///< pages
    std::vector<std::string> openedTexts;  ///< files in the editor

    int Shell(const std::string& command, WindowStyle style) override {
        if (!missing.empty() && Holds(command, missing)) throw Error("No such file or directory", 2);
        if (keep) started.push_back({command, style});
        return pid;
    }
    std::string DefaultProgram(const std::string&) override { return hasBrowser ? browser : ""; }
    bool OpenPage(const std::string& path, const NotOpened& no) override { return Open(browserStarts, opened, path, no); }
    bool OpenText(const std::string& path, const NotOpened& no) override { return Open(hasEditor, openedTexts, path, no); }

private:
    static bool Open(bool opens, std::vector<std::string>& list, const std::string& path, const NotOpened& notOpened) {
        opens ? list.push_back(path) : notOpened("No such file or directory");
        return opens;
    }
};

}  // namespace korvane
