// What a server offers to log in with, from the lines of its answer to EHLO.
#include <string>

#include "base/text.h"
#include "fuzz/fuzz.h"
#include "notify/smtp_reply.h"

namespace korvane {
namespace {

AuthMechanisms Offered(std::string_view text) {
    AuthMechanisms mechanisms;
    ParseAuthMechanisms(text, mechanisms);
    return mechanisms;
}

}  // namespace

void Fuzz(std::string_view input) {
    const AuthMechanisms offered = Offered(input);
    const std::string lower = ToLower(input);
    Require(Offered(lower) == offered, "upper and lower case are one");
    if (!Holds(lower, "auth ")) Require(offered == AuthMechanisms{}, "without AUTH nothing is offered");
    Require(!offered.cramMD5 || Holds(lower, "cram-md5"), "CRAM-MD5 is not made up");
    Require(!offered.login || Holds(lower, "login"), "LOGIN is not made up");
    Require(!offered.plain || Holds(lower, "plain"), "PLAIN is not made up");

    AuthMechanisms all{true, true, true};
    ParseAuthMechanisms(input, all);
    Require(all == AuthMechanisms{true, true, true}, "nothing is taken back");

    // A reply may come in two pieces, each of whole lines.
    const std::string_view first = input.substr(0, input.size() / 2), second = input.substr(input.size() / 2);
    AuthMechanisms pieces = Offered(first);
    ParseAuthMechanisms(second, pieces);
    const std::string joined = std::string(first) + "\r\n" + std::string(second);
    Require(Offered(joined) == pieces, "lines count one by one");
}

}  // namespace korvane
