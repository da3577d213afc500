// A mail that clsEsmtp sends in the virtual world, for the targets that play its servers.
#pragma once

#include <string>

#include "fuzz/conversation.h"
#include "notify/esmtp.h"
#include "support/memory_files.h"
#include "support/virtual_net.h"
#include "support/virtual_world.h"

namespace korvane {

class SameGuid : public GuidSource {
public:
    std::optional<Guid> CoCreateGuid() override { return Guid{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}; }
};

/// What all waits of one mail together stay below: 30 or so replies of up to 60 seconds, and as many pieces that go out slowly.
constexpr std::chrono::hours kLongestMail(4);

struct MailWorld {
    explicit MailWorld(std::string_view script) : world(BeginningOf(script)) {
        mail.SmtpHost = "10.0.0.1";
        mail.emailFromAddress = "monitor@korvane.test";
        mail.emailTo = "admin@korvane.test;second@korvane.test";
        mail.subject = "web is DOWN";
        mail.plainMessage = "The server is down.\r\n.\r\nSince noon.\r\n";
        mail.UserID = "monitor";
        mail.Password = "secret";
        clsEsmtp::Handlers handlers;
        handlers.RequestESMTPLogin = handlers.RequestPOPLogin = [this](std::string&, std::string& password, bool& cancel) {
            password += "2";
            cancel = ++refusedLogins > kMoreLogins;
        };
        mail.SetHandlers(handlers);
    }

    static constexpr int kMoreLogins = 2;
    int refusedLogins = 0;
    VirtualWorld world;
    VirtualNet net{world};
    MemoryFiles files;
    SameGuid guids;
    TranscriptSocket socket{net};
    clsEsmtp mail{{files, world.clock, world.events, guids}, socket};
};

}  // namespace korvane
