#include "fuzz/conversation.h"

#include <algorithm>
#include <chrono>

#include "fuzz/fuzz.h"

namespace korvane {
namespace {

using std::chrono::milliseconds;

constexpr int kMostSteps = 150;
constexpr int kLongestPause = 70'000;  ///< longer than any wait of a client
constexpr int kFewestBytes = 50;       ///< a client waits as long as there is progress; so there is not too little of it

// The next number in the line; 0 when there is none.
int TakeNumber(std::string_view& line) {
    line.remove_prefix(std::min(line.find_first_of("0123456789"), line.size()));
    int number = 0;
    while (!line.empty() && line.front() >= '0' && line.front() <= '9') {
        number = std::min(number * 10 + (line.front() - '0'), kLongestPause);
        line.remove_prefix(1);
    }
    return number;
}

std::string TextOf(std::string_view line) {
    return std::string(line.substr(std::min<std::size_t>(2, line.size())));
}

void TakeSlowly(VirtualServer& server, std::string_view numbers) {
    const milliseconds delay(TakeNumber(numbers));
    server.Take(delay, static_cast<std::size_t>(std::max(TakeNumber(numbers), kFewestBytes)));
}

}  // namespace

DateTime BeginningOf(std::string_view script) {
    while (!script.empty()) {
        if (TakeLine(script) == "m") return DateTime::Of(2026, 11, 21, 23, 59, 50);
    }
    return DateTime::Of(2026, 11, 21, 3, 0, 0);
}

void Prepare(VirtualServer& server, std::string_view script) {
    milliseconds pause(1);
    for (int step = 0; step < kMostSteps && !script.empty(); ++step) {
        const std::string_view line = TakeLine(script);
        if (line.starts_with("> ")) {
            server.Speak(TextOf(line) + "\r\n", pause);
        } else if (line.starts_with("- ")) {
            server.Speak(TextOf(line), pause);
        } else if (line.starts_with("~ ")) {
            server.Speak(TextOf(line) + "\n", pause);
        } else if (line == "<") {
            server.ExpectAnyLine();
        } else if (line == "<.") {
            server.ExpectUpTo(".");
        } else if (line == "x") {
            server.Close(pause);
        } else if (line == "!") {
            server.Reset(pause);
        } else if (line == "n") {
            server.TakeNothing();
        } else if (line.starts_with("s ")) {
            TakeSlowly(server, line);
        } else if (line.starts_with(". ")) {
            std::string_view number = line;
            pause = milliseconds(TakeNumber(number));
            continue;
        } else if (line != "m") {
            server.Speak(std::string(line) + "\r\n", pause);
        }
        pause = milliseconds(1);
    }
}

void TranscriptSocket::SendData(std::string_view bytes) {
    VirtualTcpSocket::SendData(bytes);
    transcript_.push_back({true, std::string(bytes)});
}

std::string TranscriptSocket::GetData(std::size_t maxLength) {
    std::string bytes = VirtualTcpSocket::GetData(maxLength);
    transcript_.push_back({false, bytes});
    return bytes;
}

std::size_t TranscriptSocket::BehindLine(std::string_view line, std::size_t from) const {
    const std::string bytes = std::string(line) + "\r\n";
    for (std::size_t i = from; i < transcript_.size(); ++i) {
        if (transcript_[i].sent && transcript_[i].bytes == bytes) return i + 1;
    }
    return 0;
}

bool TranscriptSocket::TookReply(std::string_view code, std::size_t from) const {
    const std::string behindLineEnd = "\r" + std::string(code);
    return std::any_of(transcript_.begin() + static_cast<std::ptrdiff_t>(from), transcript_.end(), [&](const Entry& entry) {
        return !entry.sent && (entry.bytes.starts_with(code) || entry.bytes.starts_with(behindLineEnd));
    });
}

}  // namespace korvane
