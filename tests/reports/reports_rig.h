// The room of reports over a real database, files of the caller's choice and a clock that stands at 11/21/2026 3:04:05 PM.
#pragma once

#include <string>

#include "reports/pipeline.h"
#include "store/ini_file.h"
#include "support/memory_files.h"
#include "support/recording_operator.h"
#include "support/test_database.h"
#include "support/virtual_world.h"

namespace korvane {

struct ReportsRig {
    /// Templates and pictures are looked for in `dir`, where the database is too; the pages go below `dir`/Reports.
    ReportsRig(Files& theFiles, Store& theStore, Events& events, VirtualWorld& theWorld, const std::string& dir)
        : ReportsRig(theFiles, theStore, events, theWorld, dir, theWorld.clock) {}

    /// With another clock for the reports than that of the world.
    ReportsRig(Files& theFiles, Store& theStore, Events& events, VirtualWorld& theWorld, const std::string& dir,
               const Clock& clock)
        : world(theWorld),
          files(theFiles),
          store(theStore),
          root(dir + "/Reports"),
          ini(iniFiles, "/ids.ini"),
          ids(ini, world.clock),
          status(person, world.clock),
          reports({store, clock, events, person, files, status, settings, ids}, dir) {
        settings.setKvSettingsColValue("ReportPath", root);
    }

    std::string Publish(bool bQuiet = false) {
        std::string strErr = "left from before";
        reports.PublishReports(bQuiet, strErr);
        return strErr;
    }

    VirtualWorld& world;
    Files& files;
    Store& store;
    std::string root;
    RecordingOperator person;
    SettingsCollection settings;
    MemoryFiles iniFiles;
    IniFile ini;
    ServerIds ids;
    StatusLog status;
    Reports reports;
};

}  // namespace korvane
