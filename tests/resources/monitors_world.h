// The resource monitors in the virtual world: a machine and a service manager of the test's, and a mail server that takes their
// mails.
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "notify/dispatcher.h"
#include "notify/mail_world.h"
#include "resources/alert_mails.h"
#include "resources/alert_monitor.h"
#include "support/scripted_services.h"
#include "support/scripted_system_info.h"
#include "support/test_database.h"
#include "support/virtual_mail_server.h"

namespace korvane {

struct MonitorsWorld : MailWorld {
    using Texts = std::vector<std::string>;

    MonitorsWorld() : MailWorld(DateTime::Of(2026, 11, 21, 15, 0, 30)) {
        files.CreateFolder(database.Folder());
        settings.setKvSettingsColValue("Server", "mail.example");
        database.Add({.strDesc = "first"});
        database.Change("Servers", 1, {{"strEmailList1", "first@example.com"}});
    }

    MonitorPorts Ports() {
        return {database.Folder(), world.clock, world.timers, database.TheStore(), person, files, settings, alerts, log};
    }
    void File(const std::string& name, const std::string& text) { files.Replace(database.Folder() + "/" + name, text); }
    std::string FileText(const std::string& name) const { return files.Text(database.Folder() + "/" + name); }

    /// Goes on for `time`, and gives the mails of it: minutes and seconds since the start, and the body.
    Texts MailsOf(std::chrono::seconds time) {
        Texts mails;
        for (auto left = time; left > std::chrono::seconds(0); left -= std::chrono::seconds(1)) {
            world.RunFor(std::chrono::seconds(1));
            for (; seen_ < server.mails.size(); ++seen_)
                mails.push_back(TimeText() + " " + BodyOf(server.mails[seen_]));
        }
        return mails;
    }
    /// Only when they came.
    Texts TimesOf(std::chrono::seconds time) {
        Texts times = MailsOf(time);
        for (std::string& text : times)
            text.resize(text.find(' '));
        return times;
    }

    VirtualMailServer server{Smtp()};
    TestDatabase database;
    Dispatcher dispatcher{{socket, plainSocket, world.clock, world.events, person, files, guids, status, log, settings, [] {}},
                          {}};
    AlertMails alerts{dispatcher, world.timers, log};
    ScriptedSystemInfo system;
    ScriptedServices services{world};

private:
    std::string TimeText() const {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(world.Ticks()).count();
        const std::string rest = std::to_string(seconds % 60);
        return std::to_string(seconds / 60) + ":" + (rest.size() == 1 ? "0" : "") + rest;
    }
    static std::string BodyOf(const VirtualMailServer::Mail& mail) {
        return TrimAll(mail.text.substr(mail.text.find("\r\n\r\n")));
    }

    std::size_t seen_ = 0;
};

}  // namespace korvane
