// A mailer in the virtual world: one scripted mail server, "mail.example", and a POP server beside it on the same host.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "notify/esmtp.h"
#include "platform/guid_source.h"
#include "store/log.h"
#include "store/settings_collection.h"
#include "store/status_log.h"
#include "support/memory_files.h"
#include "support/recording_operator.h"
#include "support/virtual_net.h"
#include "support/virtual_tcp_socket.h"
#include "support/virtual_world.h"

namespace korvane {

/// 00000001..., 00000002...; the first `failures` calls give nothing.
class CountingGuids : public GuidSource {
public:
    int failures = 0;
    std::optional<Guid> CoCreateGuid() override {
        if (failures-- > 0) return std::nullopt;
        return Guid{++last_, 0x0A0B, 0x0C0D, {1, 2, 3, 4, 5, 6, 7, 8}};
    }

private:
    std::uint32_t last_ = 0;
};

struct MailWorld {
    explicit MailWorld(DateTime start = DateTime::Of(2026, 11, 21, 15, 4, 5)) : world(start, std::chrono::hours(-5)) {}

    /// clsEsmtp with a mail of one line to one recipient.
    std::unique_ptr<clsEsmtp> NewMail() {
        auto mail = std::make_unique<clsEsmtp>(clsEsmtp::Ports{files, world.clock, world.events, guids}, socket);
        mail->SmtpHost = "mail.example";
        mail->emailFromAddress = "me@example.com";
        mail->emailTo = "you@example.com";
        mail->subject = "Hello";
        mail->plainMessage = "How are you?";
        mail->SetHandlers({.StateChange = [this](int state) { states.push_back(state); }});
        return mail;
    }

    VirtualServer& Smtp() { return net.Host("mail.example").Port(25); }
    VirtualServer& Pop() { return net.Host("mail.example").Port(110); }

    VirtualWorld world;
    VirtualNet net{world};
    VirtualTcpSocket socket{net};
    VirtualTcpSocket plainSocket{net};
    MemoryFiles files;
    CountingGuids guids;
    RecordingOperator person;
    StatusLog status{person, world.clock};
    Log log{files, world.clock, "/home/korvane", "1.0.0"};
    SettingsCollection settings;
    std::vector<int> states;
};

}  // namespace korvane
