#include "notify/mail_security.h"

#include "base/error.h"

namespace korvane {
namespace {

constexpr std::int32_t kStartTlsPort = 587;
constexpr std::int32_t kTlsPort = 465;

void RequireUsable(const Safeguards& safeguards, std::string_view key) {
    const std::string problem = safeguards.Problem(key);
    if (!problem.empty()) throw Error("No mail is sent, so that none goes out in clear. " + problem);
}

}  // namespace

std::string_view NameOf(Encryption encryption) {
    constexpr std::string_view kNames[] = {"", "starttls", "tls"};
    return kNames[static_cast<int>(encryption)];
}

MailSecurity SecurityOf(const Safeguards& safeguards, MailServer server, std::int32_t plainPort) {
    const bool primary = server == MailServer::Primary;
    const std::string_view securityKey = primary ? "SMTPSecurity1" : "SMTPSecurity2";
    const std::string_view portKey = primary ? "SMTPPort1" : "SMTPPort2";
    RequireUsable(safeguards, securityKey);
    const std::string security = safeguards.Text(securityKey);
    if (security.empty()) return {.port = safeguards.Port(portKey, plainPort), .strict = safeguards.IsOn("MailOutbox")};
    RequireUsable(safeguards, portKey);
    const bool startTls = security == NameOf(Encryption::StartTls);
    return {.encryption = startTls ? Encryption::StartTls : Encryption::Tls,
            .port = safeguards.Port(portKey, startTls ? kStartTlsPort : kTlsPort),
            .authorities = safeguards.Text("SMTPAuthority"),
            .strict = true};
}

}  // namespace korvane
