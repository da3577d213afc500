// The global settings: read from the file once at start-up into the settings collection, which the program consults from then on,
// and written back by Save. The keys with their defaults and both orders are tables in settings.cpp.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "store/ini_file.h"
#include "store/server_entries.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// The section of the global keys.
constexpr std::string_view kSettingsSection = "Settings";
/// Looked at once a start for the key `uniqueid`, under exactly this name.
constexpr std::string_view kOldSettingsFile = "/kvurlwatch.ini";
/// The main window as far as settings touch it. Sizes are in twips, fifteenths of a pixel. As it stands it is that of a program
/// without one.
class SettingsHost {
public:
    virtual ~SettingsHost() = default;

    virtual bool HasWindow() const { return false; }
    virtual int ScreenWidth() const { return 0; }
    virtual int Width() const { return 0; }
    virtual int Height() const { return 0; }
    virtual void SetWidth(int) {}
    virtual void SetHeight(int) {}
};

/// The common read: the value of the file replaces that of the collection. Never fails for a missing file or key.
void ReadSettingCol(SettingsCollection& collection, std::string_view key, std::string_view defaultValue, std::string_view section,
                    IniFile& file);
std::string GetSettingCol(const SettingsCollection& collection, std::string_view key);
void SetSettingCol(SettingsCollection& collection, std::string_view key, std::string value);

class Settings {
public:
    /// All are borrowed and must outlive this. `file` is `<dir>/kvurlwatchn.ini`.
    struct Ports {
        Files& files;
        const Clock& clock;
        Events& events;
        Operator& person;
        SettingsHost& host;
        StatusLog& status;
        IniFile& file;
        SettingsCollection& collection;
        ServerEntries& entries;
        std::function<void()> startService;  ///< connects this process to its service manager; what it throws is passed over
    };

    /// Looks whether the settings file exists before anything of this start writes it.
    Settings(const Ports& ports, std::string dir);

    /// Loads all keys, makes the report folder, starts the service and restores the window's size. Never throws for what is in
    /// the file. Delivers events once.
    void ReadInGlobalSettings();

    /// Writes the global keys in one step, then the changed old entries, which delivers events between them. Shows the wait
    /// cursor meanwhile and the status "Settings Saved" at the end. Raises nothing: what the file did not take is in
    /// IniFile::LastWriteError. When the file could not be read at start-up nothing is saved, and the status says why.
    void Save();

    /// The save command: marks every entry, then Save.
    void cmdSave();

    /// The uniqueid work of each start: reads the old settings file, and writes a fresh id to the settings file if there is none.
    void EnsureUniqueid();
    /// Does nothing while the path of the settings file is blank.
    void setUniqueid(const std::string& id);

    const std::string& GetSettingsFile() const { return ports_.file.Path(); }
    const std::string& GetCurrentDir() const { return dir_; }
    /// `<dir>/kvurlwatch`, the base of the old log's file names.
    std::string GetLogFile() const { return dir_ + "/kvurlwatch"; }
    /// Whether there was a settings file when this start began.
    bool SettingsFileExistedAtStart() const { return fileExistedAtStart_; }

    /// The entry count, whose form on disk is `NumURLs`.
    int GetTotalURLs() const { return totalURLs_; }
    void SetTotalURLs(int count) { totalURLs_ = count; }

    /// The word of `bAllInDB`, in any case: the old entries have been moved into the database.
    bool AllInDB() const;

private:
    struct ReadStep;
    static const ReadStep kReadSteps[];

    std::string DefaultOf(const ReadStep& step) const;
    void CreateReportFolder();
    void StartService();
    void RestoreWindowSize();
    void ReadNumURLs();
    void SaveGlobalKeys();
    void SaveKey(std::string_view key);

    Ports ports_;
    std::string dir_;
    std::string oldUniqueid_;
    int totalURLs_ = 0;
    bool fileExistedAtStart_ = false;
    std::string problemOfFile_;  ///< when the collection was filled; not blank: it holds nothing but defaults
};

/// `<dir>/kvurlwatchn.ini`.
std::string SettingsFilePath(const std::string& dir);

}  // namespace korvane
