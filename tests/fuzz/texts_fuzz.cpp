// What is read in one piece: dates and numbers of files and databases, Base64, recipients as people type them, replies of mail servers.
#include <cmath>
#include <optional>

#include "base/datetime.h"
#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/value.h"
#include "fuzz/fuzz.h"
#include "notify/encodings.h"
#include "notify/mail_message.h"
#include "notify/smtp_reply.h"

namespace korvane {
namespace {

/// Nothing where the program says that it is none.
template <class Read>
auto Tried(Read read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const Error&) {
        return std::nullopt;
    }
}

void AsValue(std::string_view text) {
    for (const auto when : {Tried([&] { return ParseDateTime(text); }), DateTime::FromStored(text)}) {
        if (!when) continue;
        Require(when->Year() >= 100 && when->Year() <= 9999, "a moment has a year");
        Require(ParseDateTime(when->Text()) == *when, "a date is read as it is written");
        Require(DateTime::FromStored(when->Stored()) == *when, "a date is stored as it is");
    }
    if (const auto number = Tried([&] { return ParseNumber(text); })) {
        Require(ParseNumber(FormatGeneral(*number)) == *number, "a number is read as it is written");
        const auto rounded = Tried([&] { return ParseNumber(FormatFixed(*number, 2)); });
        Require(!rounded || std::abs(*rounded - *number) <= 0.006 + std::abs(*number) * 1e-13, "two decimals keep the number");
    }
    const Value value(text);
    Tried([&] { return value.Int16(); });
    Tried([&] { return value.Bool(); });
    Tried([&] { return value.When(); });
}

void AsText(std::string_view bytes) {
    const std::string text = ToUtf8(std::string(bytes));
    const std::string left = Left(text, bytes.size() / 2);
    Require(ToUtf8(text) == text && text.starts_with(left) && ToUtf8(left) == left, "no character is cut in two");
    Require(Trim(Trim(text)) == Trim(text) && EqualsNoCase(ToLower(text), text), "trimming and case");
}

void AsBase64(std::string_view input) {
    const std::string encoded = Base64Encode(input);
    Require(Base64Decode(encoded) == input && encoded.size() == (input.size() + 2) / 3 * 4, "what was encoded is decoded");
    std::size_t lines = 0;
    const std::string inLines = Base64EncodeLines(input, [&lines] { ++lines; });
    Require(lines == (input.size() + 53) / 54 && (lines < 2 || inLines.find("\r\n") == 72),
            "54 bytes are a line of 72 characters");
    Require(inLines.ends_with("\r\n") == (!input.empty() && input.size() % 54 % 3 != 1), "one case loses its line end");
    Require(ReplaceAll(inLines, "\r\n", "") == encoded, "lines are the text cut into pieces");
    const std::string decoded = Base64Decode(input);
    Require(decoded.size() <= input.size() / 4 * 3, "three bytes at most for four characters");
    if (!decoded.empty() && !Holds(input, "=")) Require(Base64Encode(decoded) == input, "whole groups are encoded as they were");
}

/// The number of words that hold an @.
std::size_t Addresses(std::string_view list) {
    std::size_t count = 0;
    for (const std::string& word : Split(ReplaceAll(ReplaceAll(list, ",", " "), ";", " "), ' '))
        count += Holds(word, "@") ? 1 : 0;
    return count;
}

void AsRecipients(std::string_view input) {
    const std::string list = NormaliseRecipients(input);
    Require(list.find_first_of(" ,") == std::string::npos, "only semicolons stand between two recipients");
    Require(Addresses(list) == Addresses(input), "no recipient is lost or doubled");
    std::vector<std::string> recipients{"<of-an-earlier@list>"}, again;
    const std::string header = ParseRecipients(input, recipients);
    if (header.empty()) return Require(recipients.size() == 1, "an empty list changes nothing");
    Require(recipients.size() == Addresses(input), "each word with an @ is a recipient");
    for (const std::string& word : recipients)
        Require(word.starts_with('<') && word.ends_with('>') && word.find_first_of(" ,;") == std::string::npos,
                "a word in brackets");
    Require(ParseRecipients(header, again) == header && again == recipients, "a list in its normal form stays as it is");
}

void AsReply(std::string_view input) {
    const ReplyKind kind = KindOfReply(input.substr(0, 4));
    const int code = ReplyCode(input.substr(0, 4));
    Require(code >= 0 && code <= 9999, "a code has four digits at most");
    if (kind == ReplyKind::Smtp) Require(code >= 220 && code <= 554, "a known reply has a code that SMTP knows");
    if (kind == ReplyKind::Pop) Require(code == 0, "a POP reply has no number");
    // A reply may come in two pieces, each of whole lines.
    const std::string first(input.substr(0, input.size() / 2)), second(input.substr(input.size() / 2));
    AuthMechanisms whole, pieces;
    ParseAuthMechanisms(first + "\r\n" + second, whole);
    ParseAuthMechanisms(ToLower(first), pieces);
    ParseAuthMechanisms(second, pieces);
    Require(whole == pieces, "lines count one by one, in any case");
    const std::string lower = ToLower(input);
    Require(pieces == AuthMechanisms{} || Holds(lower, "auth "), "without AUTH nothing is offered");
    Require(!pieces.plain || Holds(lower, "plain"), "a mechanism is not made up");
}

}  // namespace

void FuzzTexts(std::string_view input) {
    AsValue(input);
    AsText(input);
    AsBase64(input);
    AsRecipients(input);
    AsReply(input);
}

}  // namespace korvane
