// A mail of the plain mailer to a server that says anything.
#include <string>

#include "fuzz/conversation.h"
#include "fuzz/fuzz.h"
#include "notify/plain_mailer.h"
#include "support/memory_files.h"
#include "support/recording_operator.h"
#include "support/virtual_net.h"

namespace korvane {
namespace {

constexpr std::chrono::hours kLongestMail(3);

// What arrived before the answer was looked at counts together, and one or two characters alone pass for what was expected.
void CheckDelivered(const TranscriptSocket& socket) {
    const std::size_t end = socket.BehindLine(".", socket.BehindLine("data"));
    const std::size_t quit = socket.BehindLine("quit", end);
    Require(end > 0 && quit > end + 1, "a mail that counts as sent was sent to its end, and the server answered");
    const TranscriptSocket::Entry& first = socket.Transcript()[end];
    Require(!first.sent && (first.bytes.size() <= 2 || first.bytes.starts_with("250")), "and it took the mail");
}

}  // namespace

void Fuzz(std::string_view input) {
    VirtualWorld world(BeginningOf(input));
    VirtualNet net(world);
    Prepare(net.Host("10.0.0.1").Port(25), input);
    MemoryFiles files;
    RecordingOperator person;
    StatusLog status(person, world.clock);
    Log log(files, world.clock, "/", "1.0.0");
    TranscriptSocket socket(net);
    PlainMailer mailer({socket, world.clock, world.events, person, status, log});

    std::string error = "of an earlier mail";
    const bool sent = mailer.SendPlainMail("admin@korvane.test", "admin@korvane.test", "monitor", "monitor@korvane.test",
                                           "web is DOWN", "Down.\r\n.\r\n", "10.0.0.1", "", error, "", "");

    Require(world.Ticks() <= kLongestMail, "a mail ends in time");
    Require(socket.State() == SocketState::Closed && !person.waitCursor, "socket and cursor are put back");
    Require(sent == error.empty(), "a mail was sent, or there is a reason");
    if (sent) CheckDelivered(socket);
}

}  // namespace korvane
