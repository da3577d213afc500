#include "store/settings.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "store/safeguards.h"
#include "store/server_id.h"

namespace korvane {

/// One key in the order of reading, and the action right after it. The sample name is reserved for examples (RFC 2606).
struct Settings::ReadStep {
    std::string_view key;
    std::string_view defaultValue = "";
    void (Settings::*then)() = nullptr;
};

const Settings::ReadStep Settings::kReadSteps[] = {
    {"Server", "mail.example.com"},
    {"SMTPUser1"},
    {"SMTPUser2"},
    {"SMTPPass1"},
    {"SMTPPass2"},
    {"SMTPPopHost1"},
    {"SMTPPopHost2"},
    {"ReportPath", "/Reports", &Settings::CreateReportFolder},  // below <dir>
    {"ServiceName", "Korvane", &Settings::StartService},        // after the old file's uniqueid
    {"ServerBackup"},
    {"Begin", "2"},
    {"SuccessLT", "20"},
    {"Zone"},
    {"width"},
    {"height", "", &Settings::RestoreWindowSize},
    {"bMinimized", "False"},
    {"bYellowAlert", "True"},
    {"bRedAlert", "True"},
    {"YellowAlertWav"},
    {"RedAlertWav"},
    {"bAllInDB", "False"},
    {"Reboot", "False"},
    {"RebootAny", "True"},
    {"MultiNotify", "True"},
    {"Service", "False"},
    {"ProxyName"},
    {"ProxyPort", "", &Settings::ReadNumURLs},
    {"GlobalRetryDuration", "60"},
};

namespace {

constexpr std::string_view kNumURLs = "NumURLs";
constexpr std::string_view kUniqueid = "uniqueid";
constexpr int kTwipsBesideWindow = 600;

// The order of saving. Files spell the key "bALLInDB"; keys are case-insensitive, so it is read as "bAllInDB".
constexpr std::string_view kSaveOrder[] = {
    "Server",     "SMTPUser1",           "SMTPPass1",   "SMTPPopHost1", "SMTPUser2",   "SMTPPass2",   "SMTPPopHost2",
    "ReportPath", "ServerBackup",        "Begin",       "SuccessLT",    "Zone",        "ServiceName", "ProxyName",
    "ProxyPort",  "GlobalRetryDuration", "Reboot",      "RebootAny",    "MultiNotify", "Service",     "bYellowAlert",
    "bRedAlert",  "YellowAlertWav",      "RedAlertWav", kNumURLs,       "bMinimized",  "bALLInDB",    "width",
    "height",
};

// Missing until the user has changed what they keep; saved after all others.
constexpr std::string_view kOnlyIfSet[] = {"DesktopNotes", "KeepPhases", "CertWarnDays", "Figures",      "Database",
                                           "PublishPages", "Witnesses",  "InstanceName", "InstanceMail", "MaxEntries"};

std::vector<std::string_view> OptionalKeys() {
    std::vector<std::string_view> keys;
    for (const Safeguard& safeguard : AllSafeguards())
        keys.push_back(safeguard.key);
    keys.insert(keys.end(), std::begin(kOnlyIfSet), std::end(kOnlyIfSet));
    return keys;
}

}  // namespace

std::string SettingsFilePath(const std::string& dir) {
    return dir + "/kvurlwatchn.ini";
}

void ReadSettingCol(SettingsCollection& collection, std::string_view key, std::string_view defaultValue, std::string_view section,
                    IniFile& file) {
    collection.setKvSettingsColValue(key, file.Read(section, key, defaultValue));
}

std::string GetSettingCol(const SettingsCollection& collection, std::string_view key) {
    return collection.getKvSettingsColVal(key);
}

void SetSettingCol(SettingsCollection& collection, std::string_view key, std::string value) {
    collection.setKvSettingsColValue(key, std::move(value));
}

Settings::Settings(const Ports& ports, std::string dir) : ports_(ports), dir_(std::move(dir)) {
    IgnoreErrors([&] { fileExistedAtStart_ = ports_.files.Exists(GetSettingsFile()); });
}

void Settings::EnsureUniqueid() {
    IniFile oldFile(ports_.files, std::string(kOldSettingsFile));
    oldUniqueid_ = oldFile.Read(kSettingsSection, kUniqueid, "");
    if (oldUniqueid_.empty()) setUniqueid(NewTimeStampID(ports_.clock));
}

void Settings::setUniqueid(const std::string& id) {
    ports_.file.Write(kSettingsSection, kUniqueid, id);
}

void Settings::ReadInGlobalSettings() {
    problemOfFile_ = ports_.file.Problem();
    for (const ReadStep& step : kReadSteps) {
        ReadSettingCol(ports_.collection, step.key, DefaultOf(step), kSettingsSection, ports_.file);
        if (step.then != nullptr) (this->*step.then)();
    }
    ReadOptionalKeys();
}

void Settings::LoadValues() {
    problemOfFile_ = ports_.file.Problem();
    for (const ReadStep& step : kReadSteps)
        ReadSettingCol(ports_.collection, step.key, DefaultOf(step), kSettingsSection, ports_.file);
    ReadOptionalKeys();
}

// Only a key that is in the file comes into the collection, and so only such a key is saved again.
void Settings::ReadOptionalKeys() {
    for (const std::string_view key : OptionalKeys()) {
        const std::string value = ports_.file.Read(kSettingsSection, key, "");
        if (!value.empty()) ports_.collection.setKvSettingsColValue(key, value);
    }
}

std::string Settings::DefaultOf(const ReadStep& step) const {
    std::string before;
    if (step.key == "ReportPath") before = dir_;
    if (step.key == "ServiceName") before = oldUniqueid_;
    return before + std::string(step.defaultValue);
}

void Settings::CreateReportFolder() {
    IgnoreErrors([&] { ports_.files.CreateFolder(ports_.collection.getKvSettingsColVal("ReportPath")); });
}

void Settings::StartService() {
    IgnoreErrors([&] { ports_.startService(); });
    ports_.events.DoEvents();
}

void Settings::RestoreWindowSize() {
    SettingsHost& host = ports_.host;
    if (!host.HasWindow()) return;
    const std::string width = ports_.collection.getKvSettingsColVal("width");
    const std::string height = ports_.collection.getKvSettingsColVal("height");
    if (width.empty()) {
        host.SetWidth(host.ScreenWidth() - kTwipsBesideWindow);
        return;
    }
    IgnoreErrors([&] { host.SetWidth(CheckedInt32(ParseWhole(width))); });
    IgnoreErrors([&] { host.SetHeight(CheckedInt32(ParseWhole(height))); });
}

void Settings::ReadNumURLs() {
    IgnoreErrors([&] { totalURLs_ = CheckedInt32(ParseWhole(ports_.file.Read(kSettingsSection, kNumURLs, "0"))); });
}

bool Settings::AllInDB() const {
    const std::string* word = ports_.collection.Find("bAllInDB");
    return word != nullptr && EqualsNoCase(*word, "True");
}

void Settings::cmdSave() {
    ports_.entries.setServerEntryChangedIndex(kEveryServerEntry);
    Save();
}

void Settings::Save() {
    // A file that could not be read at start-up may be readable again now: the defaults that were used instead must not replace
    // it.
    if (!problemOfFile_.empty()) {
        ports_.status.setStatusMSG("Settings not saved: " + problemOfFile_);
        return;
    }
    const WaitCursor waiting(ports_.user);
    SaveGlobalKeys();
    totalURLs_ = std::min(totalURLs_, kMaxOldEntries);
    ports_.entries.SaveChangedEntries(totalURLs_, AllInDB());
    ports_.status.setStatusMSG("Settings Saved");
}

void Settings::SaveGlobalKeys() {
    const IniFile::Batch batch(ports_.file);
    for (const std::string_view key : kSaveOrder)
        SaveKey(key);
    for (const std::string_view key : OptionalKeys())
        SaveKey(key);
}

void Settings::SaveKey(std::string_view key) {
    const auto write = [&](const std::string& value) { ports_.file.Write(kSettingsSection, key, value); };
    if (key == kNumURLs) return write(std::to_string(totalURLs_));
    if (key == "width" && ports_.host.HasWindow()) return write(std::to_string(ports_.host.Width()));
    if (key == "height" && ports_.host.HasWindow()) return write(std::to_string(ports_.host.Height()));
    if (const std::string* value = ports_.collection.Find(key)) write(*value);
}

void Settings::ImportEntriesOnce() {
    if (AllInDB()) return;
    ports_.events.DoEvents();
    ports_.log.Info("frmMonitor:Form_Load: read in ini files to convert first time database users.");
    if (fileExistedAtStart_) {
        ports_.entries.readURLData(totalURLs_);
        ports_.entries.setFailCommandsOKDirty();
        ports_.status.setStatusMSG("All INI data importing into Korvane Database (one time only)...");
        SaveAndMarkImported();
    } else {
        ports_.status.setStatusMSG("New User. Initialize Database...");
    }
    SaveAndMarkImported();
}

// The first save moves the entries into the tables, the second writes the mark to the file. Without the mark the next start tries
// again.
void Settings::SaveAndMarkImported() {
    cmdSave();
    if (ports_.entries.StoreRefused()) return;
    ports_.collection.setKvSettingsColValue("bAllInDB", "True");
    cmdSave();
    ports_.user.RefreshURLList();
}

}  // namespace korvane
