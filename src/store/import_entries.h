// The one-time import of an older installation's entries from the settings file into the database, at the first start with a
// database.
#pragma once

#include "platform/events.h"
#include "platform/operator.h"
#include "store/log.h"
#include "store/server_entries.h"
#include "store/settings.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

struct ImportPorts {
    Events& events;
    Operator& person;
    Log& log;
    StatusLog& status;
    SettingsCollection& collection;
    ServerEntries& entries;
    Settings& settings;
};

/// Does nothing when `bAllInDB` is true. Otherwise sets it to true in the collection and, if possible, in the settings file,
/// unless the database refused to store something: then the next start tries again. Entries that could not be stored are logged;
/// their sections stay in the settings file. Throws nothing.
void ImportEntriesOnce(const ImportPorts& ports);

}  // namespace korvane
