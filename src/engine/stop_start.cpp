#include "engine/stop_start.h"

namespace korvane {

void StopStart::cmdStopStart() {
    if (ports_.bFormLoading) return;
    if (ports_.state.bMonitoring) {
        Stop();
    } else {
        Start();
    }
    ports_.person.RefreshURLList();
}

void StopStart::Stop() {
    ports_.timers.TimerLog.SetEnabled(false);
    ports_.timers.TimerMonitorDB.SetEnabled(false);
    ports_.timers.Timer2.SetEnabled(false);
    ports_.state.bMonitoring = false;
    ports_.person.SetMonitoring(false);
    ports_.person.SetProgressTip("Monitoring Stopped. Click the Start Button to start monitoring.");
    ports_.person.SetProgress(0, 100);
    ports_.person.SetTray(TrayPicture::Off, " Korvane: URL Monitoring is Paused.  No Monitoring will occur. ");
    ports_.status.setStatusMSG("Stopped.  Click the Start button to resume monitoring.");
    ports_.person.SetCycleText("Monitoring Stopped");
    ports_.status.setStatusMSG("Monitoring Stopped");
}

void StopStart::Start() {
    ports_.person.SetProgressTip("Monitoring Just started.");
    ports_.person.SetProgress(0, 100);
    ports_.person.SetTray(TrayPicture::Normal, " Korvane: URL Monitoring is ON ");
    ports_.timers.TimerMonitorDB.SetEnabled(true);
    ports_.timers.Timer2.SetEnabled(false);
    ports_.state.bMonitoring = true;
    ports_.person.SetMonitoring(true);
    ports_.status.setStatusMSG("Monitoring Started");
    ports_.person.SetCycleText("Monitoring in progress...");
}

}  // namespace korvane
