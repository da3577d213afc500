#include "platform/linux/systemd_manager.h"

#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "platform/linux/descriptor.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kLingerLimit = 10s;
/// The end of a service must not wait for a manager that is busy shutting everything down.
constexpr auto kShutdownLimit = 1s;
/// The end of this program must not wait for it either.
constexpr auto kStartLimit = 3s;

constexpr const char* kGreetingVariables[] = {"NOTIFY_SOCKET", "SYSTEMD_EXEC_PID", "WATCHDOG_USEC", "WATCHDOG_PID"};

// A dangling link counts as present: a masked unit name is taken.
bool IsThere(const std::string& path) {
    std::error_code none;
    return std::filesystem::exists(std::filesystem::symlink_status(path, none));
}

bool IsPlainFile(const std::string& path) {
    std::error_code none;
    return std::filesystem::is_regular_file(std::filesystem::symlink_status(path, none));
}

std::string NameOfUser(uid_t user) {
    const passwd* entry = ::getpwuid(user);
    return entry == nullptr ? std::to_string(user) : entry->pw_name;
}

// A system service runs with the rights of the owner of its home.
std::string OwnerOf(const std::string& folder) {
    struct stat status {};
    return NameOfUser(::stat(folder.c_str(), &status) == 0 ? status.st_uid : ::getuid());
}

/// A refusal in the manager's own words.
class ManagerRefusal : public Error {
public:
    using Error::Error;
};

ManagerAnswer AnswerOf(const std::function<std::string()>& deed) {
    try {
        return {.done = true, .words = deed()};
    } catch (const ManagerRefusal& refusal) {
        return {.done = false, .words = refusal.what(), .ofManager = true};
    } catch (const std::exception& error) {
        return {.done = false, .words = error.what()};
    }
}

}  // namespace

SystemdPlace SystemdPlaceOfThisUser(const Environment& environment) {
    if (::geteuid() == 0) {
        return {.scope = UnitScope::System,
                .unitFolder = "/etc/systemd/system",
                .otherFolders = {"/run/systemd/system", "/usr/local/lib/systemd/system", "/usr/lib/systemd/system",
                                 "/lib/systemd/system"},
                .signsOfManager = {"/run/systemd/system"},
                .lingerFile = ""};
    }
    const std::string runtime = Or(environment("XDG_RUNTIME_DIR"), "/run/user/" + std::to_string(::getuid()));
    return {.scope = UnitScope::User,
            .unitFolder = ConfigHome(environment) + "/systemd/user",
            .otherFolders = {DataHome(environment) + "/systemd/user", runtime + "/systemd/user", "/etc/systemd/user",
                             "/run/systemd/user", "/usr/local/lib/systemd/user", "/usr/lib/systemd/user"},
            .signsOfManager = {"/run/systemd/system", runtime + "/systemd/private"},
            .lingerFile = "/var/lib/systemd/linger/" + NameOfUser(::getuid())};
}

SystemdGreeting::SystemdGreeting(const Environment& environment, int pid) {
    const auto speaksToThis = [&](const char* variable) {
        const std::string addressee = environment(variable);
        return addressee.empty() || addressee == std::to_string(pid);
    };
    if (!speaksToThis("SYSTEMD_EXEC_PID")) return;
    notifyAddress = environment("NOTIFY_SOCKET");
    const std::chrono::microseconds limit(std::strtoll(environment("WATCHDOG_USEC").c_str(), nullptr, 10));
    if (notifyAddress.empty() || limit <= 0us || !speaksToThis("WATCHDOG_PID")) return;
    aliveInterval = std::max(1ms, std::chrono::duration_cast<std::chrono::milliseconds>(limit / 2));
}

void KeepGreetingFromChildren() {
    for (const char* variable : kGreetingVariables)
        ::unsetenv(variable);
}

SystemdManager::SystemdManager(Ports ports, SystemdPlace place, const SystemdGreeting& greeting)
    : ports_(std::move(ports)), place_(std::move(place)), greeting_(greeting) {}

bool SystemdManager::IsPresent() const {
    return std::all_of(place_.signsOfManager.begin(), place_.signsOfManager.end(), IsThere);
}

// The form is that of sd_notify(3), which itself would need the variables of the greeting. The address is a path, or "@" and a name
// in the abstract namespace. A missing or busy listener is not an error.
void SystemdManager::Notify(const std::string& line) const {
    const std::string& address = greeting_.notifyAddress;
    sockaddr_un to{};
    to.sun_family = AF_UNIX;
    if (address.size() < 2 || address.size() >= sizeof to.sun_path) return;
    std::copy(address.begin(), address.end(), to.sun_path);
    if (to.sun_path[0] == '@') to.sun_path[0] = '\0';
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address.size());
    const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket) return;
    ::sendto(socket.Number(), line.data(), line.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&to), size);
}

void SystemdManager::Status(const std::string& text) {
    std::string line = text;
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    Notify("STATUS=" + line);
}

ProgramResult SystemdManager::Ask(std::vector<std::string> words, std::chrono::milliseconds limit) {
    if (place_.scope == UnitScope::User) words.insert(words.begin(), "--user");
    words.insert(words.begin(), "systemctl");
    return ports_.run(words, limit);
}

void SystemdManager::Order(std::vector<std::string> words, std::chrono::milliseconds limit) {
    const ProgramResult result = Ask(std::move(words), limit);
    if (result.status == 0) return;
    const std::string said = TrimAll(result.output);
    if (said.empty()) throw Error("systemctl ended with status " + std::to_string(result.status));
    throw ManagerRefusal(said);
}

void SystemdManager::TryOrder(std::vector<std::string> words) {
    IgnoreErrors([&] { Order(std::move(words)); });
}

bool SystemdManager::IsShuttingDown() {
    bool stopping = false;
    IgnoreErrors([&] { stopping = TrimAll(Ask({"is-system-running"}, kShutdownLimit).output) == "stopping"; });
    return stopping;
}

// Returns an empty text when there is no such unit, or it is not this program's.
std::string SystemdManager::OwnUnitText(const std::string& unit) {
    const std::string path = PathOf(unit);
    if (!IsPlainFile(path)) return "";
    std::string text = ports_.files.Read(path).value_or("");
    return MarksOf(text).home.empty() ? "" : text;
}

bool SystemdManager::IsEnabled(const std::string& unit) {
    const char* target = place_.scope == UnitScope::System ? "/multi-user.target.wants/" : "/default.target.wants/";
    return IsThere(place_.unitFolder + target + unit);
}

bool SystemdManager::IsInstalled(const std::string& name) {
    bool installed = false;
    IgnoreErrors([&] {
        const std::string unit = UnitName(name);
        installed = !OwnUnitText(unit).empty() && IsEnabled(unit);
    });
    return installed;
}

void SystemdManager::CheckNameIsFree(const std::string& unit, const std::string& home) {
    for (const std::string& folder : place_.otherFolders) {
        const std::string taken = folder + "/" + unit;
        if (IsThere(taken)) throw Error("There is another service of this name: " + taken);
    }
    const std::string path = PathOf(unit);
    if (!IsThere(path)) return;
    const std::string owner = MarksOf(OwnUnitText(unit)).home;
    if (owner.empty()) throw Error("There is another service of this name, which is not Korvane's: " + path);
    if (owner != home) throw Error("This is the service of the Korvane in " + owner + ": " + path);
    if (IsEnabled(unit)) throw Error("The service is installed already: " + path);
}

ManagerAnswer SystemdManager::Install(const std::string& name, const ServiceProgram& program) {
    return AnswerOf([&] {
        const std::string unit = UnitName(name);
        CheckNameIsFree(unit, program.home);
        const std::string text = UnitText(name, program, place_.scope, OwnerOf(program.home));
        EnableNew(unit, text);
        return Linger(unit, text);
    });
}

void SystemdManager::EnableNew(const std::string& unit, const std::string& text) {
    ports_.files.CreateFolder(place_.unitFolder);
    ports_.files.Publish(PathOf(unit), text);
    try {
        Order({"daemon-reload"});
        Order({"enable", unit});
    } catch (const std::exception&) {
        TryOrder({"disable", unit});
        IgnoreErrors([&] { ports_.files.Remove(PathOf(unit)); });
        TryOrder({"daemon-reload"});
        throw;
    }
}

// A user's services end with the last session and start with the first one, unless the system lets them linger. Returns a note
// for the operator when it does not.
std::string SystemdManager::Linger(const std::string& unit, const std::string& text) {
    if (place_.lingerFile.empty() || IsThere(place_.lingerFile)) return "";
    std::string why;
    try {
        const ProgramResult result = ports_.run({"loginctl", "--no-ask-password", "enable-linger"}, kLingerLimit);
        if (result.status == 0) {
            ports_.files.Publish(PathOf(unit), WithLingerMark(text));
            return "";
        }
        why = TrimAll(result.output);
    } catch (const std::exception& error) {
        why = error.what();
    }
    return "The service starts when you log on and not before: " + why +
           " (An administrator can change that: loginctl enable-linger " + NameOfUser(::getuid()) + ")";
}

ManagerAnswer SystemdManager::Update(const std::string& name, const ServiceProgram& program) {
    return AnswerOf([&] {
        const std::string unit = UnitName(name);
        const std::string before = OwnUnitText(unit);
        const UnitMarks marks = MarksOf(before);
        if (marks.home != program.home || !IsEnabled(unit)) return std::string();
        std::string text = UnitText(name, program, place_.scope, OwnerOf(program.home));
        if (marks.linger) text = WithLingerMark(text);
        if (text == before) return std::string();
        ports_.files.Publish(PathOf(unit), text);
        Order({"daemon-reload"});
        return std::string();
    });
}

ManagerAnswer SystemdManager::Uninstall(const std::string& name, const std::string& home) {
    return AnswerOf([&] {
        const std::string unit = UnitName(name);
        const std::string path = PathOf(unit);
        if (!IsThere(path)) throw Error("There is no service " + path);
        const UnitMarks marks = MarksOf(OwnUnitText(unit));
        if (marks.home.empty()) throw Error("This is not Korvane's service: " + path);
        if (marks.home != home) throw Error("This is the service of the Korvane in " + marks.home + ": " + path);
        Order({"disable", unit});
        if (!StartedThis()) TryOrder({"stop", "--no-block", unit});
        ports_.files.Remove(path);
        TryOrder({"daemon-reload"});
        TryOrder({"reset-failed", unit});
        if (marks.linger) {
            IgnoreErrors([&] { ports_.run({"loginctl", "--no-ask-password", "disable-linger"}, kLingerLimit); });
        }
        return std::string();
    });
}

ManagerAnswer SystemdManager::Start(const std::string& name) {
    return AnswerOf([&] {
        Order({"start", "--no-block", UnitName(name)}, kStartLimit);
        return std::string();
    });
}

}  // namespace korvane
