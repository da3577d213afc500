// What a mail says and how it goes out after DATA: header lines in their order, text, HTML and attachments, one piece after
// the other.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/datetime.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/guid_source.h"

namespace korvane {

/// Everything the caller fills before a mail is sent. Texts go out as they stand, so line ends in a header are the caller's to
/// keep out.
struct MailProperties {
    std::string emailTo;           ///< recipients; rewritten in their normal form
    std::string emailFromAddress;  ///< of the envelope and the From header
    std::string emailFromName;
    std::string emailReplyTo;  ///< blank: no such header, here and below
    std::string emailCC;       ///< header only, nobody is sent a copy
    std::string bcc;           ///< held, and not used
    std::string subject;
    std::string SmtpHost;
    std::int32_t smtpport = 25;
    std::string POPhost;  ///< blank: no POP login before
    std::int32_t popPort = 110;
    std::string plainMessage;
    std::string htmlMessage;  ///< blank: none
    std::vector<std::string> AttachFiles;
    std::string UserID;    ///< for POP and for SMTP
    std::string Password;  ///< in the clear, in memory
    std::string ErrorLog;  ///< what went wrong, for a person
    std::string emailXMailer;
    std::string emailXSender;
    std::string emailXPriority;
    std::string emailTimeZoneAdjust;  ///< zone of the Date header, with local time before it; blank: UTC
};

/// 32 upper-case hexadecimal digits, or "00000000" when the system gives none.
std::string NewGuidText(GuidSource& guids);

/// "Sat, 21 Nov 2026 15:04:05 -0500" for a zone of "-0500", which goes with local time; UTC and "-0000" without one.
std::string MailDate(DateTime local, DateTime utc, std::string_view zone);

/// CR LF, LF and CR become a blank each, so that no text can add a line to the headers or to the conversation.
std::string WithoutLineEnds(std::string_view text);

/// Every line end becomes CR LF, the only one that mail knows (RFC 5321, section 2.3.8): what servers say and people write has
/// others too.
std::string WithMailLineEnds(std::string_view text);

/// A "." at the beginning of a line is doubled (RFC 5321, section 4.5.2). Only CR LF ends a line.
std::string StuffDots(std::string_view text);

/// A whole file of raw bytes into `contents`. Returns 0, or the number of the failure with its words in `description`. Blocks
/// on the disk.
int ReadFileBytes(Files& files, const std::string& path, std::string& contents, std::string& description);

class MailMessage {
public:
    using ReadFileError = std::function<void(int ErrNo, const std::string& ErrDesc, const std::string& FileName)>;
    /// Sends a piece; false ends the message.
    using SendPiece = std::function<bool(const std::string& piece)>;

    struct Ports {
        Files& files;
        const Clock& clock;
        Events& events;
        GuidSource& guids;
    };

    /// Everything is borrowed and must outlive this.
    MailMessage(const Ports& ports, MailProperties& mail) : ports_(ports), mail_(mail) {}

    /// Before the connection: reads and encodes the attachments (delivering events meanwhile), chooses the boundaries and
    /// stuffs both bodies in place.
    /// An attachment that can't be read is told to `failed` and goes out empty; an entry without a name is removed from the list.
    void Prepare(const ReadFileError& failed);

    /// Headers and body, whether all pieces went out. The end-of-data dot is not among them. No multipart is ever closed by its
    /// "--boundary--" line: readers take the end of the mail for it.
    bool Send(const std::string& localHostName, const SendPiece& send) const;

private:
    struct Attachment {
        std::string name;
        std::string base64;
    };

    void EncodeAttachments(const ReadFileError& failed);
    void ChooseBoundaries();
    bool SendHeaders(const std::string& localHostName, const SendPiece& send) const;
    bool SendBody(const SendPiece& send) const;
    std::string TextPiece() const;
    std::string HtmlPiece() const;
    static std::string AttachmentPiece(const Attachment& attachment, const std::string& boundary);

    Ports ports_;
    MailProperties& mail_;
    std::vector<Attachment> attachments_;
    std::string boundaryOne_;
    std::string boundaryTwo_;
};

}  // namespace korvane
