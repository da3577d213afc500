#include "support/service_bus.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <fstream>
#include <thread>
#include <utility>

#include "base/error.h"
#include "platform/linux/descriptor.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

constexpr std::uint64_t kRoundInMicroseconds = 20'000;

std::string Config(const std::string& address) {
    return "<busconfig><type>custom</type><listen>" + address +
           "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
           "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>";
}

void Require(int result) {
    if (result < 0) throw Error("the stand-in of the service manager cannot start");
}

}  // namespace

struct ServiceBus::Running {
    Manager manager = Manager::None;
    std::vector<Unit> units;
    std::vector<UnitFile> files;
    TemporaryFolder folder;
    std::string address = "unix:path=" + folder.Path() + "/bus";
    pid_t daemon = -1;
    sd_bus* bus = nullptr;
    std::atomic<bool> ending = false;
    std::thread thread;

    // It prints its address when it listens.
    void StartDaemon() {
        const std::string config = folder.Path() + "/bus.conf";
        std::ofstream(config) << Config(address);
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) throw Error("no pipe");
        const Descriptor read(ends[0]);
        {
            const Descriptor write(ends[1]);
            posix_spawn_file_actions_t files_of_daemon;
            ::posix_spawn_file_actions_init(&files_of_daemon);
            ::posix_spawn_file_actions_adddup2(&files_of_daemon, ends[1], STDOUT_FILENO);
            ::posix_spawn_file_actions_addopen(&files_of_daemon, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
            std::string words[] = {"dbus-daemon", "--nofork", "--nopidfile", "--print-address", "--config-file=" + config};
            std::vector<char*> arguments;
            for (std::string& word : words)
                arguments.push_back(word.data());
            arguments.push_back(nullptr);
            const int error = ::posix_spawnp(&daemon, arguments[0], &files_of_daemon, nullptr, arguments.data(), environ);
            ::posix_spawn_file_actions_destroy(&files_of_daemon);
            if (error != 0) throw Error("There is no dbus-daemon");
        }
        char sign = 0;
        if (::read(ends[0], &sign, 1) != 1) throw Error("dbus-daemon does not start");
    }

    void Connect() {
        ::sd_bus_new(&bus);
        Require(::sd_bus_set_address(bus, address.c_str()));
        Require(::sd_bus_set_bus_client(bus, true));
        Require(::sd_bus_start(bus));
    }

    static int ListUnits(sd_bus_message* call, void* data, sd_bus_error*) {
        const auto& self = *static_cast<Running*>(data);
        if (self.manager == Manager::Silent) return 1;
        sd_bus_message* reply = nullptr;
        ::sd_bus_message_new_method_return(call, &reply);
        ::sd_bus_message_open_container(reply, 'a', "(ssssssouso)");
        for (const Unit& unit : self.units) {
            ::sd_bus_message_append(reply, "(ssssssouso)", unit.name.c_str(), ("the " + unit.name).c_str(),
                                    unit.loadState.c_str(), unit.activeState.c_str(), "sub", "", "/unit", 0U, "", "/");
        }
        ::sd_bus_message_close_container(reply);
        const int result = ::sd_bus_send(nullptr, reply, nullptr);
        ::sd_bus_message_unref(reply);
        return result;
    }

    static int ListFiles(sd_bus_message* call, void* data, sd_bus_error*) {
        const auto& self = *static_cast<Running*>(data);
        sd_bus_message* reply = nullptr;
        ::sd_bus_message_new_method_return(call, &reply);
        ::sd_bus_message_open_container(reply, 'a', "(ss)");
        for (const UnitFile& file : self.files)
            ::sd_bus_message_append(reply, "(ss)", file.path.c_str(), file.state.c_str());
        ::sd_bus_message_close_container(reply);
        const int result = ::sd_bus_send(nullptr, reply, nullptr);
        ::sd_bus_message_unref(reply);
        return result;
    }

    void Serve();
};

void ServiceBus::Running::Serve() {
    static const sd_bus_vtable table[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("ListUnitsByPatterns", "asas", "a(ssssssouso)", Running::ListUnits, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("ListUnitFilesByPatterns", "asas", "a(ss)", Running::ListFiles, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    Require(
        ::sd_bus_add_object_vtable(bus, nullptr, "/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager", table, this));
    if (manager != Manager::None) Require(::sd_bus_request_name(bus, "org.freedesktop.systemd1", 0));
    thread = std::thread([this] {
        while (!ending) {
            if (::sd_bus_process(bus, nullptr) == 0) ::sd_bus_wait(bus, kRoundInMicroseconds);
        }
    });
}

ServiceBus::ServiceBus(Manager manager, std::vector<Unit> units, std::vector<UnitFile> files)
    : running_(std::make_unique<Running>()) {
    running_->manager = manager;
    running_->units = std::move(units);
    running_->files = std::move(files);
    running_->StartDaemon();
    running_->Connect();
    running_->Serve();
}

ServiceBus::~ServiceBus() {
    running_->ending = true;
    if (running_->thread.joinable()) running_->thread.join();
    ::sd_bus_close_unref(running_->bus);
    ::kill(running_->daemon, SIGKILL);
    ::waitpid(running_->daemon, nullptr, 0);
}

const std::string& ServiceBus::Address() const {
    return running_->address;
}

}  // namespace korvane
