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
#include <utility>
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
    using Milliseconds = std::chrono::milliseconds;
    using Kind = ServerStep::Kind;

public:
    /// How attempts to connect are met. The last one said counts; without one, connections are accepted after 1 ms.
    VirtualServer& Accept(Milliseconds after) { return Set(&Script::greeting, {ServerGreeting::Accept, after}); }
    VirtualServer& Refuse(Milliseconds after = Milliseconds(1)) {
        return Set(&Script::greeting, {ServerGreeting::Refuse, after});
    }
    /// No answer at all, ever.
    VirtualServer& Silent() { return Set(&Script::greeting, {ServerGreeting::Silent, Milliseconds(0)}); }

    /// Sends the text as one arrival. A step of its own for each piece gives an answer in pieces.
    VirtualServer& Speak(std::string text, Milliseconds after = Milliseconds(0)) {
        return Add({Kind::Speak, std::move(text), after});
    }
    /// Waits for exactly this line (which ends in CR LF on the wire). After any other line the server says nothing more and
    /// Mistake tells why.
    VirtualServer& Expect(std::string line) { return Add({Kind::Expect, std::move(line)}); }
    VirtualServer& ExpectAnyLine() { return Add({Kind::ExpectAny}); }
    /// Waits for this line and takes all that come before it.
    VirtualServer& ExpectUpTo(std::string line) { return Add({Kind::ExpectUpTo, std::move(line)}); }
    /// Expect, then Speak.
    VirtualServer& OnLine(std::string line, std::string answer, Milliseconds after = Milliseconds(1)) {
        return Expect(std::move(line)).Speak(std::move(answer), after);
    }
    /// From here on each line is answered, 1 ms later, with what the function makes of it; an empty text is no answer.
    VirtualServer& Answer(std::function<std::string(const std::string& line)> answer) {
        return Add({Kind::Answer, "", Milliseconds(1), std::move(answer)});
    }
    /// Orderly end by the server; what was sent before can still be read.
    VirtualServer& Close(Milliseconds after = Milliseconds(0)) { return Add({Kind::Close, "", after}); }
    /// The connection breaks.
    VirtualServer& Reset(Milliseconds after = Milliseconds(0)) { return Add({Kind::Reset, "", after}); }

    /// How the client's system gets rid of what the client sends: up to `bytes` after each `delay`. Without it, all of it in the
    /// next event.
    VirtualServer& Take(Milliseconds delay, std::size_t bytes) {
        Changeable().takeAtOnce = bytes;
        return Set(&Script::takeAfter, delay);
    }
    /// Never: the window stays shut, though what is sent still reaches the script.
    VirtualServer& TakeNothing() { return Set(&Script::takeAfter, std::nullopt); }

    /// Speaks TLS, from the first byte on or when the client begins it; refused by the client for `problem`, if there is one. In
    /// Lines the beginning is "[TLS]".
    VirtualServer& Tls(bool fromTheFirstByte, std::string problem = "") {
        Changeable().tlsProblem = std::move(problem);
        return Set(&Script::tlsFirst, fromTheFirstByte);
    }

    /// A step as data.
    VirtualServer& Add(ServerStep step) {
        Changeable().steps.push_back(std::move(step));
        return *this;
    }

    /// Forgets everything above: accepts after 1 ms and says nothing.
    VirtualServer& Anew() {
        script_ = std::make_shared<Script>();
        return *this;
    }

    /// Attempts to connect so far, whatever became of them.
    int Connections() const { return connections_; }
    /// The lines that the client of the latest connection sent, without their line ends.
    const std::vector<std::string>& Lines() const { return lines_; }
    /// "expected 'QUIT', got 'NOOP'": the first line ever that was not in the script, empty as long as there is none.
    const std::string& Mistake() const { return mistake_; }

    // For VirtualTcpSocket.
    struct Script {
        std::pair<ServerGreeting, Milliseconds> greeting{ServerGreeting::Accept, 1};
        std::optional<Milliseconds> takeAfter{Milliseconds(0)};
        std::size_t takeAtOnce = static_cast<std::size_t>(-1);
        std::vector<ServerStep> steps;
        bool tlsFirst = false;
        std::optional<std::string> tlsProblem;  ///< nothing: no TLS
    };
    std::shared_ptr<const Script> BeginConnection() {
        ++connections_;
        lines_.clear();
        return script_;
    }
    void NoteLine(const std::string& line) { lines_.push_back(line); }
    void NoteMistake(const std::string& expected, const std::string& got) {
        if (mistake_.empty()) mistake_ = "expected '" + expected + "', got '" + got + "'";
    }

private:
    template <class Part>
    VirtualServer& Set(Part Script::*part, std::type_identity_t<Part> value) {
        Changeable().*part = std::move(value);
        return *this;
    }
    // Connections that stand keep the script they began with.
    Script& Changeable() {
        if (script_.use_count() > 1) script_ = std::make_shared<Script>(*script_);
        return *script_;
    }

    std::shared_ptr<Script> script_ = std::make_shared<Script>();
    int connections_ = 0;
    std::vector<std::string> lines_;
    std::string mistake_;
};

}  // namespace korvane
