// A server as a line of text, for the fuzz targets and for tests of mail. Its steps stand between "|":
//
//     220 hello    say the line, with its CR LF
//     _250-SI      say this alone, without a line end
//     <            wait for a line of the client
//     <QUIT        wait for this line, and fall silent after any other
//     <<.          wait for this line, whatever comes before it
//     @1500        the next step comes after so many milliseconds; else after 1
//     ^            close the connection
//     !            break it
//     *            from here on, be content with everything
//     #  ?         from the beginning, refuse connections; never answer them
//     %200 64      from the beginning, take only 64 bytes every 200 ms; without numbers take nothing
//     &            all this begins just before midnight
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "base/datetime.h"
#include "base/text.h"
#include "support/virtual_server.h"
#include "support/virtual_tcp_socket.h"

namespace korvane {

inline DateTime BeginningOf(std::string_view script) {
    return Holds(script, "&") ? DateTime::Of(2026, 11, 21, 23, 59, 50) : DateTime::Of(2026, 11, 21, 15, 4, 5);
}

/// What a server says that takes any mail; `reading`: the message is on its way.
inline std::string ContentAnswer(bool& reading, const std::string& line) {
    const bool wasReading = reading;
    reading = wasReading ? line != "." : EqualsNoCase(line, "data");
    if (wasReading) return reading ? "" : "250 queued\r\n";
    return reading ? "354 go on\r\n" : EqualsNoCase(line, "quit") ? "221 bye\r\n" : "250 fine\r\n";
}

/// Prepares the steps for the next connection.
inline void Play(VirtualServer& server, std::string_view script) {
    constexpr std::size_t kMostSteps = 150;
    constexpr long kLongestPause = 70'000;  // longer than any wait of a client
    constexpr long kFewestBytes = 50;       // a client waits as long as there is progress, so there is not too little of it
    std::vector<std::string> steps = Split(script, '|');
    steps.resize(std::min(steps.size(), kMostSteps));
    std::chrono::milliseconds pause(1);
    for (const std::string& step : steps) {
        const char mark = step.empty() ? '&' : step[0];
        const std::string rest = step.substr(step.empty() ? 0 : 1);
        char* more = nullptr;
        const std::chrono::milliseconds number(std::clamp(std::strtol(rest.c_str(), &more, 10), 0L, kLongestPause));
        const auto bytes = static_cast<std::size_t>(std::max(std::strtol(more, nullptr, 10), kFewestBytes));
        if (mark == '_') server.Speak(rest, pause);
        if (mark == '<')
            rest[0] == '<' ? server.ExpectUpTo(rest.substr(1)) : rest == "" ? server.ExpectAnyLine() : server.Expect(rest);
        if (mark == '^') server.Close(pause);
        if (mark == '!') server.Reset(pause);
        if (mark == '*') server.Answer([on = false](const std::string& line) mutable { return ContentAnswer(on, line); });
        if (mark == '#') server.Refuse();
        if (mark == '?') server.Silent();
        if (mark == '%') rest.empty() ? server.TakeNothing() : server.Take(number, bytes);
        if (!Holds("_<^!*#?%&@", std::string_view(&mark, 1))) server.Speak(step + "\r\n", pause);
        pause = mark == '@' ? number : std::chrono::milliseconds(1);
    }
}

/// Notes what goes through it.
class TranscriptSocket : public VirtualTcpSocket {
public:
    using VirtualTcpSocket::VirtualTcpSocket;

    std::vector<std::string> transcript;  ///< ">" and what was sent, "<" and what was taken

    void SendData(std::string_view bytes) override {
        VirtualTcpSocket::SendData(bytes);
        transcript.push_back(">" + std::string(bytes));
    }
    std::string GetData(std::size_t maxLength = kAll) override {
        std::string bytes = VirtualTcpSocket::GetData(maxLength);
        transcript.push_back("<" + bytes);
        return bytes;
    }

    /// The place after the first entry from `from` on that begins with `head`, after a CR in front or not; 0 when there is none.
    std::size_t After(const std::string& head, std::size_t from = 0) const {
        for (std::size_t i = from; i < transcript.size(); ++i) {
            if (transcript[i].starts_with(head) || transcript[i].starts_with("<\r" + head.substr(1))) return i + 1;
        }
        return 0;
    }
};

}  // namespace korvane
