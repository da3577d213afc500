// A D-Bus of a test's own, with a service manager on it that answers as systemd does, from a table.
#pragma once

#include <systemd/sd-bus.h>

#include <QProcess>
#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/error.h"
#include "support/qt_application.h"
#include "support/temporary_folder.h"

namespace korvane {

/// Runs a dbus-daemon and a thread until it goes. Throws Error when there is no dbus-daemon.
class ServiceBus {
public:
    struct Unit {
        std::string name, loadState, activeState;
    };
    struct UnitFile {
        std::string path, state;
    };
    enum class Manager { None, Silent, Answers };

    ServiceBus(Manager manager, std::vector<Unit> units, std::vector<UnitFile> files)
        : manager_(manager), units_(std::move(units)), files_(std::move(files)) {
        StartDaemon();
        Serve();
    }
    ServiceBus(const ServiceBus&) = delete;
    ~ServiceBus() {
        ending_ = true;
        thread_.join();
        ::sd_bus_close_unref(bus_);
        daemon_.kill();
        daemon_.waitForFinished();
    }

    const std::string& Address() const { return address_; }

private:
    static constexpr std::uint64_t kRoundInMicroseconds = 20'000;

    // The daemon prints its address when it listens.
    void StartDaemon() {
        NeedQtApplication();
        const std::string config = folder_.Path() + "/bus.conf";
        std::ofstream(config) << "<busconfig><type>custom</type><listen>" << address_
                              << "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
                                 "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>";
        const QString option = QString::fromStdString("--config-file=" + config);
        daemon_.start("dbus-daemon", {"--nofork", "--nopidfile", "--print-address", option});
        if (!daemon_.waitForReadyRead()) throw Error("There is no dbus-daemon that starts");
    }

    void Serve() {
        static const sd_bus_vtable table[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD("ListUnitsByPatterns", "asas", "a(ssssssouso)", ServiceBus::ListUnits, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_METHOD("ListUnitFilesByPatterns", "asas", "a(ss)", ServiceBus::ListFiles, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_VTABLE_END};
        const char* const interface = "org.freedesktop.systemd1.Manager";
        if (::sd_bus_new(&bus_) < 0 || ::sd_bus_set_address(bus_, address_.c_str()) < 0 ||
            ::sd_bus_set_bus_client(bus_, true) < 0 || ::sd_bus_start(bus_) < 0 ||
            ::sd_bus_add_object_vtable(bus_, nullptr, "/org/freedesktop/systemd1", interface, table, this) < 0 ||
            (manager_ != Manager::None && ::sd_bus_request_name(bus_, "org.freedesktop.systemd1", 0) < 0))
            throw Error("the stand-in of the service manager cannot start");
        thread_ = std::thread([this] {
            while (!ending_)
                if (::sd_bus_process(bus_, nullptr) == 0) ::sd_bus_wait(bus_, kRoundInMicroseconds);
        });
    }
    static int ListUnits(sd_bus_message* call, void* data, sd_bus_error*) {
        const auto& self = *static_cast<ServiceBus*>(data);
        if (self.manager_ == Manager::Silent) return 1;
        return ReplyWith(call, "(ssssssouso)", self.units_, [](sd_bus_message* reply, const Unit& unit) {
            const std::string description = "the " + unit.name;
            ::sd_bus_message_append(reply, "(ssssssouso)", unit.name.c_str(), description.c_str(), unit.loadState.c_str(),
                                    unit.activeState.c_str(), "sub", "", "/unit", 0U, "", "/");
        });
    }
    static int ListFiles(sd_bus_message* call, void* data, sd_bus_error*) {
        return ReplyWith(call, "(ss)", static_cast<ServiceBus*>(data)->files_, [](sd_bus_message* reply, const UnitFile& file) {
            ::sd_bus_message_append(reply, "(ss)", file.path.c_str(), file.state.c_str());
        });
    }
    template <class Row, class Append>
    static int ReplyWith(sd_bus_message* call, const char* type, const std::vector<Row>& rows, Append append) {
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

    const Manager manager_;
    const std::vector<Unit> units_;
    const std::vector<UnitFile> files_;
    TemporaryFolder folder_;
    const std::string address_ = "unix:path=" + folder_.Path() + "/bus";
    QProcess daemon_;
    sd_bus* bus_ = nullptr;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

}  // namespace korvane
