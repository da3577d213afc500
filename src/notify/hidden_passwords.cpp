#include "notify/hidden_passwords.h"

#include <algorithm>

#include "base/text.h"
#include "notify/encodings.h"

namespace korvane {
namespace {

constexpr const char* kPasswordKeys[] = {"SMTPPass1", "SMTPPass2", "ProveMailPass"};
constexpr std::size_t kShortest = 4;

constexpr std::string_view kShownPassword = "Password=";
constexpr std::string_view kCommands[] = {"PASS ", "AUTH PLAIN ", "AUTH LOGIN ", "LOGIN "};
/// An IMAP command comes after its tag.
constexpr std::string_view kTaggedCommand = " LOGIN ";

constexpr auto npos = std::string::npos;

std::size_t LineEnd(const std::string& text, std::size_t from) {
    return std::min(text.find_first_of("\r\n", from), text.size());
}

/// The end of a command in a list between commas, which may stand in quotes: a quote in the password is part of it.
std::size_t CommandEnd(const std::string& text, std::size_t from) {
    const std::size_t line = LineEnd(text, from), comma = text.find(',', from);
    if (comma < line) return comma > from && text[comma - 1] == '\'' ? comma - 1 : comma;
    const std::size_t quote = text.rfind('\'', line);
    return quote != npos && quote >= from ? quote : line;
}

void Replace(std::string& text, std::size_t from, std::size_t to) {
    if (to > from) text.replace(from, to - from, kNotShown);
}

bool BeginsCommand(const std::string& text, std::size_t at) {
    if (std::string_view(text).substr(at).starts_with(kTaggedCommand)) return true;
    return at == 0 || std::string_view("'\",\n>").find(text[at - 1]) != npos;
}

/// Before each answer stands what is waited for.
void HideAnswers(std::string& text, std::size_t command) {
    int answers = AnswersToLogin(std::string_view(text).substr(command, CommandEnd(text, command) - command));
    for (std::size_t comma = text.find(',', command); answers > 0 && comma != npos; --answers) {
        comma = text.find(',', comma + 1);
        if (comma >= LineEnd(text, command)) return;
        Replace(text, comma + 1, CommandEnd(text, comma + 1));
        comma = text.find(',', comma + 1);
    }
}

void HideAfterCommands(std::string& text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!BeginsCommand(text, at)) continue;
        HideAnswers(text, at);
        const std::size_t blank = text[at] == ' ' ? 1 : 0;
        for (const std::string_view command : kCommands) {
            const std::size_t from = at + blank + command.size();
            if (!EqualsNoCase(std::string_view(text).substr(at + blank, command.size()), command)) continue;
            Replace(text, from, CommandEnd(text, from));
            break;
        }
    }
}

/// Also in the address of an entry, which has no scheme in front.
void HideInUrls(std::string& text) {
    constexpr const char* kEnds = "/ \t\r\n'\"<>?#";
    if (text.find('@') == npos) return;  // as in most texts
    for (std::size_t at = text.find_first_not_of(kEnds); at != npos; at = text.find_first_not_of(kEnds, at)) {
        const std::size_t end = std::min(text.find_first_of(kEnds, at), text.size());
        const std::string_view word = std::string_view(text).substr(at, end - at);
        const std::size_t sign = word.rfind('@'), colon = word.find(':');
        const std::size_t length = text.size();
        const bool isCommand = EqualsNoCase(word.substr(0, colon), "from") || EqualsNoCase(word.substr(0, colon), "to");
        if (sign != npos && colon < sign && !isCommand) Replace(text, at + colon + 1, at + sign);
        at = end + text.size() - length;
    }
}

}  // namespace

std::string HiddenPasswords::In(std::string_view text) const {
    std::string hidden(text);
    if (!safeguards_.IsOn(kHidesPasswords)) return hidden;
    for (const char* key : kPasswordKeys) {
        const std::string* password = settings_.Find(key);
        if (password == nullptr || password->size() < kShortest) continue;
        for (const std::string& form : {*password, Trim(*password), Base64Encode(*password)})
            hidden = ReplaceAll(hidden, form, kNotShown);
    }
    for (std::size_t at = hidden.find(kShownPassword); at != npos; at = hidden.find(kShownPassword, at + 1))
        Replace(hidden, at + kShownPassword.size(), LineEnd(hidden, at));
    HideAfterCommands(hidden);
    HideInUrls(hidden);
    if (hidden != text) Count();
    return hidden;
}

std::string HiddenPasswords::Secret(const std::string& answer) const {
    if (!safeguards_.IsOn(kHidesPasswords)) return answer;
    Count();
    return std::string(kNotShown);
}

int AnswersToLogin(std::string_view command) {
    constexpr std::string_view kLogin = "AUTH LOGIN", kPlain = "AUTH PLAIN";
    const bool login = EqualsNoCase(command.substr(0, kLogin.size()), kLogin);
    const bool alone = command.size() == kLogin.size();
    if (alone) return login ? 2 : EqualsNoCase(command, kPlain) ? 1 : 0;
    return login && command[kLogin.size()] == ' ' ? 1 : 0;
}

}  // namespace korvane
