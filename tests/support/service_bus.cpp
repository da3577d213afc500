#include "support/service_bus.h"

#include <systemd/sd-bus.h>

#include <QProcess>
#include <atomic>
#include <fstream>
#include <thread>
#include <utility>

#include "base/error.h"
#include "support/qt_application.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

constexpr std::uint64_t kRoundInMicroseconds = 20'000;

void Require(int result) {
    if (result < 0) throw Error("the stand-in of the service manager cannot start");
}

template <class Row, class Append>
int ReplyWith(sd_bus_message* call, const char* type, const std::vector<Row>& rows, Append append) {
    sd_bus_message* reply = nullptr;
    ::sd_bus_message_new_method_return(call, &reply);
    ::sd_bus_message_open_container(reply, 'a', type);
    for (const Row& row : rows)
        append(reply, row);
    ::sd_bus_message_close_container(reply);
    const int result = ::sd_bus_send(nullptr, reply, nullptr);
    ::sd_bus_message_unref(reply);
    return result;
}

}  // namespace

struct ServiceBus::Running {
    Manager manager = Manager::None;
    std::vector<Unit> units;
    std::vector<UnitFile> files;
    TemporaryFolder folder;
    const std::string address = "unix:path=" + folder.Path() + "/bus";
    QProcess daemon;
    sd_bus* bus = nullptr;
    std::atomic<bool> ending = false;
    std::thread thread;

    // The daemon prints its address when it listens.
    void StartDaemon() {
        NeedQtApplication();
        const std::string config = folder.Path() + "/bus.conf";
        std::ofstream(config) << "<busconfig><type>custom</type><listen>" << address
                              << "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
                                 "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>";
        const QString option = QString::fromStdString("--config-file=" + config);
        daemon.start("dbus-daemon", {"--nofork", "--nopidfile", "--print-address", option});
        if (!daemon.waitForReadyRead()) throw Error("There is no dbus-daemon that starts");
    }

    static int ListUnits(sd_bus_message* call, void* data, sd_bus_error*) {
        const auto& self = *static_cast<Running*>(data);
        if (self.manager == Manager::Silent) return 1;
        return ReplyWith(call, "(ssssssouso)", self.units, [](sd_bus_message* reply, const Unit& unit) {
            const std::string description = "the " + unit.name;
            ::sd_bus_message_append(reply, "(ssssssouso)", unit.name.c_str(), description.c_str(), unit.loadState.c_str(),
                                    unit.activeState.c_str(), "sub", "", "/unit", 0U, "", "/");
        });
    }
    static int ListFiles(sd_bus_message* call, void* data, sd_bus_error*) {
        return ReplyWith(call, "(ss)", static_cast<Running*>(data)->files, [](sd_bus_message* reply, const UnitFile& file) {
            ::sd_bus_message_append(reply, "(ss)", file.path.c_str(), file.state.c_str());
        });
    }

    void Serve() {
        static const sd_bus_vtable table[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD("ListUnitsByPatterns", "asas", "a(ssssssouso)", Running::ListUnits, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_METHOD("ListUnitFilesByPatterns", "asas", "a(ss)", Running::ListFiles, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_VTABLE_END};
        Require(::sd_bus_new(&bus));
        Require(::sd_bus_set_address(bus, address.c_str()));
        Require(::sd_bus_set_bus_client(bus, true));
        Require(::sd_bus_start(bus));
        const char* const interface = "org.freedesktop.systemd1.Manager";
        Require(::sd_bus_add_object_vtable(bus, nullptr, "/org/freedesktop/systemd1", interface, table, this));
        if (manager != Manager::None) Require(::sd_bus_request_name(bus, "org.freedesktop.systemd1", 0));
        thread = std::thread([this] {
            while (!ending)
                if (::sd_bus_process(bus, nullptr) == 0) ::sd_bus_wait(bus, kRoundInMicroseconds);
        });
    }
};

ServiceBus::ServiceBus(Manager manager, std::vector<Unit> units, std::vector<UnitFile> files) : running_(new Running) {
    running_->manager = manager;
    running_->units = std::move(units);
    running_->files = std::move(files);
    running_->StartDaemon();
    running_->Serve();
}

ServiceBus::~ServiceBus() {
    running_->ending = true;
    running_->thread.join();
    ::sd_bus_close_unref(running_->bus);
    running_->daemon.kill();
    running_->daemon.waitForFinished();
}

const std::string& ServiceBus::Address() const {
    return running_->address;
}

}  // namespace korvane
