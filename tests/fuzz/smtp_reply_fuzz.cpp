// Replies of mail servers as they are cut out of what has arrived.
#include <string>

#include "fuzz/fuzz.h"
#include "notify/smtp_reply.h"

namespace korvane {
namespace {

void CutOut(std::string_view arrived) {
    const WholeReply reply = FindReply(arrived);
    Require(reply.length <= arrived.size(), "a reply is no longer than what arrived");
    Require(arrived.find("\r\n", reply.length) == std::string_view::npos, "a reply takes all whole lines");
    if (reply.length == 0) {
        Require(arrived.find("\r\n") == std::string_view::npos && reply.text.empty(), "without a line end there is no reply");
        return;
    }
    Require(arrived.substr(0, reply.length) == reply.text + "\r\n", "a reply is its text and a line end");
}

void TellKind(std::string_view firstFour) {
    const ReplyKind kind = KindOfReply(firstFour);
    const int code = ReplyCode(firstFour);
    Require(code >= 0 && code <= 9999, "a code has four digits at most");
    if (kind == ReplyKind::Smtp) Require(code >= 220 && code <= 554, "a known reply has a code that SMTP knows");
    if (kind == ReplyKind::Pop) Require(code == 0, "a POP reply has no number");
    if (firstFour.size() < 3) Require(kind == ReplyKind::Unknown, "half a code is no reply");
}

}  // namespace

void Fuzz(std::string_view input) {
    const std::string_view firstFour = input.substr(0, 4);
    TellKind(firstFour);
    for (std::size_t arrived = 0; arrived <= input.size() && arrived < 80; ++arrived)
        CutOut(input.substr(0, arrived));
    CutOut(input);
    const bool lastLine = input.find("\r\n250 ") != std::string_view::npos;
    Require(HoldsLastLine(input, "250") == lastLine, "the last line has a blank behind its code");
}

}  // namespace korvane
