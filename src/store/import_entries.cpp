#include "store/import_entries.h"

namespace korvane {
namespace {

// The first save moves the entries into the tables, the second writes the mark to the file. Without the mark the next start tries
// again.
void SaveAndMarkImported(const ImportPorts& ports) {
    ports.settings.cmdSave();
    if (ports.entries.StoreRefused()) return;
    ports.collection.setKvSettingsColValue("bAllInDB", "True");
    ports.settings.cmdSave();
    ports.person.RefreshURLList();
}

}  // namespace

void ImportEntriesOnce(const ImportPorts& ports) {
    if (ports.settings.AllInDB()) return;
    ports.events.DoEvents();
    ports.log.Info("frmMonitor:Form_Load: read in ini files to convert first time database users.");
    if (ports.settings.SettingsFileExistedAtStart()) {
        ports.entries.readURLData(ports.settings.GetTotalURLs());
        ports.entries.setFailCommandsOKDirty();
        ports.status.setStatusMSG("All INI data importing into Korvane Database (one time only)...");
        SaveAndMarkImported(ports);
    } else {
        ports.status.setStatusMSG("New User. Initialize Database...");
    }
    SaveAndMarkImported(ports);
}

}  // namespace korvane
