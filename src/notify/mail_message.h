// The content of a mail and its form after DATA: ordered header lines, text, HTML and attachments, one piece after the other. Lists
// of recipients have two normal forms: one address after the other for the dispatcher, addresses in angle brackets for SMTP.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/datetime.h"
#include "notify/mail_security.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/guid_source.h"

namespace korvane {

/// Everything that the caller fills in before a mail is sent. Texts are sent unchanged, so the caller must keep line ends out of
/// headers.
struct MailProperties {
    std::string emailTo;           ///< recipients; rewritten in their normal form
    std::string emailFromAddress;  ///< of the envelope and the From header
    std::string emailFromName;
    std::string emailReplyTo;  ///< empty: no such header, here and below
    std::string emailCC;       ///< header only, no copy is sent
    std::string bcc;           ///< stored but not used
    std::string subject;
    std::string SmtpHost;
    std::int32_t smtpport = 25;
    std::string POPhost;  ///< empty: no POP login
    std::int32_t popPort = 110;
    std::string plainMessage;
    std::string htmlMessage;  ///< empty: none
    std::vector<std::string> AttachFiles;
    std::string UserID;    ///< for POP and for SMTP
    std::string Password;  ///< in the clear, in memory
    std::string ErrorLog;  ///< a readable error report
    std::string emailXMailer;
    std::string emailXSender;
    std::string emailXPriority;
    std::string messageId;            ///< with its angle brackets; empty: a new one
    std::string emailTimeZoneAdjust;  ///< zone of the Date header, which then has local time; empty: UTC
    MailSecurity security = {};       ///< of the SMTP server, and of the POP server; its port does not count
};

/// Returns "Sat, 21 Nov 2026 15:04:05 -0500" for the zone "-0500", with local time; without a zone UTC and "-0000".
std::string MailDate(DateTime local, DateTime utc, std::string_view zone);

/// Returns a new text for the Message-ID header, with its angle brackets.
std::string NewMessageId(GuidSource& guids, const std::string& hostName);

/// Replaces each CR LF, LF and CR by a space, so that no text can add a header line or a command.
std::string WithoutLineEnds(std::string_view text);

/// Replaces every line end by CR LF, the only one valid in mail (RFC 5321, section 2.3.8): server replies and typed texts contain
/// others too.
std::string WithMailLineEnds(std::string_view text);

/// Returns "\"name\" <address>".
std::string Mailbox(const std::string& name, const std::string& address);

/// Doubles a "." at the beginning of a line (RFC 5321, section 4.5.2). Only CR LF ends a line.
std::string StuffDots(std::string_view text);

/// Turns "a@x, b@y  c@z" into "a@x;b@y;c@z": one ";" replaces each run of separators.
std::string NormaliseRecipients(std::string_view text);

/// Takes every word with an "@" as an address; words end at spaces, "," and ";". Returns the list for a header, with words kept
/// and addresses in angle brackets, and replaces `recipients` by the addresses in brackets. An empty list leaves them unchanged.
std::string ParseRecipients(std::string_view list, std::vector<std::string>& recipients);

class MailMessage {
public:
    using ReadFileError = std::function<void(int ErrNo, const std::string& ErrDesc, const std::string& FileName)>;
    /// Sends a piece; returning false ends the message.
    using SendPiece = std::function<bool(const std::string& piece)>;

    struct Ports {
        Files& files;
        const Clock& clock;
        Events& events;
        GuidSource& guids;
    };

    /// Holds references; everything must outlive this.
    MailMessage(const Ports& ports, MailProperties& mail) : ports_(ports), mail_(mail) {}

    /// Must run before the connection: chooses the boundaries, reads and encodes the attachments (delivering events meanwhile),
    /// and dot-stuffs both bodies in place. `failed` is called for an attachment that cannot be read, which is then sent empty;
    /// an entry without a name is removed from the list.
    void Prepare(const ReadFileError& failed);

    /// Sends headers and body, without the end-of-data dot, and returns whether all pieces were sent. Only in a strict
    /// mail is a multipart closed by its "--boundary--" line: readers accept the end of the mail instead.
    bool Send(const std::string& localHostName, const SendPiece& send) const;

private:
    void EncodeAttachments(const ReadFileError& failed);
    void ChooseBoundaries();
    bool SendHeaders(const std::string& localHostName, const SendPiece& send) const;
    bool SendBody(const SendPiece& send) const;
    bool SendStrictBody(const SendPiece& send) const;
    static void EncodeText(std::string_view type, std::string& body, std::string& headers);
    std::string TextPiece() const;
    std::string HtmlPiece() const;

    Ports ports_;
    MailProperties& mail_;
    std::vector<std::string> attachments_;  ///< each as its piece
    std::string plainHeaders_;              ///< of a strict mail: the headers of the two bodies
    std::string htmlHeaders_;
    std::string boundaryOne_;
    std::string boundaryTwo_;
};

}  // namespace korvane
