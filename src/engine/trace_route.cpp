#include "engine/trace_route.h"

#include <exception>

#include "base/ignore_errors.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr const char* kHeading =
    "\r\n\r\n"
    "The traceroute (tracert.exe) was executed when the server failure occurred. \r\n"
    "Because it takes to long, the failure tracert is sent to you with the server up notificaton. "
    "The following is the tracert run right after the server failure:\r\n"
    "-------------------------------\r\n";

// The first installed program; if none is, the first one, so that the file names what is missing. Both end by themselves unless
// they look up hop names at a name server that does not answer.
constexpr const char* kTracer = "timeout 300 $(command -v traceroute || command -v tracepath || echo traceroute)";

/// Quotes any text as one word of the shell.
std::string Quoted(const std::string& word) {
    return "'" + ReplaceAll(word, "'", "'\\''") + "'";
}

std::string HostOf(const std::string& strAddress) {
    const std::string beforeSlash = strAddress.substr(0, strAddress.find('/'));
    std::string host = beforeSlash.substr(0, beforeSlash.find('\\'));
    std::erase_if(host, [](char c) { return static_cast<unsigned char>(c) < ' '; });  // a line must stay one line
    return host;
}

}  // namespace

void TraceRoute::RunTraceRoute(const std::string& strAddress, std::int64_t id) {
    // Whatever happens to this trace, the trace of an earlier outage must not be mailed in its place.
    IgnoreErrors([&] { ports_.files.Remove(GetTracertFile(id)); });
    const std::string script = MakeTraceBatFile(strAddress, id);
    ports_.status.setStatusMSG("Running and Saving TraceRoute Information '" + script + "'");
    if (script.empty()) return;
    try {
        ports_.processes.Shell("/bin/sh " + Quoted(script), WindowStyle::Hidden);
    } catch (const std::exception& error) {
        const std::string message = "RunTraceRoute: Error: " + std::string(error.what());
        ReportFailure(message, "frmMonitor:" + message);
    }
}

std::string TraceRoute::MakeTraceBatFile(const std::string& strAddress, std::int64_t id) {
    const std::string script = FileOf(id, ".bat");
    const std::string output = Quoted(GetTracertFile(id));
    // An earlier trace that still runs keeps writing to the removed file, and to no other. After "--" comes a host, never an
    // option.
    const std::string line = "rm -f " + output + "; " + kTracer + " -- " + Quoted(HostOf(strAddress)) + " > " + output + " 2>&1";
    try {
        ports_.files.CreatePrivateFolder(folder_);
        ports_.files.Replace(script, "#!/bin/sh\n" + line + "\n");
    } catch (const std::exception& error) {
        const std::string message = "Creation of Tracert Bat file failed. couldn't create " + script;
        ReportFailure(message, "frmMonitor:MakeTraceBatFile: " + message + " because " + error.what());
        return "";
    }
    ports_.status.setStatusMSG("Trace Command =  '" + line + "'");
    return script;
}

std::string TraceRoute::GetTracertFile(std::int64_t id) const {
    return FileOf(id, ".txt");
}

std::string TraceRoute::GetTraceRouteText(std::int64_t id) {
    const auto trace = ports_.files.Read(GetTracertFile(id));
    if (!trace) return "";
    return kHeading + ReplaceAll(ReplaceAll(ToUtf8(*trace), "\r\n", "\n"), "\n", "\r\n");
}

std::string TraceRoute::FileOf(std::int64_t id, const char* ending) const {
    return folder_ + "/KvTR" + std::to_string(id) + ending;
}

void TraceRoute::ReportFailure(const std::string& statusText, const std::string& logText) {
    ports_.status.setStatusMSG(statusText);
    ports_.log.WriteLog(kLogFatal, kLogError, logText);
}

}  // namespace korvane
