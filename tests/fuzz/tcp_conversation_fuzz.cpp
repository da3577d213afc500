// The scripted check of a TCP service against a server that says anything. The first line of an input is what the check expects.
#include <chrono>
#include <exception>
#include <string>
#include <vector>

#include "base/text.h"
#include "engine/tcp_checker.h"
#include "fuzz/conversation.h"
#include "fuzz/fuzz.h"
#include "support/recording_operator.h"
#include "support/virtual_net.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kConnecting = 8s;
constexpr auto kReply = 22s;
constexpr auto kMidnight = 16min;  ///< what a wait across it may take more

// Whether each text that was expected came in an arrival of its own, behind those before it.
bool AllCame(const std::vector<std::string>& elements, const TranscriptSocket& socket) {
    std::size_t wanted = 0;
    for (const TranscriptSocket::Entry& entry : socket.Transcript()) {
        if (wanted < elements.size() && !entry.sent && Holds(ToUtf8(entry.bytes), elements[wanted])) wanted += 2;
    }
    return wanted >= elements.size();
}

}  // namespace

void Fuzz(std::string_view input) {
    const std::string expected = ToUtf8(std::string(TakeLine(input).substr(0, 200)));
    VirtualWorld world(BeginningOf(input));
    VirtualNet net(world);
    Prepare(net.Host("10.0.0.1").Port(25), input);
    RecordingOperator person;
    StatusLog status(person, world.clock);
    NoConversationWindow conversation;
    TranscriptSocket socket(net);
    TcpChecker checker({socket, world.events, world.clock, person, status, conversation});

    const CheckResult result = checker.DoTCPRequest("10.0.0.1", expected, 15s, "25");

    const std::vector<std::string> elements = Split(expected, ',');
    Require(world.Ticks() <= kConnecting + kReply * elements.size() + kMidnight, "a check ends in time");
    Require(socket.State() == SocketState::Closed && !person.waitCursor, "socket and cursor are put back");
    Require(ToUtf8(result.response + result.strReason) == result.response + result.strReason, "what is shown is text");
    if (!result.strReason.empty()) return;
    Require(!result.response.empty(), "a success has something to show");
    Require(expected.empty() || AllCame(elements, socket), "a success had all that was expected");
}

}  // namespace korvane
