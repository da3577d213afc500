// The bytes of a message, for each of its layouts.
#include "notify/mail_message.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "notify/mail_world.h"

namespace korvane {
namespace {

std::string Composed(MailWorld& w, MailProperties& mail, const MailMessage::ReadFileError& failed = {}) {
    MailMessage message({w.files, w.world.clock, w.world.events, w.guids}, mail);
    message.Prepare(failed);
    std::string sent;
    EXPECT_TRUE(message.Send("monitor", [&](const std::string& piece) {
        sent += piece;
        return true;
    }));
    return sent;
}

MailProperties Simple() {
    MailProperties mail;
    mail.emailFromAddress = "me@example.com";
    mail.emailFromName = "Me";
    mail.emailTo = "<you@example.com>";
    mail.subject = "Hello";
    mail.plainMessage = "text";
    return mail;
}

const char* const kOne = "----=_000000010A0B0C0D0102030405060708";
const char* const kTwo = "----=_000000020A0B0C0D0102030405060708_2";

std::string HeadersWithout(const std::string& optional) {
    return "From: \"Me\" <me@example.com>\r\nTo:<you@example.com>\r\n" + optional +
           "Subject: Hello\r\nDate: Sat, 21 Nov 2026 20:04:05 -0000\r\nMessage-ID: "
           "<000000030A0B0C0D0102030405060708@monitor>\r\n";
}

std::string Filled(std::string text) {
    return ReplaceAll(ReplaceAll(text, "[1]", kOne), "[2]", kTwo);
}

TEST(MailMessage, LayoutsByteForByte) {
    struct Case {
        const char* name;
        const char* html;
        std::vector<std::string> files;
        const char* body;
    };
    const char* const kText =
        "Content-Type: text/plain;\r\n\tcharset=\"us-ascii\"\r\nContent-Transfer-Encoding: 7bit\r\n\r\ntext\r\n\r\n";
    const char* const kHtml =
        "--[2]\r\nContent-Type: text/html;\r\n\tcharset=\"us-ascii\"\r\nContent-Transfer-Encoding: "
        "7bit\r\n\r\n<b>\r\n\r\n--[2]\r\n\r\n";
    const char* const kFile =
        "--[1]\r\nContent-Type: application/octet-stream;\r\n\tname=\"note.txt\"\r\nContent-Transfer-Encoding: base64\r\n"
        "Content-Disposition: attachment;\r\n\tfilename=\"note.txt\"\r\n\r\nSGkh\r\n\r\n\r\n";
    const std::string mixed = std::string("MIME-Version: 1.0\r\nContent-Type: multipart/mixed;\r\n\tboundary=\"[1]\"\r\n") +
                              "This is a multi-part Message in MIME format.\r\n\r\n--[1]\r\n";
    const std::string alternative = "Content-Type: multipart/alternative;\r\n\tboundary=\"[2]\"\r\n";
    const std::pair<Case, std::string> kCases[] = {
        {{"text", "", {}, ""}, "\r\ntext\r\n"},
        {{"HTML", "<b>", {}, ""},
         "MIME-Version: 1.0\r\n" + alternative + "This is a multi-part Message in MIME format.\r\n\r\n--[2]\r\n" + kText + kHtml},
        {{"attachment", "", {"/docs/note.txt"}, ""}, mixed + kText + kFile},
        {{"both", "<b>", {"/docs/note.txt"}, ""}, mixed + alternative + "\r\n--[2]\r\n" + kText + kHtml + kFile},
    };
    for (const auto& [c, body] : kCases) {
        SCOPED_TRACE(c.name);
        MailWorld w;
        w.files.CreateFolder("/docs");
        w.files.Replace("/docs/note.txt", "Hi!");
        MailProperties mail = Simple();
        mail.htmlMessage = c.html;
        mail.AttachFiles = c.files;
        EXPECT_EQ(Composed(w, mail), Filled(HeadersWithout("") + body));
    }
}

TEST(MailMessage, OptionalHeadersStandInTheirPlaces) {
    MailWorld w;
    MailProperties mail = Simple();
    mail.emailReplyTo = "Ann a@b";
    mail.emailCC = "c@d";
    mail.emailXPriority = "1";
    mail.emailXSender = "s@x";
    mail.emailXMailer = "Mailer";
    mail.emailTimeZoneAdjust = "EST";
    EXPECT_EQ(Composed(w, mail),
              ReplaceAll(HeadersWithout("Reply-To: Ann <a@b>\r\nCc: c@d\r\n"), "20:04:05 -0000", "15:04:05 EST") +
                  "X-Priority: 1\r\nX-Sender: s@x\r\nX-Mailer: Mailer\r\n\r\ntext\r\n");
}

TEST(MailMessage, DotsAreStuffedAtTheBeginningOfLines) {
    const std::pair<const char*, const char*> kTexts[] = {{".\r\n", "..\r\n"},
                                                          {"a\r\n.b\r\n..", "a\r\n..b\r\n..."},
                                                          {"a\n.b", "a\n.b"},
                                                          {"", ""},
                                                          {"\r\n.\r\n.\r\n", "\r\n..\r\n..\r\n"}};
    for (const auto& [text, stuffed] : kTexts)
        EXPECT_EQ(StuffDots(text), stuffed);
}

TEST(MailMessage, AttachmentsThatCannotBeRead) {
    MailWorld w;
    MailProperties mail = Simple();
    mail.AttachFiles = {"  ", " /no/such.file", "/tmp.d/file"};
    std::vector<std::string> failures;
    const std::string sent = Composed(w, mail, [&](int number, const std::string& description, const std::string& name) {
        failures.push_back(std::to_string(number) + " " + description + " " + name);
    });
    EXPECT_EQ(failures, (std::vector<std::string>{"53 File not found /no/such.file", "53 File not found /tmp.d/file"}));
    EXPECT_TRUE(Holds(sent, "filename=\"such.file\"\r\n\r\n\r\n\r\n"));
    EXPECT_TRUE(Holds(sent, "filename=\"file.d/file\"\r\n"));
    EXPECT_EQ(mail.AttachFiles.size(), 2u);
}

TEST(MailMessage, BoundariesAreNotInTheTextAndNeverTheSame) {
    MailWorld w;
    MailProperties mail = Simple();
    mail.plainMessage = ToLower(std::string("x ") + kOne);
    mail.htmlMessage = "<b>";
    EXPECT_TRUE(Holds(Composed(w, mail), "boundary=\"----=_000000040A0B0C0D0102030405060708_2\""));

    MailWorld without;
    without.guids.failures = 99;
    MailProperties both = Simple();
    both.AttachFiles = {"/x"};
    both.htmlMessage = "<b>";
    const std::string sent = Composed(without, both);
    EXPECT_TRUE(Holds(sent, "boundary=\"----=_00000000\""));
    EXPECT_TRUE(Holds(sent, "boundary=\"----=_00000000_2\""));
}

TEST(MailMessage, ARefusedPieceIsTheLast) {
    MailWorld w;
    MailProperties mail = Simple();
    MailMessage message({w.files, w.world.clock, w.world.events, w.guids}, mail);
    message.Prepare({});
    int pieces = 0;
    EXPECT_FALSE(message.Send("monitor", [&](const std::string&) { return ++pieces < 3; }));
    EXPECT_EQ(pieces, 3);
}

}  // namespace
}  // namespace korvane
