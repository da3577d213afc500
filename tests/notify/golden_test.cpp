// The tables of golden.txt: for each kind of row what the program makes of its input, written as the row has its output.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "fuzz/fuzz.h"
#include "fuzz/mail_world.h"
#include "notify/encodings.h"
#include "notify/global_email.h"
#include "support/temporary_folder.h"
#include "support/world.h"

namespace korvane::golden_test {

using Texts = std::vector<std::string>;

std::string Joined(const Texts& texts, const std::string& separator = "|") {
    std::string joined;
    for (std::size_t i = 0; i < texts.size(); ++i)
        joined += (i == 0 ? "" : separator) + texts[i];
    return joined;
}

Texts Fields(const std::string& input) {
    return Split(ReplaceAll(input, " / ", "\x1e"), '\x1e');
}

template <class OfOne>
std::string Each(const std::string& input, OfOne ofOne) {
    Texts texts = Split(input, '|');
    for (std::string& text : texts)
        text = ofOne(text);
    return Joined(texts);
}

std::string OfEveryLength(const std::string& kind) {
    std::string all;
    for (std::size_t size = 0; size <= 200; ++size)
        all += kind == "md5" ? HexOf(Md5(std::string(size, 'x'))) : HmacMd5Hex(std::string(size, 'k'), "text");
    return HexOf(Md5(all));
}

std::string KindAndCode(const std::string& word) {
    constexpr const char* kKinds[] = {"SMTP ", "POP ", "? "};
    return kKinds[static_cast<int>(KindOfReply(word))] + std::to_string(ReplyCode(word));
}

std::string RecipientsIn(const std::string& input) {
    Texts recipients = {"untouched"};
    const std::string list = ParseRecipients(input, recipients);
    return NormaliseRecipients(input) + " / " + list + " / " + Joined(recipients, " ");
}

/// The four texts that are read from a file, and the file that they are written to.
std::string GlobalEmail(const std::string& input) {
    const TemporaryFolder folder;
    LinuxFiles disk;
    FaultyFiles files(disk);
    disk.Replace(folder.Path() + "/GlobalEmail.dat", input);
    clsGlobalEmail email(files, folder.Path());
    email.OpenFile();
    const Texts read = {email.getToList1(), email.getToList2(), email.getFrom(), email.getSubject()};
    email.UpdateData();
    files.faults.Add({.forever = true});
    email.setFrom("cannot be written");
    email.UpdateData();
    email.OpenFile();
    return Joined(read) + " / " + ReadAll(folder.Path() + "/GlobalEmail.dat");
}

/// The message that the words of the input describe, with the boundaries of the first two GUIDs as [1] and [2].
std::string Message(const std::string& input) {
    const TemporaryFolder folder;
    MailWorld w;
    w.files.Replace(folder.Path() + "/note.txt", "Hi!");
    w.mail.emailFromName = "Me";
    w.mail.plainMessage = Holds(input, "clash") ? "----=_000000020a0b0c0d0102030405060708_2" : "x";
    if (Holds(input, "html")) w.mail.htmlMessage = "<b>";
    if (Holds(input, "file")) w.mail.AttachFiles = {folder.Path() + "/note.txt"};
    if (Holds(input, "lost")) w.mail.AttachFiles = {"  ", " /tmp.d/x"};
    if (Holds(input, "constant")) w.guids.failures = 2;
    for (auto text : {&MailProperties::emailReplyTo, &MailProperties::emailCC, &MailProperties::emailXPriority,
                      &MailProperties::emailXSender, &MailProperties::emailXMailer, &MailProperties::emailTimeZoneAdjust})
        w.mail.*text = Holds(input, "full") ? "E a@b" : "";
    MailMessage message({w.files, w.world.clock, w.world.events, w.guids}, w.mail);
    std::string sent;
    message.Prepare([&](int number, const std::string& description, const std::string& name) {
        sent += std::to_string(number) + " " + description + " " + name + ";";
    });
    message.Send("monitor", [&](const std::string& piece) { return !(sent += piece).empty(); });
    sent = ReplaceAll(sent, "----=_000000010A0B0C0D0102030405060708", "[1]");
    return ReplaceAll(sent, "----=_000000020A0B0C0D0102030405060708_2", "[2]");
}

/// What became of a mail and after how many seconds, with the numbers of states and of socket errors, and the report. The last field
/// is the script of the server, those before it say what is not as usual.
std::string Conversation(bool plain, const std::string& input) {
    const Texts fields = Fields(input);
    std::map<std::string, std::string> options;
    for (const std::string& field : fields)
        options[field.substr(0, field.find(':'))] = field.substr(field.find(':') + 1);
    MailWorld w(BeginningOf(fields.back()));
    Play(w.smtp, fields.back());
    Play(w.pop, options["pop"]);
    w.mail.POPhost = options["pop"].empty() ? "" : "mail.example";
    w.net.SetNetworkThere(!options.contains("offline"));
    w.mail.SmtpHost = Or(options["host"], w.mail.SmtpHost);
    w.mail.emailTo = Or(options["to"], w.mail.emailTo);
    w.mail.emailFromAddress = Or(options["from"], w.mail.emailFromAddress);
    w.mail.plainMessage = Or(options["body"], std::string(std::stoul("0" + options["bytes"]), 'x'));
    const auto better = [&](std::string&, std::string& password, bool& cancel) {
        cancel = options["better"].empty() || password == options["better"];
        if (!cancel) password = options["better"];
    };
    std::string events = "s";
    w.Listen({.RequestPOPLogin = better, .RequestESMTPLogin = better, .WinsockError = [&](int number, const std::string&) {
                  events += " " + std::to_string(number);
              }});
    const bool sent = plain ? w.SendPlain(w.mail.plainMessage, options["subject"]) : w.mail.SendMail();
    for (const int state : w.states)
        events += " " + std::to_string(state);
    for (const char* secret : {"tanstaaf", "dGFuc3RhYWY", "AHRpbQ", "dGltI", "cmlnaHQ", "right"})
        EXPECT_FALSE(Holds(w.trace + w.mail.ErrorLog, secret)) << w.trace;
    if (options["show"] == "trace") return w.trace;
    if (options["show"] == "lines") return Joined(w.smtp.Lines()) + " / " + Joined(w.person.StatusTexts()) + ".";
    const auto seconds = std::chrono::floor<std::chrono::seconds>(w.world.Ticks()).count();
    const std::string report = "|" + (plain ? w.strError : w.mail.ErrorLog) + "|";
    return (sent ? "sent " : "failed ") + std::to_string(seconds) + events + report + w.smtp.Mistake() + w.pop.Mistake();
}

/// The running program, which has monitored for some seconds.
struct NotifyWorld : World {
    explicit NotifyWorld(const std::string& settings)
        : World({.start = DateTime::Of(2026, 11, 21, 15, 4, 0),
                 .settings = "Zone=EST\nSMTPPass1=secret\nSMTPPass2=other\n" + settings}) {
        Play(net.Host("noisy.example").Port(25), "554 go\x1b[2Jaway");
        Start();
        RunFor(std::chrono::seconds(5));
        person.Forget();
    }
    Dispatcher& dispatcher = run.TheDesk().mail;
    VirtualMailServer backup{net.Host("backup.example").Port(25)};
    VirtualMailServer fiveCharacters{net.Host("mail1").Port(25)};
};

std::string MailsOf(const VirtualMailServer& server, bool whole) {
    std::string all = Joined(server.logins) + (server.logins.empty() ? "" : ": ");
    for (VirtualMailServer::Mail mail : server.mails) {
        if (Holds(mail.text, "Message-ID: <")) mail.text.replace(mail.text.find("Message-ID: <") + 13, 32, "guid");
        all += mail.from + Joined(mail.recipients) + " " + mail.text.substr(0, mail.text.find(whole ? "\x1e" : "\r\n")) + " ";
    }
    return all;
}

/// A notification: its five fields, settings, and the line that the primary server refuses. What becomes of it, what the caller hears of
/// the primary server, the mails at that server and at the backup, and the status lines, where "show" stands with all of their text.
std::string Notify(const std::string& input) {
    const Texts fields = Fields(input);
    const bool show = Holds(input, "show");
    NotifyWorld w(ReplaceAll(fields[5], ",", "\n"));
    SendOutcome second;
    w.mail.refuse = [&](const std::string& line) {
        EXPECT_TRUE(!line.starts_with("rcpt to:<third") || w.person.progressValue == 67);
        if (line == "data") second = w.dispatcher.SendThrough(MailServer::Backup, {"late@x", "", "", "", ""});
        return line == fields[6];
    };
    std::string heard;
    const SendOutcome outcome = w.dispatcher.SendWithBackup({fields[0], fields[1], fields[2], fields[3], fields[4]},
                                                            [&](const std::string& error) { heard += error; });
    const bool triedTwice = !w.mail.mails.empty() && w.mail.logins.empty();
    EXPECT_EQ(second.strError, triedTwice ? "Another message is still being sent." : "");
    EXPECT_EQ(w.Logged("SendPlainMail: Expected: 2"), heard.starts_with("Expected"));
    EXPECT_TRUE(w.person.progressValue == 0 && !w.person.waitCursor && !second.sent);
    Texts said = w.person.StatusTexts();
    std::erase_if(said, [&](auto& text) { return !show && !Holds(text, " sent successfully") && !Holds(text, "because"); });
    return (outcome.sent ? "sent " : "failed ") + outcome.strError + " / " + heard + " / " + MailsOf(w.mail, show) + " / " +
           MailsOf(w.backup, false) + MailsOf(w.fiveCharacters, false) + " / " + Joined(said) + ".";
}

/// The operator's answer, settings, the line that the primary server refuses, and the recipient in place of the usual two.
std::string TestMail(const std::string& input) {
    const Texts fields = Fields(input);
    NotifyWorld w(fields[1]);
    w.person.answers = {fields[0] == "yes"};
    w.mail.refuse = [&](const std::string& line) { return line == fields[2]; };
    std::string outcome;
    w.dispatcher.TestEmail("a@x", "b@y", !fields[3].empty(), "One", "FAILED", "web", "me@x", fields[3],
                           fields[3].empty() ? "" : "own@x", [&](bool sent) { outcome += sent ? "good" : "bad"; });
    outcome += w.run.State().bMonitoring ? " monitoring" : " stopped";
    outcome += w.Logged("TestEmail: Email Test Failed to a@x, b@y using ") ? " logged" : "";
    const bool show = fields[2] == "show";
    if (show) outcome += " / " + w.person.questions.at(0).text;
    for (const auto& box : w.person.messages)
        outcome += " / " + box.text;
    return outcome + " / " + MailsOf(w.mail, show) + ".";
}

std::string OutcomeOf(const std::string& kind, const std::string& input) {
    if (kind == "md5") return Each(input, [](const std::string& text) { return HexOf(Md5(text)); });
    if (kind == "lengths") return Each(input, OfEveryLength);
    if (kind == "base64") return Each(input, Base64Encode);
    if (kind == "decode") return Each(input, Base64Decode);
    if (kind == "dots") return Each(input, StuffDots);
    if (kind == "reply") return Each(input, KindAndCode);
    if (kind == "recipients") return Each(input, RecipientsIn);
    if (kind == "sysinfo") return GetSysInfoString(ScriptedSystemInfo(), input);
    if (kind == "global") return GlobalEmail(input);
    if (kind == "message") return Message(input);
    if (kind == "notify") return Notify(input);
    if (kind == "testmail") return TestMail(input);
    return Conversation(kind == "plain", input);
}

TEST(Golden, EachRowComesOutAsItStands) {
    std::map<std::string, std::string> names = {
        {"\\r", "\r"}, {"\\n", "\n"}, {"\\t", "\t"}, {"\\e", "\x1b"}, {"{long}", std::string(2100, 'x')}};
    int number = 0;
    for (std::string line : Split(ReadAll(KORVANE_SOURCE_DIR "/tests/notify/golden.txt"), '\n')) {
        SCOPED_TRACE("golden.txt:" + std::to_string(++number));
        if (line.empty() || line.starts_with('#')) continue;
        for (const auto& [name, text] : names)
            line = ReplaceAll(line, name, text);
        const std::size_t blank = line.find(' '), arrow = line.find(" => ");
        if (line.starts_with('$')) {
            names["{" + line.substr(1, blank - 1) + "}"] = line.substr(blank + 1);
        } else {
            EXPECT_EQ(OutcomeOf(line.substr(0, blank), line.substr(blank + 1, arrow - blank - 1)), line.substr(arrow + 4));
        }
    }
    EXPECT_GT(number, 100);
}

TEST(Fuzz, EverySeedHoldsWhatItsTargetRequires) {
    for (const auto& [name, fuzz] :
         {std::make_pair("ini", FuzzIni), {"texts", FuzzTexts}, {"smtp", FuzzSmtp}, {"tcp", FuzzTcp}}) {
        for (const auto& seed : std::filesystem::directory_iterator(KORVANE_SOURCE_DIR "/tests/fuzz/corpus/" + std::string(name)))
            EXPECT_NO_THROW(fuzz(ReadAll(seed.path()))) << seed.path();
    }
    for (std::size_t size = 0; size <= 120; ++size)
        EXPECT_NO_THROW(FuzzTexts(std::string(size, 'x'))) << size;
    EXPECT_NO_THROW(FuzzTexts(ReplaceAll(std::string(10'000, 'x'), "x", "a@x, ")));  // nor are many recipients a burden
}

}  // namespace korvane::golden_test
