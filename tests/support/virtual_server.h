// What a scripted server does with a connection: how it meets it, and the conversation, one step after the other. A script is
// built in the order in which it reads:
//
//     net.Host("10.0.0.1").Port(25).Speak("220 ready\r\n", 30ms).OnLine("QUIT", "221 bye\r\n").Close();
//
// Every change counts from the next connection on; those that stand play on with the script they began with.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvane {

/// One step of a conversation. `after` counts from the end of the step before.
struct ServerStep {
    enum class Kind { Speak, Expect, ExpectUpTo, ExpectAny, Answer, Close, Reset };
    Kind kind;
    std::string text = {};
    std::chrono::milliseconds after{0};
    std::function<std::string(const std::string& line)> answer = {};  ///< of Answer
};

enum class ServerGreeting { Accept, Refuse, Silent };

class VirtualServer {
public:
    /// How attempts to connect are met. The last one said counts; without one, connections are accepted after 1 ms.
    VirtualServer& Accept(std::chrono::milliseconds after);
    VirtualServer& Refuse(std::chrono::milliseconds after = std::chrono::milliseconds(1));
    /// No answer at all, ever.
    VirtualServer& Silent();

    /// Sends the text as one arrival. A step of its own for each piece gives an answer in pieces.
    VirtualServer& Speak(std::string text, std::chrono::milliseconds after = std::chrono::milliseconds(0));
    /// Waits for exactly this line (which ends in CR LF on the wire). After any other line the server says nothing more and
    /// Mistake tells why.
    VirtualServer& Expect(std::string line);
    VirtualServer& ExpectAnyLine();
    /// Waits for this line and takes all that come before it.
    VirtualServer& ExpectUpTo(std::string line);
    /// Expect, then Speak.
    VirtualServer& OnLine(std::string line, std::string answer, std::chrono::milliseconds after = std::chrono::milliseconds(1));
    /// From here on each line is answered, 1 ms later, with what the function makes of it; blank is no answer.
    VirtualServer& Answer(std::function<std::string(const std::string& line)> answer);
    /// Orderly end by the server; what was sent before can still be read.
    VirtualServer& Close(std::chrono::milliseconds after = std::chrono::milliseconds(0));
    /// The connection breaks.
    VirtualServer& Reset(std::chrono::milliseconds after = std::chrono::milliseconds(0));

    /// How the client's system gets rid of what the client sends: up to `bytes` after each `delay`. Without it, all of it in the
    /// next event.
    VirtualServer& Take(std::chrono::milliseconds delay, std::size_t bytes);
    /// Never: the window stays shut, though what is sent still reaches the script.
    VirtualServer& TakeNothing();

    /// A step as data.
    VirtualServer& Add(ServerStep step);

    /// Forgets everything above: accepts after 1 ms and says nothing.
    VirtualServer& Anew();

    /// Attempts to connect so far, whatever became of them.
    int Connections() const { return connections_; }
    /// The lines that the client of the latest connection sent, without their line ends.
    const std::vector<std::string>& Lines() const { return lines_; }
    /// "expected 'QUIT', got 'NOOP'": the first line ever that was not in the script, blank as long as there is none.
    const std::string& Mistake() const { return mistake_; }

    // For VirtualTcpSocket.
    struct Script {
        ServerGreeting greeting = ServerGreeting::Accept;
        std::chrono::milliseconds greetAfter{1};
        std::optional<std::chrono::milliseconds> takeAfter{std::chrono::milliseconds(0)};
        std::size_t takeAtOnce = static_cast<std::size_t>(-1);
        std::vector<ServerStep> steps;
    };
    std::shared_ptr<const Script> BeginConnection();
    void NoteLine(const std::string& line) { lines_.push_back(line); }
    void NoteMistake(const std::string& expected, const std::string& got);

private:
    VirtualServer& Greet(ServerGreeting greeting, std::chrono::milliseconds after);
    Script& Changeable();

    std::shared_ptr<Script> script_ = std::make_shared<Script>();
    int connections_ = 0;
    std::vector<std::string> lines_;
    std::string mistake_;
};

}  // namespace korvane
