#include "notify/mail_message.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "notify/encodings.h"
#include "notify/mime_text.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kGuidFailed = "00000000";
/// Without random bytes all boundaries are the same, and a boundary that occurs in the text would be found there each time.
constexpr int kBoundaryTries = 100;
constexpr std::string_view kBoundaryMark = "----=_";
constexpr std::string_view kMixed = "mixed";
constexpr std::string_view kAlternative = "alternative";

constexpr const char* kDayNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char* kMonthNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

constexpr int kFileNotFound = 53;
constexpr int kFileAccessError = 75;

/// An attachment is encoded in lines of a few bytes each. Delivering events after every line would cost far more than the
/// encoding.
constexpr auto kPumpPeriod = 5ms;

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string LeftTrimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string_view::npos ? "" : std::string(text.substr(begin));
}

/// Returns the text from the last dot on, with the dot; without a dot the whole path.
std::string ExtensionOf(const std::string& path) {
    const std::string extension = LeftTrimmed(path.substr(path.rfind('.') + 1));
    return extension.empty() ? "" : "." + extension;
}

std::string BaseNameOf(const std::string& path) {
    const std::string name = path.substr(path.find_last_of("\\/:") + 1);
    return name.substr(0, name.rfind('.'));
}

std::string PartHead(std::string_view type) {
    return "Content-Type: " + std::string(type) +
           ";\r\n"
           "\tcharset=\"us-ascii\"\r\n"
           "Content-Transfer-Encoding: 7bit\r\n\r\n";
}

std::string Delimiter(const std::string& boundary) {
    return "--" + boundary + "\r\n";
}

std::string MultipartType(std::string_view kind, const std::string& boundary) {
    return "Content-Type: multipart/" + std::string(kind) + ";\r\n\tboundary=" + Quoted(boundary) + "\r\n";
}

std::string AttachmentPiece(const std::string& path, const std::string& base64, const std::string& boundary) {
    const std::string name = Quoted(BaseNameOf(path) + ExtensionOf(path));
    return Delimiter(boundary) +
           "Content-Type: application/octet-stream;\r\n"
           "\tname=" +
           name +
           "\r\n"
           "Content-Transfer-Encoding: base64\r\n"
           "Content-Disposition: attachment;\r\n"
           "\tfilename=" +
           name + "\r\n\r\n" + base64 + "\r\n\r\n";
}

// There is no empty line before the sentence; readers take it for a broken header and continue.
std::string MultipartHead(std::string_view kind, const std::string& boundary) {
    return "MIME-Version: 1.0\r\n" + MultipartType(kind, boundary) + "This is a multi-part Message in MIME format.\r\n\r\n" +
           Delimiter(boundary);
}

// Returns 32 upper-case hexadecimal digits, or "00000000" when the system provides none.
std::string NewGuidText(GuidSource& guids) {
    const std::optional<Guid> guid = guids.CoCreateGuid();
    if (!guid) return std::string(kGuidFailed);
    char text[33];
    const auto& tail = guid->data4;
    std::snprintf(text, sizeof text, "%08X%04X%04X%02X%02X%02X%02X%02X%02X%02X%02X", guid->data1, guid->data2, guid->data3,
                  tail[0], tail[1], tail[2], tail[3], tail[4], tail[5], tail[6], tail[7]);
    return text;
}

// Returns the bytes of a file, which is empty when it cannot be read.
std::string ContentsOf(Files& files, const std::string& path, const MailMessage::ReadFileError& failed) {
    try {
        std::optional<std::string> contents = files.Read(path);
        if (!contents) throw Error("File not found", kFileNotFound);
        return std::move(*contents);
    } catch (const Error& error) {
        if (failed) failed(error.Number() != 0 ? error.Number() : kFileAccessError, error.what(), LeftTrimmed(path));
        return "";
    }
}

std::string ReplaceUntilGone(std::string text, std::string_view from, std::string_view to) {
    while (Holds(text, from))
        text = ReplaceAll(text, from, to);
    return text;
}

std::string InBrackets(std::string address) {
    if (!address.starts_with('<')) address.insert(0, "<");
    if (!address.ends_with('>')) address += '>';
    return address;
}

}  // namespace

std::string MailDate(DateTime local, DateTime utc, std::string_view zone) {
    const DateTime when = zone.empty() ? utc : local;
    const std::chrono::weekday day(
        std::chrono::sys_days(std::chrono::floor<std::chrono::days>(std::chrono::seconds(when.Seconds()))));
    char text[40];
    std::snprintf(text, sizeof text, "%s, %02d %s %04d %02d:%02d:%02d ", kDayNames[day.c_encoding()], when.Day(),
                  kMonthNames[when.Month() - 1], when.Year(), when.Hour(), when.Minute(), when.Second());
    return text + std::string(zone.empty() ? "-0000" : zone);
}

std::string NewMessageId(GuidSource& guids, const std::string& hostName) {
    return "<" + NewGuidText(guids) + "@" + hostName + ">";
}

std::string WithoutLineEnds(std::string_view text) {
    return ReplaceAll(ReplaceAll(ReplaceAll(text, "\r\n", " "), "\n", " "), "\r", " ");
}

std::string WithMailLineEnds(std::string_view text) {
    return ReplaceAll(ReplaceAll(ReplaceAll(text, "\r\n", "\n"), "\r", "\n"), "\n", "\r\n");
}

std::string Mailbox(const std::string& name, const std::string& address) {
    return Quoted(name) + " <" + address + ">";
}

std::string StuffDots(std::string_view text) {
    const std::string stuffed = ReplaceAll(text, "\r\n.", "\r\n..");
    return stuffed.starts_with('.') ? "." + stuffed : stuffed;
}

std::string NormaliseRecipients(std::string_view text) {
    std::string list = ReplaceAll(Trim(text), ",", ";");
    list = ReplaceUntilGone(std::move(list), "  ", " ");
    list = ReplaceUntilGone(std::move(list), "; ", ";");
    list = ReplaceUntilGone(std::move(list), ";;", ";");
    return Trim(ReplaceAll(list, " ", ";"));
}

std::string ParseRecipients(std::string_view list, std::vector<std::string>& recipients) {
    const std::string spaced = ReplaceAll(ReplaceAll(Trim(list), ",", " , "), ";", " ; ");
    if (spaced.empty()) return "";
    recipients.clear();
    std::string normalised;
    for (std::string& piece : Split(spaced, ' ')) {
        if (Holds(piece, "@")) {
            piece = InBrackets(std::move(piece));
            recipients.push_back(piece);
        }
        normalised += piece + " ";
    }
    normalised.pop_back();
    return ReplaceAll(ReplaceAll(normalised, " , ", ","), " ; ", ";");
}

void MailMessage::EncodeText(std::string_view type, std::string& body, std::string& headers) {
    MimeText mime = AsMimeText(type, body);
    body = std::move(mime.text);
    headers = std::move(mime.headers);
}

void MailMessage::Prepare(const ReadFileError& failed) {
    ChooseBoundaries();
    EncodeAttachments(failed);
    if (mail_.security.strict) {
        EncodeText("text/plain", mail_.plainMessage, plainHeaders_);
        EncodeText("text/html", mail_.htmlMessage, htmlHeaders_);
    }
    mail_.plainMessage = StuffDots(mail_.plainMessage);
    mail_.htmlMessage = StuffDots(mail_.htmlMessage);
}

void MailMessage::EncodeAttachments(const ReadFileError& failed) {
    std::erase_if(mail_.AttachFiles, [](const std::string& path) { return LeftTrimmed(path).empty(); });
    attachments_.clear();
    auto pumped = ports_.clock.GetTickCount();
    const auto pump = [&] {
        if (ports_.clock.GetTickCount() - pumped < kPumpPeriod) return;
        ports_.events.DoEvents();
        pumped = ports_.clock.GetTickCount();
    };
    const std::vector<std::string> paths = mail_.AttachFiles;  // events run below, and the owner may change the list
    for (const std::string& path : paths) {
        const std::string contents = ContentsOf(ports_.files, path, failed);
        attachments_.push_back(AttachmentPiece(path, Base64EncodeLines(contents, pump), boundaryOne_));
    }
}

void MailMessage::ChooseBoundaries() {
    const std::string bodies = ToLower(mail_.plainMessage) + "\n" + ToLower(mail_.htmlMessage);
    int tries = 0;
    do {
        boundaryOne_ = std::string(kBoundaryMark) + NewGuidText(ports_.guids);
        boundaryTwo_ = std::string(kBoundaryMark) + NewGuidText(ports_.guids) + "_2";
    } while ((Holds(bodies, ToLower(boundaryOne_)) || Holds(bodies, ToLower(boundaryTwo_))) && ++tries < kBoundaryTries);
}

bool MailMessage::Send(const std::string& localHostName, const SendPiece& send) const {
    return SendHeaders(localHostName, send) && SendBody(send);
}

bool MailMessage::SendHeaders(const std::string& localHostName, const SendPiece& send) const {
    const std::string date = MailDate(ports_.clock.Now(), ports_.clock.UtcNow(), mail_.emailTimeZoneAdjust);
    const auto line = [&](const std::string& text) { return send(text + "\r\n"); };
    const auto optional = [&](const char* name, const std::string& value) { return value.empty() || line(name + value); };
    std::vector<std::string> unused;
    const std::string replyTo = ParseRecipients(mail_.emailReplyTo, unused);
    const bool strict = mail_.security.strict;

    return line("From: " +
                (strict ? AsMailbox(mail_.emailFromName, mail_.emailFromAddress)
                        : Mailbox(mail_.emailFromName, mail_.emailFromAddress)) +
                "\r\nTo:" + mail_.emailTo) &&
           (mail_.emailReplyTo.empty() || line("Reply-To: " + replyTo)) &&                           //
           optional("Cc: ", mail_.emailCC) &&                                                        //
           line("Subject: " + (strict ? AsHeaderText(mail_.subject) : mail_.subject)) &&             //
           line("Date: " + date) &&                                                                  //
           line("Message-ID: " + Or(mail_.messageId, NewMessageId(ports_.guids, localHostName))) &&  //
           optional("X-Priority: ", mail_.emailXPriority) &&                                         //
           optional("X-Sender: ", mail_.emailXSender) &&                                             //
           optional("X-Mailer: ", mail_.emailXMailer) &&                                             //
           (!strict || line("MIME-Version: 1.0"));
}

bool MailMessage::SendBody(const SendPiece& send) const {
    if (mail_.security.strict) return SendStrictBody(send);
    const bool attached = !attachments_.empty();
    const bool html = !mail_.htmlMessage.empty();
    if (!attached && !html) return send("\r\n" + mail_.plainMessage + "\r\n");

    if (!send(attached ? MultipartHead(kMixed, boundaryOne_) : MultipartHead(kAlternative, boundaryTwo_))) return false;
    if (attached && html && !send(MultipartType(kAlternative, boundaryTwo_) + "\r\n" + Delimiter(boundaryTwo_))) return false;
    if (!send(TextPiece())) return false;
    if (html && !send(HtmlPiece())) return false;
    return std::all_of(attachments_.begin(), attachments_.end(), send);
}

// Every part has an empty line between its headers and its text, and every multipart is closed.
bool MailMessage::SendStrictBody(const SendPiece& send) const {
    const std::string text = plainHeaders_ + "\r\n" + mail_.plainMessage + "\r\n";
    const std::string html = htmlHeaders_ + "\r\n" + mail_.htmlMessage + "\r\n";
    const std::string body = mail_.htmlMessage.empty()
                                 ? text
                                 : MultipartType(kAlternative, boundaryTwo_) + "\r\n" + Delimiter(boundaryTwo_) + text +
                                       Delimiter(boundaryTwo_) + html + "--" + boundaryTwo_ + "--\r\n";
    if (attachments_.empty()) return send(body);
    return send(MultipartType(kMixed, boundaryOne_) + "\r\n" + Delimiter(boundaryOne_) + body) &&
           std::all_of(attachments_.begin(), attachments_.end(), send) && send("--" + boundaryOne_ + "--\r\n");
}

// All text is labelled us-ascii, whatever it contains.
std::string MailMessage::TextPiece() const {
    const std::string text = PartHead("text/plain") + mail_.plainMessage + "\r\n\r\n";
    return mail_.htmlMessage.empty() ? text : text + Delimiter(boundaryTwo_);
}

std::string MailMessage::HtmlPiece() const {
    return PartHead("text/html") + mail_.htmlMessage + "\r\n\r\n" + Delimiter(boundaryTwo_) + "\r\n";
}

}  // namespace korvane
