#include "notify/mail_errand.h"

#include <charconv>

#include "base/error.h"
#include "base/text.h"
#include "store/safeguards.h"

namespace korvane {
namespace {

constexpr std::string_view kMailKeys[] = {"Server",    "SMTPUser1", "SMTPPass1",    "SMTPPopHost1", "ServerBackup",
                                          "SMTPUser2", "SMTPPass2", "SMTPPopHost2", "Zone"};
constexpr std::string_view kEndMark = "end";

/// The child has no log of its own: the parent writes what the child answers. Nothing can be created there.
constexpr const char* kNoLog = "/dev/null";

/// Texts with their lengths in front, so that any byte may be in them.
class TextWriter {
public:
    void Add(std::string_view text) { all_.append(std::to_string(text.size())).append(":").append(text); }
    std::string Take() { return std::move(all_); }

private:
    std::string all_;
};

class TextReader {
public:
    explicit TextReader(std::string_view all) : rest_(all) {}

    std::string Next() {
        std::size_t size = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), size);
        const auto digits = static_cast<std::size_t>(end - rest_.data());
        if (error != std::errc() || digits >= rest_.size() || *end != ':' || size > rest_.size() - digits - 1)
            throw Error("The mail to be sent is incomplete.");
        std::string text(rest_.substr(digits + 1, size));
        rest_.remove_prefix(digits + 1 + size);
        return text;
    }
    std::size_t NextCount() {
        const std::string text = Next();
        std::size_t count = 0;
        std::from_chars(text.data(), text.data() + text.size(), count);
        return count;
    }

private:
    std::string_view rest_;
};

class NobodyAtTheDesk : public Operator {
public:
    bool WindowVisible() const override { return false; }
    void StatusLine(const std::string&, const std::string&) override {}
    void ShowMessage(const std::string&, const std::string&) override {}
    bool AskYesNo(const std::string&, const std::string&) override { return false; }
};

std::string OneLine(const std::string& text) {
    constexpr std::size_t kMostWords = 2000;
    return Left(Trim(WithoutControls(WithoutLineEnds(text))), kMostWords);
}

}  // namespace

MailErrand MailErrand::With(const SettingsCollection& settings) {
    MailErrand errand;
    const auto add = [&](std::string_view key) {
        if (const std::string* value = settings.Find(key)) errand.settings.emplace(key, *value);
    };
    for (const std::string_view key : kMailKeys)
        add(key);
    for (const Safeguard& safeguard : AllSafeguards())
        if (safeguard.room == "notify" && !safeguard.key.starts_with("ProveMail")) add(safeguard.key);
    return errand;
}

std::string MailErrand::Text() const {
    TextWriter text;
    text.Add(std::to_string(settings.size()));
    for (const auto& [key, value] : settings) {
        text.Add(key);
        text.Add(value);
    }
    text.Add(server == MailServer::Primary ? "1" : "2");
    for (const std::string* part : {&mail.strTo1, &mail.strFrom, &mail.strSubject, &mail.strBody, &messageId})
        text.Add(*part);
    text.Add(std::to_string(recipients.size()));
    for (const std::string& recipient : recipients)
        text.Add(recipient);
    text.Add(kEndMark);
    return text.Take();
}

MailErrand MailErrand::Parse(std::string_view text) {
    TextReader reader(text);
    MailErrand errand;
    for (std::size_t left = reader.NextCount(); left > 0; --left) {
        const std::string key = reader.Next();
        errand.settings[key] = reader.Next();
    }
    errand.server = reader.Next() == "1" ? MailServer::Primary : MailServer::Backup;
    for (std::string* part :
         {&errand.mail.strTo1, &errand.mail.strFrom, &errand.mail.strSubject, &errand.mail.strBody, &errand.messageId})
        *part = reader.Next();
    for (std::size_t left = reader.NextCount(); left > 0; --left)
        errand.recipients.push_back(reader.Next());
    if (reader.Next() != kEndMark) throw Error("The mail to be sent is incomplete.");
    return errand;
}

std::string MailAnswer::Line() const {
    return std::to_string(recipient) + (taken ? " taken " : " refused ") + (greeted ? "1 " : "0 ") + OneLine(words);
}

std::optional<MailAnswer> MailAnswer::Parse(const std::string& line) {
    MailAnswer answer;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), answer.recipient);
    std::string rest(end, line.data() + line.size());
    answer.taken = rest.starts_with(" taken ");
    if (error != std::errc() || (!answer.taken && !rest.starts_with(" refused "))) return std::nullopt;
    rest.erase(0, rest.find(' ', 1) + 1);
    answer.greeted = rest.starts_with("1 ");
    answer.words = rest.substr(std::min<std::size_t>(2, rest.size()));
    return answer;
}

void RunMailErrand(const std::string& text, const ErrandPorts& ports, const std::function<void(const std::string& line)>& print) {
    const MailErrand errand = MailErrand::Parse(text);
    SettingsCollection settings;
    for (const auto& [key, value] : errand.settings)
        settings.setKvSettingsColValue(key, value);
    NobodyAtTheDesk person;
    StatusLog status(person, ports.clock);
    Log log(ports.files, ports.clock, kNoLog, "");
    Safeguards safeguards(settings, ports.clock, log, status);
    Dispatcher mail({ports.sckesmtp,
                     ports.plainSocket,
                     ports.clock,
                     ports.events,
                     person,
                     ports.files,
                     ports.guids,
                     status,
                     log,
                     settings,
                     safeguards,
                     {}},
                    {});
    for (std::size_t i = 0; i < errand.recipients.size(); ++i) {
        const auto began = ports.clock.GetTickCount();
        const SendOutcome outcome = mail.Deliver(errand.server, errand.recipients[i], errand.mail, errand.messageId);
        print(MailAnswer{i, outcome.sent, outcome.greeted, outcome.sent ? outcome.receipt : outcome.strError}.Line());
        if (!outcome.sent && (!outcome.greeted || ports.clock.GetTickCount() - began >= kSilentServer)) return;
    }
}

}  // namespace korvane
