#include "resources/service_monitor.h"

#include <algorithm>

namespace korvane {
namespace {

constexpr const char* kStopped = "Stopped";

const char* TextOf(int state, const char* otherwise) {
    if (state == ServiceRecord::kStopped) return kStopped;
    if (state == ServiceRecord::kRunning) return "Running";
    if (state == ServiceRecord::kPaused) return "Paused";
    return otherwise;
}

bool Has(const ServiceList& list, const std::string& name) {
    return std::any_of(list.services.begin(), list.services.end(), [&](const ServiceRecord& each) { return each.name == name; });
}

std::string StoppedBody(const std::string& name) {
    return "The Service: " + name + " has stopped.";
}

}  // namespace

ServiceMonitor::ServiceMonitor(const MonitorPorts& ports, Services& services)
    : AlertMonitor(ports, kServiceMonitor), services_(services) {}

void ServiceMonitor::Loaded(const AlertSettings& settings) {
    saved_ = settings.services;
    listed_ = false;
    loading_ = services_.EnumServices([this](const ServiceList& list) { TakeList(list); });
}

void ServiceMonitor::TakeList(const ServiceList& list) {
    NoteAnswer(list.whyNot);
    NameUnknown(list);
    listed_ = whyNot_.empty();
    rows_.clear();
    for (const ServiceRecord& service : list.services) {
        const bool watched = std::find(saved_.begin(), saved_.end(), service.name) != saved_.end();
        const char* status = TextOf(service.state, "");
        rows_.push_back({.name = service.name, .watched = watched, .status = status, .previous = status});
    }
    Changed();
}

void ServiceMonitor::ClickMonitor(std::size_t row) {
    if (row == 0 || row >= rows_.size()) return;
    rows_[row].watched = !rows_[row].watched;
    Changed();
}

// If the manager has not answered, the watched services must not be lost.
std::vector<std::string> ServiceMonitor::WatchedServices() {
    if (listed_) saved_ = WatchedNames();
    return saved_;
}

std::vector<std::string> ServiceMonitor::WatchedNames() const {
    std::vector<std::string> names;
    for (const Row& row : rows_) {
        if (row.watched && !row.name.empty()) names.push_back(row.name);
    }
    return names;
}

void ServiceMonitor::Look() {
    checking_ = services_.EnumServices([this](const ServiceList& list) { Check(list); });
}

void ServiceMonitor::Check(const ServiceList& list) {
    NoteAnswer(list.whyNot);
    if (!listed_ && whyNot_.empty()) TakeList(list);  // the manager had not answered when the window was opened
    AlertAtEleventhLook(ports_.ofMachineWatch && !whyNot_.empty(), "The services can't be watched. " + whyNot_);
    for (Row& row : rows_) {
        if (!row.watched) continue;
        const auto service = std::find_if(list.services.begin(), list.services.end(),
                                          [&](const ServiceRecord& each) { return each.name == row.name; });
        if (service != list.services.end())
            CheckRow(row, *service);
        else if (ports_.ofMachineWatch && whyNot_.empty())
            CheckRow(row, {});  // its unit was removed
    }
    Changed();
}

// Without a window nobody sees why nothing is watched, nor what is missing in the list.
void ServiceMonitor::NoteAnswer(const std::string& whyNot) {
    whyNot_ = whyNot;
    if (ports_.ofMachineWatch && !saved_.empty() && !whyNot.empty() && whyNot != named_) ShowError(whyNot);
    named_ = whyNot;
}

void ServiceMonitor::NameUnknown(const ServiceList& list) const {
    if (!ports_.ofMachineWatch || !whyNot_.empty()) return;
    for (const std::string& name : saved_)
        if (!Has(list, name)) ShowError("There is no service '" + name + "', so it is not watched.");
}

// Every service that is not running is reported as stopped, even a paused one or one that is changing its state. Only a service
// that had really stopped can restart.
void ServiceMonitor::CheckRow(Row& row, const ServiceRecord& service) {
    const bool running = service.state == ServiceRecord::kRunning;
    if (!running) {
        SendAlert(StoppedBody(row.name));
    } else if (row.previous == kStopped && ckRestart) {
        SendAlert("The Service: " + row.name + " has restarted after failure.");
    }
    row.status = TextOf(service.state, kStopped);
    row.previous = TextOf(service.state, "");
}

std::string ServiceMonitor::TestBody() const {
    return StoppedBody("TestSvc");
}

}  // namespace korvane
