#include "shell/options/options_inputs.h"

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "shell/list/outage_notes.h"
#include "store/last_checks.h"
#include "store/safeguards.h"

namespace korvane {
namespace {

constexpr const char* kReportFolder = "/reports";
constexpr const char* kShortestWait = "1";
constexpr std::string_view kReportPath = "ReportPath";
constexpr const char* kSecurityHelp =
    "Blank for mail in clear, \"tls\" for an encrypted connection, \"starttls\" for one that is encrypted after a greeting.";
constexpr const char* kPortHelp = "Blank means 25, 465 with tls and 587 with starttls.";

std::optional<std::string> WithoutSlash(const std::string& text, const OptionsFields& /*fields*/) {
    std::string path = Trim(text);
    if (path.size() > 1 && (path.ends_with('/') || path.ends_with('\\'))) path.pop_back();
    return path;
}

constexpr OptionsInput kOptionsInputs[] = {
    {.key = "Service",
     .control = {"chkService", "&Install Korvane as a service",
                 "Starts Korvane together with this computer, before anybody logs on."},
     .mark = &OptionsFields::Service},
    {.key = "Reboot", .control = {"ckReboot", "&Restart this computer when servers fail"}, .mark = &OptionsFields::Reboot},
    {.key = "RebootAny", .control = {"optRebootAny", "When &any server fails"}, .mark = &OptionsFields::RebootAny},
    {.key = "bYellowAlert",
     .control = {"ckYellowAlert", "Play a sound when a server fail&s",
                 "Plays the sound when a server fails that is not yet down."},
     .mark = &OptionsFields::bYellowAlert},
    {.key = "bRedAlert",
     .control = {"ckRedAlert", "Play a sound when a server goes &down", "Plays the sound when a server goes down."},
     .mark = &OptionsFields::bRedAlert},
    {.key = kDesktopNotes,
     .control =
         {"ckDesktopNotes", "Show a &notification on the desktop when a server goes down or comes back",
          "Where the desktop has a tray: a notification when a server goes down and when it is back. More than three within "
          "ten seconds become one."},
     .mark = &OptionsFields::DesktopNotes,
     .on = true},
    {"YellowAlertWav", &OptionsFields::YellowAlertWav, AsTyped, "txtYellowAlertWav",
     "&Wave file:", "The wave file for a server that fails. Leave it blank to play nothing.", "Wave file of the yellow alert"},
    {"RedAlertWav", &OptionsFields::RedAlertWav, AsTyped, "txtRedAlertWav",
     "Wav&e file:", "The wave file for a server that is down. Leave it blank to play nothing.", "Wave file of the red alert"},
    {"ServiceName", &OptionsFields::ServiceName, AsTyped, "lblServiceName", "Service name:"},
    {"ProxyName", &OptionsFields::ProxyName, AsTyped, "txtProxyName",
     "&Proxy server:", "The address of the proxy server, beginning with http://. Leave it blank to check web pages directly."},
    {"ProxyPort", &OptionsFields::ProxyPort, AsTyped, "txtProxyPort", "P&ort:", "The port of the proxy server.",
     "Port of the proxy server"},
    {"Zone", &OptionsFields::Zone, AsTyped, "txtZone", "Offset from GM&T:",
     "Your offset from GMT for the date of mails, such as -600 or +0100. Blank means GMT.", "", "such as -600; blank for GMT"},
    {"SMTPPass1", &OptionsFields::SMTPPass1, Trimmed, "txtSMTPPass1", "&Password:",
     "The password that goes with the user name. It is kept in clear in the settings file.", "Password on the primary server"},
    {"SMTPPass2", &OptionsFields::SMTPPass2, Trimmed, "txtSMTPPass2", "Pass&word:",
     "The password that goes with the user name. It is kept in clear in the settings file.", "Password on the backup server"},
    {"SMTPUser1", &OptionsFields::SMTPUser1, Trimmed, "txtSMTPUser1", "&User name:",
     "The user name for the mail server. Leave it blank for a server that asks for none.", "User name on the primary server"},
    {"SMTPUser2", &OptionsFields::SMTPUser2, Trimmed, "txtSMTPUser2",
     "User n&ame:", "The user name for the backup mail server. Leave it blank for a server that asks for none.",
     "User name on the backup server"},
    {"SMTPPopHost1", &OptionsFields::SMTPPopHost1, Trimmed, "txtSMTPPopHost1", "P&OP server:",
     "Fill this in only where you must log in to a POP server before you may send mail.", "POP server of the primary server"},
    {"SMTPPopHost2", &OptionsFields::SMTPPopHost2, Trimmed, "txtSMTPPopHost2",
     "POP se&rver:", "Fill this in only where you must log in to a POP server before you may send mail by the backup server.",
     "POP server of the backup server"},
    {"SMTPSecurity1", &OptionsFields::SMTPSecurity1, Trimmed, "txtSMTPSecurity1", "Secur&ity:", kSecurityHelp, "SMTPSecurity1"},
    {"SMTPPort1", &OptionsFields::SMTPPort1, Trimmed, "txtSMTPPort1", "Port num&ber:", kPortHelp, "SMTPPort1"},
    {"SMTPSecurity2", &OptionsFields::SMTPSecurity2, Trimmed, "txtSMTPSecurity2", "Securit&y:", kSecurityHelp, "SMTPSecurity2"},
    {"SMTPPort2", &OptionsFields::SMTPPort2, Trimmed, "txtSMTPPort2", "Port &number:", kPortHelp, "SMTPPort2"},
    {kReportPath, &OptionsFields::ReportPath, WithoutSlash, "txtReportPath",
     "&Folder:", "The folder in which reports are published. It is created when it is not there.", "Report folder"},
    {"Begin", &OptionsFields::Begin, Trimmed, "txtBegin",
     "&Monitor activity begins:", "How many minutes Korvane waits after its start until it begins to check, 0 to 10.",
     "Monitor activity begins, in minutes after start", "minutes after the start of Korvane",
     NumberRange{0, 10, "The valid range for the 'Monitor activity begins...' field is 0 .. 10 minutes.   You typed in "}},
    {"GlobalRetryDuration", &OptionsFields::GlobalRetryDuration, Trimmed, "txtGlobalRetryDuration",
     "Server &Retry interval:", "How many seconds after a failed check the server is tried again, 5 to 32400.",
     "Server retry interval after a failure, in seconds", "Seconds.",
     NumberRange{5, 32400,
                 "The valid range for the 'Server Retry interval...' field is 5 .. 32400(9 hours) seconds.   You typed in "}},
    {"SuccessLT", &OptionsFields::SuccessLT, AsTyped, "txtSuccess", "&Slow Response Timeout:",
     "An answer that takes longer than this many seconds is slow, 0 to 50.", "Slow response timeout, in seconds", "seconds",
     NumberRange{0, 50, "The valid range for the 'Slow Response Timeout...' field is 0 .. 50 seconds.  You typed in "}},
    {"Server", &OptionsFields::Server, AsTyped, "txtServer", "Mail &server:", "The mail server that sends your notifications.",
     "Primary SMTP server"},
    {"ServerBackup", &OptionsFields::ServerBackup, AsTyped, "txtServerBackup", "Mail s&erver:",
     "The mail server that is used when the primary one fails. Blank means none, and so does a name of 5 characters or fewer.",
     "Backup SMTP server"},
    {.key = "Figures",
     .control = {"ckFigures", "Write fi&gures for other programs",
                 "Writes status.json and metrics.prom into the report folder, with each publication and once a minute."},
     .mark = &OptionsFields::Figures},
    {.key = "KeepPhases",
     .control = {"ckKeepPhases", "Where the time of each entr&y's last check went is kept and shown.",
                 "KeepPhases: Where the time of each entry's last check went is kept and shown.", "KeepPhases"},
     .mark = &OptionsFields::KeepPhases},
    {"CertWarnDays", &OptionsFields::CertWarnDays, Trimmed, "txtCertWarnDays", "CertWarnDays:",
     "So many days before a certificate ends, 1 to 1000, the recipients of its entry are mailed; blank: they are not.",
     "CertWarnDays", "days"},
};

void Set(const Desk& desk, const OptionsInput& input, const OptionsFields& fields) {
    const bool isMissing = desk.collection.Find(input.key) == nullptr;
    // What was added and is as it would be without its key stays out of the file.
    if (isMissing && input.mark != nullptr && fields.*input.mark == input.on) return;
    if (input.mark != nullptr) return desk.collection.setKvSettingsColValue(input.key, fields.*input.mark ? "True" : "False");
    const std::string value = *input.stored(fields.*input.text, fields);
    if (value.empty() && isMissing) return;
    desk.collection.setKvSettingsColValue(input.key, value);
}

std::string ProblemOf(const OptionsInput& input, const OptionsFields& fields) {
    if (input.text == &OptionsFields::CertWarnDays) return CertWarnDaysProblem(fields.CertWarnDays);
    const Safeguard* safeguard = FindSafeguard(input.key);
    return safeguard == nullptr || input.text == nullptr ? "" : korvane::ProblemOf(*safeguard, fields.*input.text);
}

bool IsWithin(const NumberRange& range, const std::string& typed) {
    bool isWithin = false;
    IgnoreErrors([&] {
        const std::int64_t number = ParseWhole(typed);
        isWithin = number >= range.least && number <= range.most;
    });
    return isWithin;
}

// This dialog does not change the entries of older settings files.
void WriteToFile(const Desk& desk) {
    desk.legacyLog.setLogTimer();
    desk.entries.setServerEntryChangedIndex(kNoServerEntry);
    desk.settings.Save();
}

}  // namespace

std::span<const OptionsInput> OptionsInputs() {
    return kOptionsInputs;
}

OptionsFields OptionsFromSettings(const SettingsCollection& settings) {
    OptionsFields fields;
    for (const OptionsInput& input : kOptionsInputs) {
        const std::string* found = settings.Find(input.key);
        const std::string value = found == nullptr ? "" : *found;
        if (input.text != nullptr) fields.*input.text = value;
        if (input.mark != nullptr) fields.*input.mark = input.on ? value != "False" : value == "True";
    }
    if (Trim(fields.Begin).empty()) fields.Begin = kShortestWait;
    return fields;
}

std::string RefusalOf(const OptionsInput& input, const OptionsFields& fields) {
    if (input.range && !IsWithin(*input.range, fields.*input.text)) return input.range->refusal + fields.*input.text;
    return ProblemOf(input, fields);
}

std::optional<OptionsRefusal> SaveOptions(const Desk& desk, const OptionsFields& typed, const SafeguardValues& safeguards) {
    if (const auto refused = RefusedSafeguard(desk, safeguards)) return OptionsRefusal{nullptr, refused->message, refused->key};
    OptionsFields fields = typed;
    if (Trim(fields.ReportPath).empty()) fields.ReportPath = desk.dir + kReportFolder;
    for (const OptionsInput& input : kOptionsInputs) {
        if (const std::string refusal = RefusalOf(input, fields); !refusal.empty()) return OptionsRefusal{input.text, refusal};
        Set(desk, input, fields);
        if (input.key == kReportPath) IgnoreErrors([&] { desk.files.CreateFolder(*desk.collection.Find(kReportPath)); });
    }
    SetSafeguards(desk, safeguards);
    WriteToFile(desk);
    desk.safeguards.TellProblems();
    desk.followSafeguards();
    return std::nullopt;
}

void SetMailSettings(const Desk& desk, const OptionsFields& fields) {
    for (const OptionsInput& input : kOptionsInputs) {
        if (input.key.starts_with("SMTP") || input.key.starts_with("Server")) Set(desk, input, fields);
    }
}

}  // namespace korvane
