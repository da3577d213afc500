#include "shell/service/service_mode.h"

#include <utility>

#include "base/ignore_errors.h"
#include "base/raised_flag.h"
#include "base/text.h"
#include "platform/operator.h"
#include "shell/options/options_commands.h"
#include "shell/service/service_texts.h"

namespace korvane {

namespace texts = service_text;

namespace {

/// Returns the report folder if it is outside the home.
std::vector<std::string> FoldersBeside(const std::string& home, std::string reports) {
    while (reports.size() > 1 && reports.ends_with('/'))
        reports.pop_back();
    if (!reports.starts_with('/') || reports == home || reports.starts_with(home + "/")) return {};
    return {reports};
}

}  // namespace

std::string ServiceMode::ServiceName() const {
    return ports_.collection.getKvSettingsColVal("ServiceName");
}

bool ServiceMode::ServiceIsSet() const {
    const std::string* word = ports_.collection.Find("Service");
    return word != nullptr && *word == "True";
}

std::string ServiceMode::Named(const std::string& text) const {
    return ReplaceAll(text, "<name>", ServiceName());
}

std::string ServiceMode::WithWords(const std::string& text) const {
    if (answer_.words.empty()) return text;
    return text + texts::kMore + (answer_.ofManager ? texts::kManagerSays : "") + ReplaceAll(answer_.words, "\n", "\r\n");
}

void ServiceMode::Show(const std::string& text) {
    ports_.person.ShowMessage(kMessageTitle, text);
}

void ServiceMode::ShowMarks() {
    ports_.window.SetStartMarks(mnuTrayNTService_, mnuTrayStartup_);
}

void ServiceMode::Tell(const std::string& text) {
    ports_.status.setStatusMSG(text);
    told_ = text;
    TellManager();
}

void ServiceMode::TellManager() {
    path_ = ports_.alertPath.Proven();
    ports_.system.serviceManager.Status(told_ + (path_.empty() ? "" : " " + path_));
}

void ServiceMode::FollowAlertPath() {
    if (runningAsService_ && path_ != ports_.alertPath.Proven()) TellManager();
}

// ---- the life of this process

void ServiceMode::StartService() {
    if (!ports_.system.serviceManager.StartedThis()) {
        ports_.status.setStatusMSG(texts::kNotConnected);
        return;
    }
    ports_.status.setStatusMSG(texts::kConnected);
    if (runningAsService_) return;
    runningAsService_ = true;
    Tell(texts::kStarted);
    ports_.window.SetTitle(MainTitle(options_.version) + texts::kRunningAsService);
    WatchOverLife();
}

// If the pump no longer delivers events, it does not deliver this one either.
void ServiceMode::WatchOverLife() {
    const auto interval = ports_.system.serviceManager.AliveInterval();
    if (!interval) return;
    TimerAlive_ = ports_.system.timers.NewTimer("TimerAlive");
    TimerAlive_->SetInterval(*interval);
    TimerAlive_->OnTick([this] { ports_.system.serviceManager.Alive(); });
    TimerAlive_->SetEnabled(true);
}

void ServiceMode::Loaded() {
    loaded_ = true;
    ports_.system.serviceManager.Ready();
    if (const auto wish = std::exchange(wish_, std::nullopt)) SetMonitoring(*wish);
}

void ServiceMode::HandOver() {
    if (startAtEnd_.empty()) return;
    const ManagerAnswer answer = ports_.system.serviceManager.Start(startAtEnd_);
    if (!answer.done) ports_.status.setStatusMSG(answer.words);
}

void ServiceMode::Stop(bool frozen) {
    ports_.system.serviceManager.Stopping();
    if (!frozen && ports_.system.serviceManager.IsShuttingDown()) Tell(texts::kShuttingDown);
    Tell(texts::kStopped);
    ports_.system.exit();
}

void ServiceMode::SetMonitoring(bool on) {
    if (!loaded_) {
        wish_ = on;
        return;
    }
    const bool wasOn = ports_.state.bMonitoring;
    if (on != wasOn) ports_.stopStart.cmdStopStart();
    if (on)
        Tell(wasOn ? texts::kStillContinuing : texts::kContinuing);
    else
        Tell(wasOn ? texts::kPaused : texts::kAlreadyPaused);
}

// ---- installing and removing

ServiceProgram ServiceMode::WhatRuns() const {
    const std::string* reports = ports_.collection.Find("ReportPath");
    return {.program = options_.program,
            .home = options_.dir,
            .folders = FoldersBeside(options_.dir, reports == nullptr ? "" : *reports)};
}

void ServiceMode::FollowSettings() {
    const ManagerAnswer answer = ports_.system.serviceManager.Update(ServiceName(), WhatRuns());
    if (!answer.done) ports_.status.setStatusMSG(answer.words);
}

bool ServiceMode::InstallService(const std::string& name, bool install) {
    answer_ = install ? ports_.system.serviceManager.Install(name, WhatRuns())
                      : ports_.system.serviceManager.Uninstall(name, options_.dir);
    if (!answer_.words.empty()) ports_.status.setStatusMSG(ReplaceAll(answer_.words, "\n", "\r\n"));
    if (answer_.done) startAtEnd_ = install ? name : "";
    return answer_.done;
}

ServiceMode::ShortCut ServiceMode::getShortCutFileName(const std::string& serviceName) const {
    return {.file = ports_.system.autostart.FileName(serviceName),
            .directory = options_.program.substr(0, options_.program.rfind('/') + 1)};
}

bool ServiceMode::IsInStartupGroup() const {
    bool is = false;
    IgnoreErrors([&] { is = ports_.system.autostart.Exists(ServiceName()); });
    return is;
}

bool ServiceMode::AddOrRemoveGroupShortCut(bool add) {
    const std::string name = ServiceName();
    try {
        if (add) {
            ports_.system.autostart.Add({.name = name, .program = options_.program, .home = options_.dir, .icon = options_.icon});
        } else {
            ports_.system.autostart.Remove(name);
        }
        return true;
    } catch (const std::exception& error) {
        const std::string text = add ? texts::kShortcutFailed : texts::kShortcutStays;
        ports_.person.ShowError(kMessageTitle,
                                ReplaceAll(ReplaceAll(text, "<file>", getShortCutFileName(name).file), "<why>", error.what()));
        return false;
    }
}

void ServiceMode::WarnIfInStartupGroup() {
    if (!IsInStartupGroup()) return;
    if (!ports_.person.AskYesNo(kMessageTitle, texts::kAskWhenInstalled)) return;
    if (!AddOrRemoveGroupShortCut(false)) return;
    Show(texts::kRemovedForService);
    mnuTrayStartup_ = false;
    ShowMarks();
}

void ServiceMode::LoadMarks() {
    mnuTrayNTService_ = ServiceIsSet();
    mnuTrayStartup_ = IsInStartupGroup();
    ShowMarks();
}

void ServiceMode::CheckTrayNTService() {
    mnuTrayNTService_ = true;
    ShowMarks();
}

void ServiceMode::CheckTrayStartup() {
    mnuTrayStartup_ = true;
    ShowMarks();
}

// ---- the operator's clicks

// A click while the messages of the one before are open does nothing.
void ServiceMode::OneAtATime(const std::function<void()>& click) {
    if (!busy_) {
        const RaisedFlag busy(busy_);
        click();
    }
    ShowMarks();
}

bool ServiceMode::ChangeService(const texts::Words& words, bool install) {
    if (!InstallService(ServiceName(), install)) {
        ports_.person.ShowError(kMessageTitle, WithWords(Named(install ? words.installFailed : words.removeFailed)));
        return false;
    }
    if (install)
        ports_.person.ShowMessage(words.title,
                                  WithWords(Named(words.installed) + texts::kImportant + texts::kMore + texts::kHandOver));
    else
        Show(Named(words.removed));
    mnuTrayNTService_ = install;
    ports_.collection.setKvSettingsColValue("Service", install ? "True" : "False");
    if (install) StartService();
    return true;
}

void ServiceMode::ChangeStartup(const texts::Words& words, bool add) {
    if (!AddOrRemoveGroupShortCut(add)) return;
    mnuTrayStartup_ = add;
    const bool both = ServiceIsSet();
    if (add) {
        Show(Named(words.added) + (both ? words.addedNote : "") + words.addedEnd);
        if (both) Show(words.addedWarning);
    } else {
        Show(Named(words.takenOut) + (both ? words.takenOutNote : "") + words.takenOutEnd);
    }
}

void ServiceMode::mnuTrayNTService_Click() {
    OneAtATime([this] {
        const bool install = !mnuTrayNTService_;
        if (!ChangeService(texts::kTray, install)) return;
        if (install) WarnIfInStartupGroup();
        ports_.settings.Save();
    });
}

void ServiceMode::mnuTrayStartup_Click() {
    OneAtATime([this] { ChangeStartup(texts::kTray, !mnuTrayStartup_); });
}

bool ServiceMode::chkService_Click(bool checked) {
    if (!IsWindowsNT()) {
        Show(std::string(kNoServiceHint));
        return mnuTrayNTService_;
    }
    OneAtATime([this, checked] {
        if (!ChangeService(texts::kDialog, checked)) return;
        if (checked) mnuTrayStartup_ = IsInStartupGroup();
        if (checked && mnuTrayStartup_ && ports_.person.AskYesNo(kMessageTitle, texts::kDialogAsk))
            ChangeStartup(texts::kTray, false);
        ports_.settings.Save();
    });
    return mnuTrayNTService_;
}

bool ServiceMode::chkStartup_Click(bool checked) {
    OneAtATime([this, checked] { ChangeStartup(texts::kDialog, checked); });
    return mnuTrayStartup_;
}

}  // namespace korvane
