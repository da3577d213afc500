// A server that plays what a fuzzer thinks of, and the socket that talks to it in the virtual world. A script has one step a
// line:
//
//     > 250-mail.test      say the line, with its CR LF
//     - 250-SI             say this, without a line end: the next step goes on with the line
//     ~ 220 hello          say the line with a line feed alone
//     <                    wait for a line of the client
//     <.                   wait for a "." that stands alone
//     . 1500               stand still for so many milliseconds
//     s 200 64             from the beginning, take only 64 bytes each 200 ms
//     n                    from the beginning, take nothing
//     m                    all this begins just before midnight
//     x                    close the connection
//     !                    break it
//
// Any other line is said as it is. So is each in 1 ms unless a "." says otherwise.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/datetime.h"
#include "support/virtual_server.h"
#include "support/virtual_tcp_socket.h"

namespace korvane {

/// When the script begins by the wall clock.
DateTime BeginningOf(std::string_view script);

/// Lays the steps down for the next connection.
void Prepare(VirtualServer& server, std::string_view script);

/// Notes what was sent and taken, in order.
class TranscriptSocket : public VirtualTcpSocket {
public:
    using VirtualTcpSocket::VirtualTcpSocket;

    struct Entry {
        bool sent = false;  ///< else taken
        std::string bytes;
    };
    const std::vector<Entry>& Transcript() const { return transcript_; }

    void SendData(std::string_view bytes) override;
    std::string GetData(std::size_t maxLength = kAll) override;

    /// The place behind the first entry from `from` on that was sent and is `line` with its CR LF; 0 when there is none.
    std::size_t BehindLine(std::string_view line, std::size_t from = 0) const;
    /// Whether something that was taken from the place `from` on begins with `code`, or with the CR of a line before and `code`.
    bool TookReply(std::string_view code, std::size_t from) const;

private:
    std::vector<Entry> transcript_;
};

}  // namespace korvane
