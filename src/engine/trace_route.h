// The route to a server at the moment of its failure: traced in the background into a file, and kept for the mail that reports
// the server's return.
#pragma once

#include <cstdint>
#include <string>

#include "platform/files.h"
#include "platform/processes.h"
#include "store/log.h"
#include "store/status_log.h"

namespace korvane {

class TraceRoute {
public:
    struct Ports {
        Files& files;
        Processes& processes;
        StatusLog& status;
        Log& log;
    };

    /// `dir` is the home of the program; the files are in its folder "kvlogs".
    TraceRoute(const Ports& ports, const std::string& dir) : ports_(ports), folder_(dir + "/kvlogs") {}

    /// Starts the trace of entry `id` and returns at once. It ends by itself within minutes; a later trace replaces it. Failures
    /// go to the status line and the log. Throws nothing.
    void RunTraceRoute(const std::string& strAddress, std::int64_t id);

    /// Writes the script that RunTraceRoute starts, a single command line for the shell. Returns its path, empty when it could
    /// not be written.
    std::string MakeTraceBatFile(const std::string& strAddress, std::int64_t id);

    /// Returns the path of the trace's output file.
    std::string GetTracertFile(std::int64_t id) const;

    /// Returns the output of the trace so far, after an introduction and with CR LF line ends, as a mail needs them; empty
    /// without a trace. Throws Error when the file cannot be read.
    std::string GetTraceRouteText(std::int64_t id);

private:
    std::string FileOf(std::int64_t id, const char* ending) const;
    void ReportFailure(const std::string& statusText, const std::string& logText);

    Ports ports_;
    std::string folder_;
};

}  // namespace korvane
