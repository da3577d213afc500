// Proves once a day that alerts would arrive (ProveMail): sends a mail to a mailbox of one's own, reads it back and deletes it. When
// it does not come within the hour, log, status, sound and the backup mail server say so. Until then a mail that no server takes is
// tried again.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "notify/dispatcher.h"
#include "notify/pop_box.h"
#include "platform/files.h"
#include "platform/guid_source.h"
#include "platform/sound.h"
#include "platform/timer.h"
#include "store/alert_path.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

class MailProof {
public:
    struct Ports {
        TcpSocket& popSocket;
        const Clock& clock;
        Events& events;
        Timers& timers;
        Files& files;
        GuidSource& guids;
        Sound& sound;
        Dispatcher& mail;  ///< not the one of the cycle, whose mails it would hold up
        Safeguards& safeguards;
        const SettingsCollection& settings;
        StatusLog& status;
        Log& log;
        AlertPath& alertPath;
        std::function<bool()> busy;  ///< a check or a mail is under way; it is waited for, a minute at most
    };

    /// Looks once a minute whether something is to be done. What it waits for is kept in `<dir>/kvproof.dat`.
    MailProof(const Ports& ports, const std::string& dir);

    /// Called at the start and after each change of the settings: looks each minute while the safeguard is on.
    void Follow();
    /// Ends it.
    void Stop() { timer_->SetEnabled(false); }

private:
    enum class State { Idle, Waiting, Overdue, Unsent };
    struct Proof {
        std::string day;    ///< of the latest mail, "2026-11-21"
        DateTime sent;      ///< UTC
        std::string token;  ///< in the subject of that mail
        State state = State::Idle;
    };

    void Look();
    bool IsDueToday() const;
    bool IsTimeToRead() const;
    bool IsTimeToTryAgain() const;
    bool IsHourOver();
    void Begin();
    void Send();
    void ReadBack();
    void Arrived(bool deleted);
    void Missing(const std::string& reason);
    void Tell(const std::string& text);

    std::string NewToken();
    void Load();
    void Save();

    Ports ports_;
    std::string file_;
    PopBox box_;
    std::unique_ptr<Timer> timer_;
    Proof proof_;
    bool loaded_ = false;
    bool working_ = false;
    int waits_ = 0;
    std::string lastProblem_;                         ///< of the latest attempt to send the mail or to read it back
    std::optional<std::chrono::milliseconds> tried_;  ///< to send the mail; tick count of the clock
};

}  // namespace korvane
