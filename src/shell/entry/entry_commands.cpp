#include "shell/entry/entry_commands.h"

#include "base/ignore_errors.h"
#include "base/text.h"

namespace korvane {
namespace {

constexpr const char* kDefaultExtension = ".exe";

}  // namespace

const char* const kNoRecipientMessage =
    "You must type in a valid email address in the Email Notify #1 or #2 field.  "
    "A valid email address looks like 'you@example.com'";

const char* const kTestFailureCommand = "The program you wish to launch when the Server can not be reached is '";
const char* const kTestUpCommand = "The program you wish to launch when the Server comes back up is '";

std::string TestCommandQuestion(const std::string& question, const std::string& command) {
    return question + command + "'\r\n\r\nDo you want to test this command now?";
}

std::string CommandOfFile(Files& files, const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    bool isThere = false;
    IgnoreErrors([&] { isThere = files.Exists(path); });
    std::string file = path;
    if (!isThere && !Holds(name, ".")) file += kDefaultExtension;
    return Holds(file, " ") ? '"' + file + '"' : file;
}

std::string NoTraceMessage(const std::string& name) {
    return "When a server failure occurs, a traceroute command is run and the output is saved to a file.\r\n\r\n"
           "No traceroute has yet been run for " +
           name +
           "."
           "Once a URL failure occurs, you will be able to see the last traceroute that was run.  "
           "This information will also be sent to you when the server comes back up. ";
}

std::string ResetQuestion(const std::string& name) {
    return "This will delete all failure records, response time records, and reset the server statistics  for this server (" +
           name + ").\r\n\r\nThere is no way to UNDO this if you click yes.\r\n\r\nClick YES to Reset and Continue, NO to cancel";
}

}  // namespace korvane
