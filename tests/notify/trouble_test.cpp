// The conversations of both mailers with everything that can go wrong at each of their steps: what the client says, what the report
// tells, and how long it takes.
#include <gtest/gtest.h>

#include <algorithm>

#include "fuzz/mail_world.h"

namespace korvane::trouble_test {

using namespace std::chrono_literals;

/// A step: what clsEsmtp and the plain mailer send, what a content server replies, which codes let clsEsmtp go on (the plain mailer
/// wants the first), and what the report of clsEsmtp says when none of them came.
struct Step {
    std::string line, plainLine, reply;
    std::vector<int> goodCodes;
    std::string problem, note = {};
};
const std::string kNotPositive = "SMTP server did not reply positively to client's command\r\n";
const std::string kRefused = "SMTP server refused to accept/relay email message\r\n";
const std::string kNotGreeted = "Connected to mail.example but didn't receive the expected 220 response. Received '<first>'\r\n";
const std::string kUnreachable =
    "Couldn't connect to mail.example. Are you sure this is the correct name for your server?  Try to ping it\r\n";
const std::string kTimedOut = "SMTP service error, timed out while waiting for Email Server Response.";
const std::string kRecipientNote = "TO User: Send RCPT TO:... Expected 250 or 251. Didn't receive it.";
const std::vector<Step> kSteps = {
    {"", "", "220 ready", {220}, kNotGreeted},
    {"EHLO 10.0.0.100", "HELO monitor", "250 hello", {250, 500, 502, 554}, kNotPositive, "Expected 250. Didn't receive it."},
    {"MAIL FROM:<me@example.com>",
     "mail from:<me@example.com>",
     "250 sender",
     {250},
     kNotPositive,
     "Sent MAIL FROM... Expected 250. Didn't receive it."},
    {"RCPT TO:<you@example.com>", "rcpt to:<you@example.com>", "250 rcpt", {250, 251}, kNotPositive, kRecipientNote},
    {"DATA", "data", "354 go on", {354, 250}, kRefused},
    {".", ".", "250 queued", {250}, "EOM: " + kRefused},
    {"QUIT", "quit", "221 bye", {221}, ""},
};

/// The script of a server that is content, but says `reply` at step `odd`.
std::string ScriptWith(std::size_t odd, const std::string& reply, std::string Step::*line) {
    std::string script;
    for (std::size_t at = 0; at < kSteps.size(); ++at) {
        if (at > 0) script += (kSteps[at].*line == "." ? "|<<" : "|<") + kSteps[at].*line;
        script += "|" + (at == odd ? reply : kSteps[at].reply);
    }
    return script;
}

struct Trouble {
    std::string script;          ///< in place of the reply
    bool connected;              ///< still, when clsEsmtp gives up
    std::string first;           ///< what it tells of a greeting
    std::chrono::seconds waits;  ///< clsEsmtp does
    std::string plain;           ///< the error of the plain mailer; empty: it is not asked
    int code = 0;                ///< of an ordinary reply
    std::string taken = {};      ///< what clsEsmtp takes for a reply
};

std::vector<Trouble> Troubles() {
    const std::string kGot = "Expected: <code> Recieved: ", kMany(1'000'000, 'x');
    std::string flood;
    for (int i = 0; i < 31; ++i)
        flood += "_250 " + std::string(30'000, 'x') + "|";
    std::vector<Trouble> troubles = {
        {"", true, "", 30s, kTimedOut},
        {"^", false, "", 30s, kTimedOut},
        {"!", false, "", 0s, kTimedOut},
        {"_250 never ends", true, "250 ", 29s, ""},
        {"_2|@50|_50 ok\r\n", true, "2", 0s, ""},
        {flood, true, "250 ", 0s, ""},
        {"_oh!", true, "oh!", 0s, kGot + "oh!"},
        {"_" + kMany, true, "xxxx", 0s, kGot + kMany.substr(0, 2000)},
        {"550 " + kMany, true, "550 ", 0s, kGot + ("550 " + kMany).substr(0, 2000), 0, ("550 " + kMany).substr(0, 2000)},
        {"535-well\r\n535 no", true, "535-", 0s, kGot + "535-well\r\n535 no\r\n"},
        {"+OK fine", true, "+OK ", 0s, kGot + "+OK fine\r\n"},
    };
    const std::string kUnheardOf = "200 211 299 555 999";
    for (const int code : {200, 211, 220, 221, 235, 250, 251, 299, 334, 354, 421, 432, 450, 451, 452, 454,
                           500, 501, 502, 503, 504, 530, 534, 535, 538, 550, 551, 552, 553, 554, 555, 999}) {
        const std::string number = std::to_string(code), reply = number + " so be it";
        troubles.push_back({reply, true, number + " ", 0s, kGot + reply + "\r\n", code, Holds(kUnheardOf, number) ? "" : reply});
    }
    return troubles;
}

/// The report of clsEsmtp, when `trouble` came at step `at`.
std::string ReportOf(std::size_t at, const Trouble& trouble) {
    std::string report = at == 0 && !trouble.connected ? kUnreachable : ReplaceAll(kSteps[at].problem, "<first>", trouble.first);
    const std::string last = trouble.taken.empty() && at > 0 ? kSteps[at - 1].reply : trouble.taken;
    if (at > 0) report += "\r\nClient sent: " + kSteps[at].line + "\r\n";
    if (!last.empty()) report += "Server replied: " + last;
    return report + " " + kSteps[at].note;
}

TEST(BothMailers, TroubleAtEveryStepEndsInItsReport) {
    for (const Trouble& trouble : Troubles()) {
        for (std::size_t at = 0; at < kSteps.size(); ++at) {
            const Step& step = kSteps[at];
            SCOPED_TRACE(trouble.script.substr(0, 20) + " at " + step.line);
            const auto found = std::find(step.goodCodes.begin(), step.goodCodes.end(), trouble.code);
            const bool quit = step.line == "QUIT", good = quit || found != step.goodCodes.end();
            const bool helo = at == 1 && good && trouble.code != 250;
            MailWorld w;
            Play(w.smtp, ScriptWith(at, trouble.script + (helo ? "|<HELO 10.0.0.100|250 hello" : ""), &Step::line));
            EXPECT_EQ(w.mail.SendMail(), good);
            EXPECT_EQ(w.mail.ErrorLog, good ? "" : ReportOf(at, trouble));
            EXPECT_EQ(w.smtp.Mistake(), "");
            EXPECT_EQ(w.smtp.Lines().size() > 9 && w.smtp.Lines().back() == "QUIT", good);
            EXPECT_EQ(w.states.back(), clsEsmtp::kDisconnecting);
            EXPECT_LT(w.trace.size(), 2300u);  // nobody reads more of a flood
            EXPECT_EQ(w.socket.State(), SocketState::Closed);
            EXPECT_EQ(std::chrono::floor<std::chrono::seconds>(w.world.Ticks()), trouble.waits);

            if (trouble.plain.empty()) continue;
            const bool plainGood = trouble.code == step.goodCodes[0];
            const std::string error = ReplaceAll(trouble.plain, "<code>", std::to_string(step.goodCodes[0]));
            MailWorld plain;
            Play(plain.smtp, ScriptWith(at, trouble.script, &Step::plainLine));
            EXPECT_EQ(plain.SendPlain(), plainGood);
            EXPECT_EQ(plain.strError, plainGood ? "" : error);
            EXPECT_EQ(plain.smtp.Mistake(), "");
            EXPECT_EQ(plain.tidy && plain.person.status.size() == plain.saidBefore + 1, !plainGood);
            EXPECT_EQ(plain.person.Said(ReplaceAll(error, "\r\n", " : ")), !plainGood);
            EXPECT_FALSE(plain.person.waitCursor);
            EXPECT_EQ(plain.plainSocket.State(), SocketState::Closed);
            EXPECT_EQ(plain.world.Ticks() > 20s && plain.world.Ticks() < 22s, trouble.plain == kTimedOut);
        }
    }
}

TEST(SendMail, ALineThatCannotBeSentEndsIt) {
    for (const auto& [state, report] : {std::pair(clsEsmtp::kConnected, "Server replied: 220 ready Couldn't send EHLO "),
                                        {clsEsmtp::kSendingMail, "\r\nClient sent: DATA\r\nServer replied: 354 go on "}}) {
        MailWorld w;
        Play(w.smtp, ScriptWith(99, "", &Step::line));
        w.mail.SetHandlers({.StateChange = [&, at = state](int now) { w.socket.RefuseToSend(now == at ? 1 : 0); }});
        EXPECT_FALSE(w.mail.SendMail());
        EXPECT_EQ(w.mail.ErrorLog, std::string("Error sending data to remote host\r\n") + report);
        EXPECT_FALSE(Holds(w.trace, ">.|"));  // a message with a hole must not count
    }
}

}  // namespace korvane::trouble_test
