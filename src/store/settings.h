// The global settings: read from the file once at start-up into the settings collection, which the program uses from then on, and
// written back by Save. settings.cpp has the tables of keys with their defaults and of both orders.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/operator.h"
#include "store/ini_file.h"
#include "store/log.h"
#include "store/server_entries.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// The section of the global keys.
constexpr std::string_view kSettingsSection = "Settings";
/// Checked once per start for the key `uniqueid`, under exactly this name.
constexpr std::string_view kOldSettingsFile = "/kvurlwatch.ini";
/// The parts of the main window that the settings affect. Sizes are in twips, fifteenths of a pixel. This base class stands for a
/// program without a main window.
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

/// The common read: the value of the file replaces that of the collection. A missing file or key is not an error.
void ReadSettingCol(SettingsCollection& collection, std::string_view key, std::string_view defaultValue, std::string_view section,
                    IniFile& file);
/// The operations of the collection for code outside the main window.
std::string GetSettingCol(const SettingsCollection& collection, std::string_view key);
void SetSettingCol(SettingsCollection& collection, std::string_view key, std::string value);

class Settings {
public:
    /// Holds references; everything must outlive this. `file` is `<dir>/kvurlwatchn.ini`.
    struct Ports {
        Files& files;
        const Clock& clock;
        Events& events;
        Operator& user;
        SettingsHost& host;
        Log& log;
        StatusLog& status;
        IniFile& file;
        SettingsCollection& collection;
        ServerEntries& entries;
        std::function<void()> startService;  ///< connects this process to its service manager; its exceptions are ignored
    };

    /// Checks whether the settings file exists, before this start writes it.
    Settings(const Ports& ports, std::string dir);

    /// Loads all keys, creates the report folder, starts the service and restores the window's size. Never throws because of the
    /// file's content. Delivers events once.
    void ReadInGlobalSettings();

    /// Writes the global keys in one step, then the changed old entries, delivering events between them. Shows the wait cursor
    /// meanwhile and the status "Settings Saved" at the end. Throws nothing: IniFile::LastWriteError has the reason of a failed
    /// write. When the file could not be read at start-up nothing is saved, and the status says why.
    void Save();

    /// The save command: marks every entry, then Save.
    void cmdSave();

    /// The one-time import of an older installation's entries from the settings file into the database. Does nothing when
    /// `bAllInDB` is true. Otherwise sets it to true in the collection and, if possible, in the settings file, unless the database
    /// refused to store something: then the next start tries again. Entries that could not be stored are logged; their sections
    /// stay in the settings file. Throws nothing.
    void ImportEntriesOnce();

    /// Handles the uniqueid at each start: reads the old settings file, and writes a new id to the settings file if there is
    /// none.
    void EnsureUniqueid();
    /// Does nothing while the path of the settings file is empty.
    void setUniqueid(const std::string& id);

    const std::string& GetSettingsFile() const { return ports_.file.Path(); }
    const std::string& GetCurrentDir() const { return dir_; }
    /// Returns `<dir>/kvurlwatch`, the base of the old log's file names.
    std::string GetLogFile() const { return dir_ + "/kvurlwatch"; }
    /// Returns the entry count, stored on disk as `NumURLs`.
    int GetTotalURLs() const { return totalURLs_; }
    void SetTotalURLs(int count) { totalURLs_ = count; }

    /// Returns whether `bAllInDB` is true (in any case), so that the old entries are already in the database.
    bool AllInDB() const;

private:
    struct ReadStep;
    static const ReadStep kReadSteps[];

    std::string DefaultOf(const ReadStep& step) const;
    void CreateReportFolder();
    void StartService();
    void RestoreWindowSize();
    void ReadNumURLs();
    void ReadSafeguards();
    void ReadIfThere(std::string_view key);
    void SaveGlobalKeys();
    void SaveKey(std::string_view key);
    void SaveAndMarkImported();

    Ports ports_;
    std::string dir_;
    std::string oldUniqueid_;
    int totalURLs_ = 0;
    bool fileExistedAtStart_ = false;
    std::string problemOfFile_;  ///< from when the collection was filled; if not empty, the collection contains only defaults
};

/// Returns `<dir>/kvurlwatchn.ini`.
std::string SettingsFilePath(const std::string& dir);

}  // namespace korvane
