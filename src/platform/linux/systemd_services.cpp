#include "platform/linux/systemd_services.h"

#include <stdlib.h>
#include <string.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>
#include <time.h>

#include <cstdint>
#include <map>
#include <string_view>
#include <utility>

#include "base/error.h"

namespace korvane {
namespace {

constexpr const char* kSystemBus = "unix:path=/run/dbus/system_bus_socket";
constexpr const char* kNotThere = "The service manager can't be asked: ";

struct Closer {
    void operator()(sd_bus* bus) const { ::sd_bus_close_unref(bus); }
    void operator()(sd_bus_message* message) const { ::sd_bus_message_unref(message); }
    void operator()(sd_event* loop) const { ::sd_event_unref(loop); }
};
template <class Object>
using Owned = std::unique_ptr<Object, Closer>;

// Returns the usual address, or the one that the environment defines for D-Bus.
std::string AddressOfSystemBus() {
    const char* const other = ::secure_getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return other != nullptr && *other != '\0' ? other : kSystemBus;
}

// The calls of the bus return a negative error number, of which the operator gets the words.
int Checked(int result) {
    if (result < 0) throw Error(::strerror(-result));
    return result;
}

using RecordsByName = std::map<std::string, ServiceRecord, std::less<>>;

int StateOf(std::string_view activeState) {
    if (activeState == "active" || activeState == "reloading" || activeState == "refreshing") return ServiceRecord::kRunning;
    if (activeState == "activating") return 2;
    if (activeState == "deactivating") return 3;
    return ServiceRecord::kStopped;
}

// Reads a(ssssssouso); the unused fields are the unit's path and its job.
void TakeUnits(sd_bus_message* reply, RecordsByName& services) {
    Checked(::sd_bus_message_enter_container(reply, 'a', "(ssssssouso)"));
    const char *name = "", *description = "", *load = "", *active = "", *sub = "", *following = "", *path = "", *type = "";
    const char* job = "";
    std::uint32_t jobId = 0;
    while (Checked(::sd_bus_message_read(reply, "(ssssssouso)", &name, &description, &load, &active, &sub, &following, &path,
                                         &jobId, &type, &job)) > 0) {
        const int state = StateOf(active);
        if (std::string_view(load) == "not-found" && state == ServiceRecord::kStopped) continue;
        services[name] = {.name = name, .displayName = description, .state = state};
    }
}

// Reads a(ss). For loaded units the answer is known more precisely already.
void TakeUnitFiles(sd_bus_message* reply, RecordsByName& services) {
    Checked(::sd_bus_message_enter_container(reply, 'a', "(ss)"));
    const char *path = "", *state = "";
    while (Checked(::sd_bus_message_read(reply, "(ss)", &path, &state)) > 0) {
        const std::string_view file = path;
        const std::string name(file.substr(file.rfind('/') + 1));
        if (std::string_view(state) == "alias" || name.ends_with("@.service")) continue;
        services.emplace(name, ServiceRecord{.name = name, .displayName = name});
    }
}

class BusQuestion : public Services::Question {
public:
    BusQuestion(Events& events, const std::string& address, std::chrono::milliseconds limit,
                std::function<void(const ServiceList&)> answer)
        : answer_(std::move(answer)),
          tooLate_(kNotThere + std::string("it did not answer within ") + std::to_string(limit.count() / 1000) + " s") {
        Try([&] { Ask(address); });
        noManager_ = !whyNot_.empty();
        EndAfter(limit);
        Run();
        if (!Open()) {  // no question is answered from within its call
            EndAfter(std::chrono::milliseconds(1));
            ::sd_event_prepare(loop_.get());
        }
        watch_ = events.WatchReadable(::sd_event_get_fd(loop_.get()), [this] {
            Run();
            if (!Open()) Answer();
        });
    }

private:
    void Ask(const std::string& address) {
        sd_event* loop = nullptr;
        Checked(::sd_event_new(&loop));
        loop_.reset(loop);
        sd_bus* bus = nullptr;
        Checked(::sd_bus_new(&bus));
        bus_.reset(bus);
        Checked(::sd_bus_set_address(bus, address.c_str()));
        Checked(::sd_bus_set_bus_client(bus, true));
        Checked(::sd_bus_start(bus));
        Call("ListUnitsByPatterns", [](sd_bus_message* reply, void* self, sd_bus_error*) {
            return static_cast<BusQuestion*>(self)->TakeReply(reply, TakeUnits);
        });
        Call("ListUnitFilesByPatterns", [](sd_bus_message* reply, void* self, sd_bus_error*) {
            return static_cast<BusQuestion*>(self)->TakeReply(reply, TakeUnitFiles);
        });
        Checked(::sd_bus_attach_event(bus, loop, SD_EVENT_PRIORITY_NORMAL));
    }

    // Asks for units in all states whose names are those of services.
    void Call(const char* method, sd_bus_message_handler_t taken) {
        sd_bus_message* call = nullptr;
        Checked(::sd_bus_message_new_method_call(bus_.get(), &call, "org.freedesktop.systemd1", "/org/freedesktop/systemd1",
                                                 "org.freedesktop.systemd1.Manager", method));
        const Owned<sd_bus_message> owner(call);
        Checked(::sd_bus_message_set_auto_start(call, false));  // a missing manager is not to be started
        Checked(::sd_bus_message_append(call, "asas", 0, 1, "*.service"));
        Checked(::sd_bus_call_async(bus_.get(), nullptr, call, taken, this, 0));
    }

    int TakeReply(sd_bus_message* reply, void (*take)(sd_bus_message*, RecordsByName&)) {
        ++replies_;
        Try([&] {
            const sd_bus_error* error = ::sd_bus_message_get_error(reply);
            noManager_ |= ::sd_bus_error_has_name(error, SD_BUS_ERROR_SERVICE_UNKNOWN) > 0 ||
                          ::sd_bus_error_has_name(error, SD_BUS_ERROR_NAME_HAS_NO_OWNER) > 0;
            if (error != nullptr) throw Error(error->message != nullptr ? error->message : error->name);
            take(reply, services_);
        });
        return 0;
    }

    // What fails answers the question.
    template <class Deed>
    void Try(Deed deed) {
        try {
            deed();
        } catch (const std::exception& error) {
            whyNot_ = kNotThere + std::string(error.what());
        }
    }

    void EndAfter(std::chrono::microseconds time) {
        const auto atTheEnd = [](sd_event_source*, std::uint64_t, void* self) {
            auto& question = *static_cast<BusQuestion*>(self);
            if (question.Open()) question.whyNot_ = question.tooLate_;
            return 0;
        };
        constexpr std::uint64_t kAccuracy = 1000;
        ::sd_event_add_time_relative(loop_.get(), nullptr, CLOCK_MONOTONIC, static_cast<std::uint64_t>(time.count()), kAccuracy,
                                     atTheEnd, this);
    }

    // Processes what has come. The bus comes first: the loop would not give the reason of a connection that is refused.
    void Run() {
        Try([this] {
            while (Open() &&
                   (Checked(::sd_bus_process(bus_.get(), nullptr)) > 0 || Checked(::sd_event_run(loop_.get(), 0)) > 0)) {
            }
        });
    }

    bool Open() const { return whyNot_.empty() && replies_ < 2; }

    // The caller may drop this question inside its answer.
    void Answer() {
        watch_.reset();
        ServiceList list{.whyNot = whyNot_, .noManager = noManager_, .services = {}};
        if (whyNot_.empty()) {
            for (auto& [name, record] : services_)
                list.services.push_back(std::move(record));
        }
        const auto answer = std::move(answer_);
        answer(list);
    }

    std::function<void(const ServiceList&)> answer_;
    const std::string tooLate_;
    std::string whyNot_;
    bool noManager_ = false;
    RecordsByName services_;
    int replies_ = 0;
    Owned<sd_event> loop_;
    Owned<sd_bus> bus_;
    std::unique_ptr<Events::Watch> watch_;
};

}  // namespace

SystemdServices::SystemdServices(Events& events, std::string address, std::chrono::milliseconds limit)
    : events_(events), address_(address.empty() ? AddressOfSystemBus() : std::move(address)), limit_(limit) {}

std::unique_ptr<Services::Question> SystemdServices::EnumServices(std::function<void(const ServiceList&)> answer) {
    return std::make_unique<BusQuestion>(events_, address_, limit_, std::move(answer));
}

}  // namespace korvane
