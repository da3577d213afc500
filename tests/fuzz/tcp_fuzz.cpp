// A server that says anything to the scripted check of a TCP service, whose expected conversation is the first line of the input.
#include "engine/tcp_checker.h"
#include "fuzz/fuzz.h"
#include "fuzz/mail_world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

// Whether each text that was expected came in an arrival of its own, after those before it.
bool AllCame(const std::vector<std::string>& elements, const std::vector<std::string>& transcript) {
    std::size_t wanted = 0;
    for (const std::string& entry : transcript) {
        if (wanted < elements.size() && entry[0] == '<' && Holds(ToUtf8(entry.substr(1)), elements[wanted])) wanted += 2;
    }
    return wanted >= elements.size();
}

}  // namespace

void FuzzTcp(std::string_view input) {
    const std::string expected = ToUtf8(std::string(TakeUpTo('\n', input).substr(0, 200)));
    MailWorld w(BeginningOf(input));
    Play(w.smtp, input);
    NoConversationWindow conversation;
    TranscriptSocket socket(w.net);
    TcpChecker checker({socket, w.world.events, w.world.clock, w.person, w.status, conversation});
    const CheckResult result = checker.DoTCPRequest("mail.example", expected, 15s, "25");
    const std::vector<std::string> elements = Split(expected, ',');
    constexpr auto kConnecting = 8s, kReply = 22s;
    constexpr auto kMidnight = 16min;  // what a wait across it may take more
    Require(w.world.Ticks() <= kConnecting + kReply * elements.size() + kMidnight, "a check ends in time");
    Require(socket.State() == SocketState::Closed && !w.person.waitCursor, "socket and cursor are put back");
    Require(ToUtf8(result.response + result.strReason) == result.response + result.strReason, "what is shown is text");
    if (!result.strReason.empty()) return;
    Require(!result.response.empty(), "a success has something to show");
    Require(expected.empty() || AllCame(elements, socket.transcript), "a success had all that was expected");
}

}  // namespace korvane
