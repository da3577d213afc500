#include "resources/alert_monitor.h"

#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr const char* kSaved = "Settings updated";
constexpr const char* kNoAddress = "The email id entered is not a valid email id";
constexpr const char* kNoServer = "No SMTP server has been specified to send email";
constexpr const char* kServerKey = "Server";
constexpr int kLooksWithoutMail = 10;
constexpr std::string_view kAllServers = "SELECT * from servers order by id";

}  // namespace

AlertMonitor::AlertMonitor(const MonitorPorts& ports, const MonitorKind& kind)
    : ports_(ports), timer_(ports.timers.NewTimer(kind.timer)), kind_(kind) {
    timer_->SetInterval(kind.period);
    timer_->OnTick([this] { Tick(); });
}

void AlertMonitor::Tick() {
    if (ports_.ofMachineWatch) {
        FollowFile();
        if (ckDisable || !MayAlert()) return;
    }
    Look();
}

// A file that cannot be looked at has not changed.
void AlertMonitor::FollowFile() {
    IgnoreErrors([&] {
        if (ports_.files.Identity(AlertSettingsPath(ports_.dir, kind_)) != loadedFile_) LoadData();
    });
}

void AlertMonitor::Shown() {
    testRefused_ = false;
    Changed();
}

void AlertMonitor::LoadData() {
    IgnoreErrors([&] { loadedFile_ = ports_.files.Identity(AlertSettingsPath(ports_.dir, kind_)); });
    const AlertSettings settings = ReadAlertSettings(ports_.files, ports_.dir, kind_);
    txtEmail = settings.email;
    ckDisable = settings.disable == "1";
    cboAlert = settings.alert;
    cboDuration = settings.duration;
    ckRestart = settings.restart == "1";
    noAddressLogged_ = false;
    Switch();
    Changed();
    Loaded(settings);
}

void AlertMonitor::cmdSave() {
    Switch();
    WriteAlertSettings(ports_.files, ports_.dir, kind_,
                       {.email = txtEmail,
                        .disable = ckDisable ? "1" : "0",
                        .alert = cboAlert,
                        .duration = cboDuration,
                        .restart = ckRestart ? "1" : "0",
                        .services = WatchedServices()});
    ports_.person.ShowMessage(kMessageTitle, kSaved);
}

void AlertMonitor::Switch() {
    if (ports_.ofMachineWatch)
        timer_->SetEnabled(true);  // the mark may be taken away in the file
    else if (kind_.disableStopsTimer)
        timer_->SetEnabled(!ckDisable);
}

// An empty address is also invalid, so a test never goes to the default address.
void AlertMonitor::cmdTest() {
    if (!TestEnabled() || RefusedTest()) return;
    const std::string* server = ports_.settings.Find(kServerKey);
    if (server == nullptr || server->empty()) {
        ports_.person.ShowMessage(kMessageTitle, kNoServer);
        return;
    }
    testUnderWay_ = true;
    Changed();
    const auto done = [this] {
        testUnderWay_ = false;
        Changed();
        ports_.person.ShowMessage(kMessageTitle, kind_.testSent);
    };
    ports_.mails.Send(MailTo(txtEmail, TestBody()), IfAlive(done));
}

bool AlertMonitor::RefusedTest() {
    if (Holds(txtEmail, "@") && Holds(txtEmail, ".")) return false;
    testRefused_ = kind_.refusalDisablesTest;
    Changed();
    ShowError(kNoAddress);
    if (focusEmail_) focusEmail_();
    return true;
}

void AlertMonitor::SendAlert(const std::string& body) {
    if (!ports_.ofMachineWatch && ports_.safeguards.IsOn(kWatchMachine)) return;
    if (ports_.ofMachineWatch)
        ports_.safeguards.Acted(kWatchMachine, "This machine's alerts go out by their settings files, without a window.");
    const std::string address = txtEmail.empty() ? DefaultAddress() : txtEmail;
    if (!address.empty()) return ports_.mails.Alert(MailTo(address, body));
    if (!noAddressLogged_)
        ports_.log.WriteLog(kLogOrdinary, kLogError, std::string(kind_.subject) + ": there is no address to send it to.");
    noAddressLogged_ = true;
}

void AlertMonitor::AlertAtEleventhLook(bool due, const std::string& body) {
    looksDue_ = due ? looksDue_ + 1 : 0;
    if (looksDue_ <= kLooksWithoutMail) return;
    SendAlert(body);
    looksDue_ = 0;
}

// The recipient is also the sender.
Notification AlertMonitor::MailTo(const std::string& address, const std::string& body) const {
    return {.strTo1 = address, .strTo2 = "", .strFrom = address, .strSubject = kind_.subject, .strBody = body};
}

std::string AlertMonitor::DefaultAddress() const {
    std::string address;
    IgnoreErrors([&] {
        const auto connection = OpenDatabase(ports_.store, ports_.dir);
        const auto first = OpenRows(ports_.store, *connection, kAllServers);
        if (!first->Eof()) address = first->Fields("strEmailList1").Value().Text();
    });
    return address;
}

void AlertMonitor::Changed() const {
    if (changed_) changed_();
}

void AlertMonitor::ShowError(const std::string& text) const {
    if (ports_.ofMachineWatch) return ports_.log.WriteLog(kLogOrdinary, kLogError, std::string(kind_.subject) + ": " + text);
    ports_.person.ShowError(kMessageTitle, text);
}

std::function<void()> AlertMonitor::IfAlive(std::function<void()> deed) const {
    return [alive = std::weak_ptr<const bool>(alive_), deed = std::move(deed)] {
        if (!alive.expired()) deed();
    };
}

}  // namespace korvane
