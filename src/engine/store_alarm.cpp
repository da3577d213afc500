#include "engine/store_alarm.h"

#include "platform/connection.h"

namespace korvane {
namespace {

constexpr const char* kTip = "Korvane: Outcomes of checks can't be stored! ";
constexpr const char* kBegins = "Outcomes of checks can't be stored, and are lost: ";
constexpr const char* kIsOver = "Outcomes of checks are stored again.";

}  // namespace

std::string RefusalOf(const std::exception& error) {
    return dynamic_cast<const RowGoneError*>(&error) == nullptr ? error.what() : "";
}

void StoreAlarm::Note(const std::string& refusal) {
    const bool refused = !refusal.empty();
    // Set each time: the failure of an entry, or a new start of monitoring, sets its own picture.
    if (refused) ports_.person.SetTray(TrayPicture::Error, kTip);
    if (refused == raised_) return;
    raised_ = refused;
    Tell(refused ? kBegins + refusal : kIsOver);
}

void StoreAlarm::Tell(const std::string& text) {
    ports_.status.setStatusMSG(text);
    ports_.log.WriteLog(kLogOrdinary, kLogError, text);
    ports_.manager.Status(text);
}

}  // namespace korvane
