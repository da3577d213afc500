// Both mailers in the virtual world, with a mail of one line to one recipient, and a server for SMTP and for POP on one host. They
// need no other room, nor a home: what they log goes nowhere.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/script.h"
#include "notify/esmtp.h"
#include "notify/plain_mailer.h"
#include "platform/linux/linux_files.h"
#include "support/recording_operator.h"
#include "support/virtual_net.h"
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

struct MailWorld : private MailTrace {
    explicit MailWorld(DateTime start = BeginningOf("")) : world(start, std::chrono::hours(-5)) {
        mail.SmtpHost = "mail.example";
        mail.emailFromAddress = "me@example.com";
        mail.emailTo = "you@example.com";
        mail.subject = "Hello";
        mail.plainMessage = "How are you?";
        mail.UserID = "tim";
        mail.Password = "tanstaaftanstaaf";
        Listen({});
    }

    /// The states are noted in any case.
    void Listen(clsEsmtp::Handlers handlers) {
        handlers.StateChange = [this](int state) { states.push_back(state); };
        mail.SetHandlers(std::move(handlers));
    }

    bool SendPlain(const std::string& body = "How are you?", const std::string& subject = "Hello") {
        return plain.SendPlainMail("you@example.com", "you@example.com", "Me", "me@example.com", subject, body, mail.SmtpHost, "",
                                   strError, "", "");
    }

    VirtualWorld world;
    VirtualNet net{world};
    VirtualServer& smtp = net.Host("mail.example").Port(25);
    VirtualServer& pop = net.Host("mail.example").Port(110);
    TranscriptSocket socket{net};
    TranscriptSocket plainSocket{net};
    LinuxFiles files;
    CountingGuids guids;
    RecordingOperator person;
    StatusLog status{person, world.clock};
    Log log{files, world.clock, "/dev/null", "1.0.0"};
    std::vector<int> states;
    std::string strError = "of an earlier mail";
    std::string trace;  ///< ">" and each line that was sent, "<" and each reply, a "|" after each
    bool tidy = false;  ///< when the last line of the trace came, the plain mailer had closed its socket and put the cursor back
    std::size_t saidBefore = 0;  ///< status lines, by then
    clsEsmtp mail{{files, world.clock, world.events, guids, this}, socket};
    PlainMailer plain{{plainSocket, world.clock, world.events, person, status, log, this}};

private:
    void setMsg(const std::string& sent) override {
        trace += ">" + sent + "|";
        tidy = plainSocket.State() == SocketState::Closed && !person.waitCursor;
        saidBefore = person.status.size();
    }
    void setReceiveMsg(const std::string& received) override { trace += "<" + received + "|"; }
};

}  // namespace korvane
