#include "resources/alert_monitor.h"

#include <utility>

#include "base/ignore_errors.h"
#include "base/text.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr const char* kTitle = "Korvane";
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
    timer_->OnTick([this] { Look(); });
}

void AlertMonitor::Shown() {
    testRefused_ = false;
    Changed();
}

void AlertMonitor::LoadData() {
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
    ports_.person.ShowMessage(kTitle, kSaved);
}

void AlertMonitor::Switch() {
    if (kind_.disableStopsTimer) timer_->SetEnabled(!ckDisable);
}

// An empty address is also invalid, so a test never goes to the default address.
void AlertMonitor::cmdTest() {
    if (!TestEnabled() || RefusedTest()) return;
    const std::string* server = ports_.settings.Find(kServerKey);
    if (server == nullptr || server->empty()) {
        ports_.person.ShowMessage(kTitle, kNoServer);
        return;
    }
    testUnderWay_ = true;
    Changed();
    const auto done = [this] {
        testUnderWay_ = false;
        Changed();
        ports_.person.ShowMessage(kTitle, kind_.testSent);
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
    ports_.person.ShowError(kTitle, text);
}

std::function<void()> AlertMonitor::IfAlive(std::function<void()> deed) const {
    return [alive = std::weak_ptr<const bool>(alive_), deed = std::move(deed)] {
        if (!alive.expired()) deed();
    };
}

}  // namespace korvane
