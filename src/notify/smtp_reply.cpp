#include "notify/smtp_reply.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace korvane {
namespace {

// The forms at the beginning of a reply. A code is recognised by its three digits alone (its line may end there), followed by a
// space, or preceded by a CR.
constexpr std::array<std::string_view, 27> kSmtpCodes = {"220", "221", "235", "250", "251", "334", "354", "421", "432",
                                                         "450", "451", "452", "454", "500", "501", "502", "503", "504",
                                                         "530", "534", "535", "538", "550", "551", "552", "553", "554"};
constexpr std::array<std::string_view, 5> kPopWords = {"+OK", "+OK ", "+OK\r", "\r+OK", "-ERR"};

constexpr char kLineMark = '\xFF';

template <class Words>
bool IsOneOf(const Words& words, std::string_view text) {
    return std::find(words.begin(), words.end(), text) != words.end();
}

bool IsSmtpWord(std::string_view text) {
    if (text == "220-" || text == "250-") return true;
    if (text.size() == 4 && (text.ends_with(' ') || text.ends_with('\r'))) text.remove_suffix(1);
    if (text.size() == 4 && text.starts_with('\r')) text.remove_prefix(1);
    return IsOneOf(kSmtpCodes, text);
}

}  // namespace

ReplyKind KindOfReply(std::string_view firstFour) {
    if (IsSmtpWord(firstFour)) return ReplyKind::Smtp;
    return IsOneOf(kPopWords, firstFour) ? ReplyKind::Pop : ReplyKind::Unknown;
}

int ReplyCode(std::string_view firstFour) {
    const std::size_t begin = firstFour.find_first_not_of(" \t\r\n");
    int code = 0;
    for (const char digit : firstFour.substr(std::min(begin, firstFour.size()))) {
        if (digit < '0' || digit > '9') break;
        code = code * 10 + (digit - '0');
    }
    return code;
}

void ParseAuthMechanisms(std::string_view text, AuthMechanisms& mechanisms) {
    for (const std::string& line : Split(ReplaceAll(text, "\r\n", std::string(1, kLineMark)), kLineMark)) {
        if (line.size() < 9 || !EqualsNoCase(std::string_view(line).substr(4, 5), "auth ")) continue;
        for (const std::string& word : Split(line.substr(5), ' ')) {
            mechanisms.cramMD5 |= EqualsNoCase(word, "cram-md5");
            mechanisms.login |= EqualsNoCase(word, "login");
            mechanisms.plain |= EqualsNoCase(word, "plain");
        }
    }
}

bool OffersStartTls(std::string_view text) {
    const auto lines = Split(text, '\n');
    return std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.starts_with("250") && line.size() > 4 && EqualsNoCase(TrimAll(line.substr(4)), "starttls");
    });
}

bool IsWholeReply(std::string_view arrived) {
    constexpr std::size_t kCode = 3;
    if (!arrived.ends_with('\n')) return false;
    arrived.remove_suffix(1);
    const std::string_view last = arrived.substr(arrived.rfind('\n') + 1);
    return last.size() <= kCode || last[kCode] != '-';
}

std::size_t ReplyLength(std::string_view arrived) {
    const std::size_t end = arrived.rfind("\r\n");
    return end == std::string_view::npos ? 0 : end + 2;
}

}  // namespace korvane
