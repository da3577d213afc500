#include "shell/service/service_mode.h"

#include <utility>

#include "base/ignore_errors.h"
#include "base/raised_flag.h"
#include "base/text.h"
#include "shell/options/options_commands.h"
#include "shell/run/message_title.h"
#include "shell/service/service_texts.h"

namespace korvane {

namespace texts = service_text;

namespace {

constexpr int kControlShutdown = 4;

/// Returns the report folder if it is outside the home.
std::vector<std::string> FoldersBeside(const std::string& home, std::string reports) {
    while (reports.size() > 1 && reports.ends_with('/'))
        reports.pop_back();
    if (!reports.starts_with('/') || reports == home || reports.starts_with(home + "/")) return {};
    return {reports};
}

}  // namespace

ServiceMode::ServiceMode(const Ports& ports, Commands commands, Program program)
    : ports_(ports), commands_(std::move(commands)), program_(std::move(program)) {}

std::string ServiceMode::ServiceName() const {
    return ports_.collection.getKvSettingsColVal("ServiceName");
}

bool ServiceMode::ServiceIsSet() const {
    const std::string* word = ports_.collection.Find("Service");
    return word != nullptr && *word == "True";
}

void ServiceMode::SetService(bool on) {
    mnuTrayNTService_ = on;
    ports_.collection.setKvSettingsColValue("Service", on ? "True" : "False");
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

void ServiceMode::Tell(const std::string& text) {
    ports_.status.setStatusMSG(text);
    ports_.manager.Status(text);
}

// ---- the life of this process

void ServiceMode::StartService() {
    if (!ports_.manager.StartedThis()) {
        ports_.status.setStatusMSG(texts::kNotConnected);
        return;
    }
    ports_.status.setStatusMSG(texts::kConnected);
    if (!runningAsService_) Start();
}

void ServiceMode::Start() {
    runningAsService_ = true;
    Tell(texts::kStarted);
    commands_.keepSettingsOnExit();
    commands_.appendToTitle(texts::kRunningAsService);
    WatchOverLife();
}

// If the pump no longer delivers events, it does not deliver this one either.
void ServiceMode::WatchOverLife() {
    const auto interval = ports_.manager.AliveInterval();
    if (!interval) return;
    TimerAlive_ = ports_.timers.NewTimer("TimerAlive");
    TimerAlive_->SetInterval(*interval);
    TimerAlive_->OnTick([this] { ports_.manager.Alive(); });
    TimerAlive_->SetEnabled(true);
}

void ServiceMode::Loaded() {
    loaded_ = true;
    ports_.manager.Ready();
    const Wish wish = std::exchange(wish_, Wish::None);
    if (wish == Wish::Pause) Pause();
    if (wish == Wish::Continue) Continue();
}

void ServiceMode::HandOver() {
    if (startAtEnd_.empty()) return;
    const ManagerAnswer answer = ports_.manager.Start(startAtEnd_);
    if (!answer.done) ports_.status.setStatusMSG(answer.words);
}

void ServiceMode::Stop(bool frozen) {
    ports_.manager.Stopping();
    if (!frozen && ports_.manager.IsShuttingDown()) Control(kControlShutdown);
    Tell(texts::kStopped);
    commands_.unload();
}

void ServiceMode::Pause() {
    if (!loaded_) {
        wish_ = Wish::Pause;
        return;
    }
    const bool monitoring = commands_.isMonitoring();
    if (monitoring) commands_.cmdStopStart();
    Tell(monitoring ? texts::kPaused : texts::kAlreadyPaused);
}

void ServiceMode::Continue() {
    if (!loaded_) {
        wish_ = Wish::Continue;
        return;
    }
    const bool monitoring = commands_.isMonitoring();
    if (!monitoring) commands_.cmdStopStart();
    Tell(monitoring ? texts::kStillContinuing : texts::kContinuing);
}

void ServiceMode::Control(int code) {
    if (code == kControlShutdown) Tell(texts::kShuttingDown);
}

// ---- installing and removing

ServiceProgram ServiceMode::WhatRuns() const {
    const std::string* reports = ports_.collection.Find("ReportPath");
    return {.program = program_.path,
            .home = program_.home,
            .folders = FoldersBeside(program_.home, reports == nullptr ? "" : *reports)};
}

void ServiceMode::FollowSettings() {
    const ManagerAnswer answer = ports_.manager.Update(ServiceName(), WhatRuns());
    if (!answer.done) ports_.status.setStatusMSG(answer.words);
}

bool ServiceMode::InstallService(const std::string& name, bool install) {
    answer_ = install ? ports_.manager.Install(name, WhatRuns()) : ports_.manager.Uninstall(name, program_.home);
    if (!answer_.words.empty()) ports_.status.setStatusMSG(ReplaceAll(answer_.words, "\n", "\r\n"));
    if (answer_.done) startAtEnd_ = install ? name : "";
    return answer_.done;
}

ServiceMode::ShortCut ServiceMode::getShortCutFileName(const std::string& serviceName) const {
    return {.file = ports_.autostart.FileName(serviceName), .directory = program_.path.substr(0, program_.path.rfind('/') + 1)};
}

bool ServiceMode::IsInStartupGroup() const {
    bool is = false;
    IgnoreErrors([&] { is = ports_.autostart.Exists(ServiceName()); });
    return is;
}

bool ServiceMode::AddOrRemoveGroupShortCut(bool add) {
    const std::string name = ServiceName();
    try {
        if (add) {
            ports_.autostart.Add({.name = name, .program = program_.path, .home = program_.home, .icon = program_.icon});
        } else {
            ports_.autostart.Remove(name);
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
    commands_.showMarks();
}

void ServiceMode::LoadMarks() {
    mnuTrayNTService_ = ServiceIsSet();
    mnuTrayStartup_ = IsInStartupGroup();
    commands_.showMarks();
}

void ServiceMode::CheckTrayNTService() {
    mnuTrayNTService_ = true;
    commands_.showMarks();
}

void ServiceMode::CheckTrayStartup() {
    mnuTrayStartup_ = true;
    commands_.showMarks();
}

// ---- the tray's commands

void ServiceMode::mnuTrayNTService_Click() {
    if (!busy_) {
        const RaisedFlag busy(busy_);
        mnuTrayNTService_ ? RemoveFromTray() : InstallFromTray();
    }
    commands_.showMarks();
}

void ServiceMode::InstallFromTray() {
    if (!InstallService(ServiceName(), true)) {
        ports_.person.ShowError(kMessageTitle, WithWords(texts::kInstallFailed));
        return;
    }
    Show(WithWords(Named(texts::kInstalled) + texts::kImportant + texts::kMore + texts::kHandOver));
    SetService(true);
    StartService();
    WarnIfInStartupGroup();
    commands_.Save();
}

void ServiceMode::RemoveFromTray() {
    if (!InstallService(ServiceName(), false)) {
        ports_.person.ShowError(kMessageTitle, WithWords(texts::kRemoveFailed));
        return;
    }
    Show(Named(texts::kRemoved));
    SetService(false);
    commands_.Save();
}

void ServiceMode::mnuTrayStartup_Click() {
    if (!busy_) {
        const RaisedFlag busy(busy_);
        ChangeStartup();
    }
    commands_.showMarks();
}

void ServiceMode::ChangeStartup() {
    const bool add = !mnuTrayStartup_;
    if (!AddOrRemoveGroupShortCut(add)) return;
    Show(add ? Named(texts::kStartupAdded) : texts::kStartupRemoved);
    mnuTrayStartup_ = add;
    if (add && ServiceIsSet()) Show(texts::kWarning);
}

// ---- the settings dialog's check boxes

bool ServiceMode::chkService_Click(bool checked) {
    if (!IsWindowsNT()) {
        Show(std::string(kNoServiceHint));
        return mnuTrayNTService_;
    }
    if (!busy_) {
        const RaisedFlag busy(busy_);
        checked ? InstallFromDialog() : RemoveFromDialog();
    }
    commands_.showMarks();
    return mnuTrayNTService_;
}

void ServiceMode::InstallFromDialog() {
    if (!InstallService(ServiceName(), true)) {
        ports_.person.ShowError(kMessageTitle, WithWords(Named(texts::kDialogInstallFailed)));
        return;
    }
    ports_.person.ShowMessage(texts::kReadThis,
                              WithWords(Named(texts::kDialogInstalled) + texts::kImportant + texts::kMore + texts::kHandOver));
    SetService(true);
    StartService();
    mnuTrayStartup_ = IsInStartupGroup();
    if (mnuTrayStartup_ && ports_.person.AskYesNo(kMessageTitle, texts::kDialogAsk)) ChangeStartup();
    commands_.Save();
}

void ServiceMode::RemoveFromDialog() {
    if (!InstallService(ServiceName(), false)) {
        ports_.person.ShowError(kMessageTitle, WithWords(Named(texts::kDialogRemoveFailed)));
        return;
    }
    Show(Named(texts::kDialogRemoved));
    SetService(false);
    commands_.Save();
}

bool ServiceMode::chkStartup_Click(bool checked) {
    if (!busy_) {
        const RaisedFlag busy(busy_);
        ChangeStartupFromDialog(checked);
    }
    commands_.showMarks();
    return mnuTrayStartup_;
}

void ServiceMode::ChangeStartupFromDialog(bool add) {
    if (!AddOrRemoveGroupShortCut(add)) return;
    mnuTrayStartup_ = add;
    const bool both = ServiceIsSet();
    if (add) {
        Show(Named(texts::kDialogAdded) + (both ? texts::kDialogAddedNote : "") + texts::kDialogAddedEnd);
        if (both) Show(texts::kDialogWarning);
    } else {
        Show(Named(texts::kDialogTakenOut) + (both ? texts::kDialogTakenOutNote : "") + texts::kDialogTakenOutEnd);
    }
}

}  // namespace korvane
