#include "platform/linux/systemd_services.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <systemd/sd-bus.h>

#include <cstdint>
#include <map>
#include <string_view>
#include <utility>

#include "platform/linux/descriptor.h"

namespace korvane {
namespace {

constexpr const char* kSystemBus = "unix:path=/run/dbus/system_bus_socket";
constexpr const char* kNotThere = "The service manager can't be asked: ";

struct BusCloser {
    void operator()(sd_bus* bus) const { ::sd_bus_close_unref(bus); }
};
struct MessageCloser {
    void operator()(sd_bus_message* message) const { ::sd_bus_message_unref(message); }
};
using BusPointer = std::unique_ptr<sd_bus, BusCloser>;
using MessagePointer = std::unique_ptr<sd_bus_message, MessageCloser>;

// Returns the usual address, or the one that the environment defines for D-Bus.
std::string AddressOfSystemBus() {
    const char* const other = ::secure_getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return other != nullptr && *other != '\0' ? other : kSystemBus;
}

using RecordsByName = std::map<std::string, ServiceRecord, std::less<>>;

int StateOf(std::string_view activeState) {
    if (activeState == "active" || activeState == "reloading" || activeState == "refreshing") return ServiceRecord::kRunning;
    if (activeState == "activating") return 2;
    if (activeState == "deactivating") return 3;
    return ServiceRecord::kStopped;
}

// Reads a(ssssssouso); the unused fields are the unit's path and its job.
int TakeUnits(sd_bus_message* reply, RecordsByName& services) {
    int result = ::sd_bus_message_enter_container(reply, 'a', "(ssssssouso)");
    while (result >= 0) {
        const char *name = "", *description = "", *load = "", *active = "", *sub = "", *following = "", *path = "", *type = "";
        const char* job = "";
        std::uint32_t jobId = 0;
        result = ::sd_bus_message_read(reply, "(ssssssouso)", &name, &description, &load, &active, &sub, &following, &path,
                                       &jobId, &type, &job);
        if (result <= 0) break;
        const int state = StateOf(active);
        if (std::string_view(load) == "not-found" && state == ServiceRecord::kStopped) continue;
        services[name] = {.name = name, .displayName = description, .state = state};
    }
    return result;
}

// Reads a(ss). For loaded units the answer is known more precisely already.
int TakeUnitFiles(sd_bus_message* reply, RecordsByName& services) {
    int result = ::sd_bus_message_enter_container(reply, 'a', "(ss)");
    while (result >= 0) {
        const char *path = "", *state = "";
        result = ::sd_bus_message_read(reply, "(ss)", &path, &state);
        if (result <= 0) break;
        const std::string_view file = path;
        const std::string name(file.substr(file.rfind('/') + 1));
        if (std::string_view(state) == "alias" || name.ends_with("@.service")) continue;
        services.emplace(name, ServiceRecord{.name = name, .displayName = name});
    }
    return result;
}

class BusQuestion : public Services::Question {
public:
    BusQuestion(Events& events, const std::string& address, std::chrono::milliseconds limit,
                std::function<void(const ServiceList&)> answer)
        : answer_(std::move(answer)) {
        const int result = Ask(address);
        if (result < 0) whyNot_ = kNotThere + std::string(::strerror(-result));
        EndAfter(whyNot_.empty() ? limit : std::chrono::milliseconds(1), limit);
        watch_ = events.WatchReadable(epoll_.Number(), [this] { Process(); });
    }

private:
    int Ask(const std::string& address) {
        sd_bus* bus = nullptr;
        int result = ::sd_bus_new(&bus);
        if (result < 0) return result;
        bus_.reset(bus);
        if ((result = ::sd_bus_set_address(bus, address.c_str())) < 0) return result;
        if ((result = ::sd_bus_set_bus_client(bus, true)) < 0) return result;
        if ((result = ::sd_bus_start(bus)) < 0) return result;
        if ((result = Call("ListUnitsByPatterns", TakeUnitsReply)) < 0) return result;
        if ((result = Call("ListUnitFilesByPatterns", TakeUnitFilesReply)) < 0) return result;
        return WatchBus();
    }

    // Asks for units in all states whose names are those of services.
    int Call(const char* method, sd_bus_message_handler_t taken) {
        sd_bus_message* call = nullptr;
        int result = ::sd_bus_message_new_method_call(bus_.get(), &call, "org.freedesktop.systemd1", "/org/freedesktop/systemd1",
                                                      "org.freedesktop.systemd1.Manager", method);
        if (result < 0) return result;
        const MessagePointer owner(call);
        if ((result = ::sd_bus_message_set_auto_start(call, false)) < 0) return result;  // a missing manager is not to be started
        if ((result = ::sd_bus_message_append(call, "asas", 0, 1, "*.service")) < 0) return result;
        return ::sd_bus_call_async(bus_.get(), nullptr, call, taken, this, 0);
    }

    static int TakeUnitsReply(sd_bus_message* reply, void* self, sd_bus_error*) {
        static_cast<BusQuestion*>(self)->TakeReply(reply, TakeUnits);
        return 0;
    }
    static int TakeUnitFilesReply(sd_bus_message* reply, void* self, sd_bus_error*) {
        static_cast<BusQuestion*>(self)->TakeReply(reply, TakeUnitFiles);
        return 0;
    }

    void TakeReply(sd_bus_message* reply, int (*take)(sd_bus_message*, RecordsByName&)) {
        ++replies_;
        const sd_bus_error* error = ::sd_bus_message_get_error(reply);
        if (error != nullptr) {
            whyNot_ = kNotThere + std::string(error->message != nullptr ? error->message : error->name);
        } else if (const int result = take(reply, services_); result < 0) {
            whyNot_ = kNotThere + std::string(::strerror(-result));
        }
    }

    // Combines the bus, whose awaited events change, and the limit in one descriptor.
    int WatchBus() {
        const int descriptor = ::sd_bus_get_fd(bus_.get());
        const int wanted = ::sd_bus_get_events(bus_.get());
        if (descriptor < 0 || wanted < 0) return descriptor < 0 ? descriptor : wanted;
        epoll_event event{.events = static_cast<std::uint32_t>(wanted),
                          .data = {}};  // EPOLLIN and EPOLLOUT are POLLIN and POLLOUT
        const int operation = descriptor == watched_ ? EPOLL_CTL_MOD : EPOLL_CTL_ADD;
        watched_ = descriptor;
        return ::epoll_ctl(epoll_.Number(), operation, descriptor, &event) == 0 ? 0 : -errno;
    }

    void EndAfter(std::chrono::milliseconds time, std::chrono::milliseconds limit) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
        const std::chrono::nanoseconds rest = time - seconds;
        const itimerspec when{.it_interval = {}, .it_value = {.tv_sec = seconds.count(), .tv_nsec = rest.count()}};
        epoll_event event{.events = EPOLLIN, .data = {}};
        ::timerfd_settime(end_.Number(), 0, &when, nullptr);
        ::epoll_ctl(epoll_.Number(), EPOLL_CTL_ADD, end_.Number(), &event);
        tooLate_ = kNotThere + std::string("it did not answer within ") + std::to_string(limit.count() / 1000) + " s";
    }

    void Process() {
        int result = 1;
        while (Open() && (result = ::sd_bus_process(bus_.get(), nullptr)) > 0) {
        }
        if (Open() && result == 0) result = WatchBus();
        std::uint64_t periods = 0;
        const bool over = ::read(end_.Number(), &periods, sizeof periods) > 0;
        if (Open() && result < 0) whyNot_ = kNotThere + std::string(::strerror(-result));
        if (Open() && over) whyNot_ = tooLate_;
        if (!Open()) Answer();
    }

    bool Open() const { return whyNot_.empty() && replies_ < 2; }

    // The caller may drop this question inside its answer.
    void Answer() {
        watch_.reset();
        ServiceList list{.whyNot = whyNot_, .services = {}};
        if (whyNot_.empty()) {
            for (auto& [name, record] : services_)
                list.services.push_back(std::move(record));
        }
        const auto answer = std::move(answer_);
        answer(list);
    }

    std::function<void(const ServiceList&)> answer_;
    std::string whyNot_;
    std::string tooLate_;
    RecordsByName services_;
    int replies_ = 0;
    int watched_ = -1;
    Descriptor epoll_{::epoll_create1(EPOLL_CLOEXEC)};
    Descriptor end_{::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)};
    BusPointer bus_;
    std::unique_ptr<Events::Watch> watch_;
};

}  // namespace

SystemdServices::SystemdServices(Events& events, std::string address, std::chrono::milliseconds limit)
    : events_(events), address_(address.empty() ? AddressOfSystemBus() : std::move(address)), limit_(limit) {}

std::unique_ptr<Services::Question> SystemdServices::EnumServices(std::function<void(const ServiceList&)> answer) {
    return std::make_unique<BusQuestion>(events_, address_, limit_, std::move(answer));
}

}  // namespace korvane
