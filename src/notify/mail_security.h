// How a mail server is spoken to, as the safeguards of the settings file say: in clear or under TLS, and on which port.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "store/safeguards.h"

namespace korvane {

/// The two sets of settings that name a mail server.
enum class MailServer { Primary, Backup };

enum class Encryption {
    None,
    StartTls,  ///< after a greeting in clear (RFC 3207)
    Tls,       ///< from the first byte on (RFC 8314)
};

struct MailSecurity {
    Encryption encryption = Encryption::None;
    std::int32_t port = 25;
    std::string authorities = {};  ///< a file of certificates, besides the system's; empty: none
    /// The mail is in a form that every server takes (see mime_text.h), replies are taken whole, and a connection that has failed
    /// is not waited for.
    bool strict = false;
};

/// The value of the settings for it: "tls", "starttls" or empty.
std::string_view NameOf(Encryption encryption);

/// What a server may offer, the best first.
inline const MailSecurity kUsualOffers[] = {{.encryption = Encryption::Tls, .port = 465},
                                            {.encryption = Encryption::StartTls, .port = 587},
                                            {.encryption = Encryption::StartTls, .port = 25}};

/// With a login at a POP server before the mail, that login is under TLS on this port too.
constexpr std::int32_t kPopTlsPort = 995;

inline constexpr std::string_view kNoStartTls = "SMTP server does not offer STARTTLS, so the mail was not sent in clear";
inline constexpr std::string_view kRefusedStartTls = "SMTP server refused STARTTLS, so the mail was not sent in clear";

/// `plainPort` counts where neither security nor a port is set. Throws Error with the reason when security is asked for with a
/// value that is unusable: such a mail must not go out in clear.
MailSecurity SecurityOf(const Safeguards& safeguards, MailServer server, std::int32_t plainPort);

}  // namespace korvane
