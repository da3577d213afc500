// The rooms of settings and old entries over files in memory, a real database and a clock that stands at 11/21/2026 3:04:05 PM.
#pragma once

#include <string>
#include <vector>

#include "store/import_entries.h"
#include "support/faulty_files.h"
#include "support/faulty_store.h"
#include "support/memory_files.h"
#include "support/recording_operator.h"
#include "support/test_database.h"
#include "support/virtual_world.h"

namespace korvane {

struct FakeHost : SettingsHost {
    bool hasWindow = false;
    int width = 0, height = 5500;
    bool HasWindow() const override { return hasWindow; }
    int ScreenWidth() const override { return 15360; }
    int Width() const override { return width; }
    int Height() const override { return height; }
    void SetWidth(int twips) override { width = twips; }
    void SetHeight(int twips) override { height = twips; }
};

/// One run of the program on files and a database that outlive it.
struct StoreRun {
    StoreRun(Files& files, Store& store, std::string folder)
        : world(DateTime::Of(2026, 11, 21, 15, 4, 5)),
          dir(std::move(folder)),
          file(files, SettingsFilePath(dir)),
          ids(file, world.clock),
          log(files, world.clock, dir, "1.0.0"),
          status(person, world.clock),
          entries({store, world.clock, world.events, log, status, file, ids, collection}, dir),
          settings(
              {files, world.clock, world.events, person, host, status, file, collection, entries, [this] { StartService(); }},
              dir) {}

    void StartService() {
        services.push_back(Setting("ServiceName"));
        throw Error("The service manager did not start this program.");
    }
    void Import() { ImportEntriesOnce({world.events, person, log, status, collection, entries, settings}); }
    std::string Setting(std::string_view key) const { return collection.getKvSettingsColVal(key); }

    VirtualWorld world;
    std::string dir;
    RecordingOperator person;
    FakeHost host;
    std::vector<std::string> services;  ///< the name of each that was started
    SettingsCollection collection;
    IniFile file;
    ServerIds ids;
    Log log;
    StatusLog status;
    ServerEntries entries;
    Settings settings;
};

struct StoreRig {
    StoreRig() : dir(database.Folder()), files(disk), store(database.TheStore()) { disk.CreateFolder(dir); }

    /// The keys of section "Settings", and what follows it.
    void PutSettings(const std::string& text) { disk.Replace(SettingsFilePath(dir), "[Settings]\n" + text); }
    std::string SettingsText() const { return disk.Text(SettingsFilePath(dir)); }
    std::string LogText() const { return disk.Text(dir + "/Logs/kvmonlog 2026 11-21.txt"); }

    TestDatabase database;
    std::string dir;
    MemoryFiles disk;
    FaultyFiles files;
    FaultyStore store;
};

/// A run that has read its settings and old entries.
struct LoadedRun : StoreRun {
    explicit LoadedRun(StoreRig& rig) : StoreRun(rig.files, rig.store, rig.dir) {
        settings.ReadInGlobalSettings();
        entries.readURLData(settings.GetTotalURLs());
    }
};

}  // namespace korvane
