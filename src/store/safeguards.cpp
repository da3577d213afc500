#include "store/safeguards.h"

#include <algorithm>

#include "base/text.h"

namespace korvane {
namespace {

using enum SafeguardValue;

constexpr std::string_view kOn = "True";
constexpr std::string_view kOff = "False";

constexpr Safeguard kSafeguards[] = {
    {"GuardBadEntries", Switch, kOn, "engine",
     "An entry with values that cannot be used is set aside, and the others are checked."},
    {"CatchUp", Switch, kOn, "engine", "While entries are due, one check follows the other without a pause."},
    {"GuardClock", Switch, kOn, "engine", "After a change of the clock no entry waits longer than it ever should."},
    {"HTTPStatusFails", Switch, kOn, "engine", "A web page that answers with status 400 or above is a failure."},
    {"OwnNetwork", Hosts, "", "engine",
     "If none of these addresses answers, this machine's own network is down, and no entry is blamed for it."},
    {"WatchMachine", Switch, kOn, "resources", "This machine is watched from the start, also without a window."},
    {"RestoreDatabase", Switch, kOn, "store", "A missing or damaged database is restored from its last good copy."},
    {"MailOutbox", Switch, kOn, "notify", "Mail is kept until a server takes it, and does not delay checks."},
    {"SMTPSecurity1", Security, "", "notify", "The primary mail server is spoken to under TLS."},
    {"SMTPPort1", Port, "", "notify", "The port of the primary mail server."},
    {"SMTPSecurity2", Security, "", "notify", "The backup mail server is spoken to under TLS."},
    {"SMTPPort2", Port, "", "notify", "The port of the backup mail server."},
    {"SMTPAuthority", Text, "", "notify", "A file of certificates that mail servers are verified against, besides the system's."},
    {"ProveMail", Switch, "", "notify", "Once a day a mail goes to a mailbox of your own and is read back."},
    {"ProveMailTime", TimeOfDay, "", "notify", "When the daily mail is sent."},
    {"ProveMailTo", Text, "", "notify", "The address that the daily mail goes to."},
    {"ProveMailHost", Text, "", "notify", "The POP3 server that the daily mail is read back from."},
    {"ProveMailPort", Port, "", "notify", "The port of that server; 995 is TLS."},
    {"ProveMailUser", Text, "", "notify", "The user name of the mailbox."},
    {"ProveMailPass", Password, "", "notify", "The password of the mailbox."},
    {"Heartbeat", WebAddress, "", "shell",
     "This address is requested each minute, so that a service elsewhere notices if this machine dies."},
    {"EscapeReports", Switch, kOn, "reports", "What servers answer stands in the pages as text."},
    {"HidePasswords", Switch, kOn, "notify", "No password is shown in the status log."},
    {"SameHostRedirects", Switch, kOn, "engine", "A monitored server cannot redirect a check to another host."},
};

/// For a sentence that was written to the log.
constexpr std::chrono::hours kSilence{1};

/// These keys mean nothing on their own.
constexpr std::string_view kRefining[] = {"SMTPPort1",     "SMTPPort2",     "SMTPAuthority", "ProveMailTime", "ProveMailTo",
                                          "ProveMailHost", "ProveMailPort", "ProveMailUser", "ProveMailPass"};
constexpr std::string_view kProof = "ProveMail";
constexpr std::string_view kNeededByProof[] = {"ProveMailTo", "ProveMailHost", "ProveMailUser"};

bool Refines(std::string_view key) {
    return std::any_of(std::begin(kRefining), std::end(kRefining), [&](auto other) { return EqualsNoCase(key, other); });
}

bool IsNumber(std::string_view text, int least, int most) {
    if (text.empty() || text.size() > 5 || !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return false;
    const int number = std::stoi(std::string(text));
    return number >= least && number <= most;
}

bool IsTimeOfDay(std::string_view text) {
    const auto parts = Split(text, ':');
    return parts.size() == 2 && parts[1].size() == 2 && IsNumber(parts[0], 0, 23) && IsNumber(parts[1], 0, 59);
}

/// Names and addresses contain neither spaces nor signs of a URL.
bool IsHost(std::string_view text) {
    constexpr std::size_t kLongestName = 253;  // RFC 1035
    return !text.empty() && text.size() <= kLongestName && text.find_first_of(" \t/\\@\"'<>,?#") == std::string_view::npos;
}

std::vector<std::string> HostsIn(std::string_view text) {
    std::vector<std::string> hosts;
    for (const std::string& part : Split(text, ';'))
        if (const std::string host = Trim(part); !host.empty()) hosts.push_back(host);
    return hosts;
}

bool AreHosts(std::string_view text) {
    constexpr std::size_t kMostHosts = 3;
    const auto hosts = HostsIn(text);
    return !hosts.empty() && hosts.size() <= kMostHosts && std::all_of(hosts.begin(), hosts.end(), IsHost);
}

bool IsWebAddress(std::string_view text) {
    for (const std::string_view scheme : {"http://", "https://"}) {
        if (!EqualsNoCase(text.substr(0, scheme.size()), scheme)) continue;
        const std::string_view rest = text.substr(scheme.size());
        return IsHost(rest.substr(0, rest.find_first_of("/?#"))) && rest.find_first_of(" \t") == std::string_view::npos;
    }
    return false;
}

}  // namespace

std::span<const Safeguard> AllSafeguards() {
    return kSafeguards;
}

const Safeguard* FindSafeguard(std::string_view key) {
    const auto found = std::find_if(std::begin(kSafeguards), std::end(kSafeguards),
                                    [&](const Safeguard& s) { return EqualsNoCase(s.key, key); });
    return found == std::end(kSafeguards) ? nullptr : &*found;
}

std::string RecommendedSettings() {
    std::string lines = "[Settings]\n";
    for (const Safeguard& safeguard : kSafeguards)
        if (!safeguard.recommended.empty()) lines += std::string(safeguard.key) + "=" + std::string(safeguard.recommended) + "\n";
    return lines;
}

std::string ProblemOf(const Safeguard& safeguard, std::string_view value) {
    const std::string text = Trim(value);
    if (text.empty()) return "";
    const auto unless = [&](bool usable, std::string_view wanted) {
        return usable ? "" : std::string(safeguard.key) + ": '" + text + "' is not " + std::string(wanted) + ".";
    };
    switch (safeguard.value) {
        case Switch:
            return unless(text == kOn || text == kOff, "\"True\" or \"False\"");
        case Hosts:
            return unless(AreHosts(text), "one to three addresses with \";\" between them");
        case WebAddress:
            return unless(IsWebAddress(text), "an address that begins with http:// or https://");
        case Security:
            return unless(text == "starttls" || text == "tls", "empty, \"starttls\" or \"tls\"");
        case Port:
            return unless(IsNumber(text, 1, 65535), "a port from 1 to 65535");
        case TimeOfDay:
            return unless(IsTimeOfDay(text), "a time of the day such as 7:30");
        case Text:
        case Password:
            break;
    }
    return "";
}

std::string Safeguards::Text(std::string_view key) const {
    const std::string* value = settings_.Find(key);
    if (value == nullptr) return "";  // this is asked at each check
    const Safeguard* safeguard = FindSafeguard(key);
    return safeguard == nullptr || !ProblemOf(*safeguard, *value).empty() ? "" : Trim(*value);
}

bool Safeguards::IsOn(std::string_view key) const {
    if (Text(key) != kOn) return false;
    if (!EqualsNoCase(key, kProof)) return true;
    return std::none_of(std::begin(kNeededByProof), std::end(kNeededByProof),
                        [&](auto needed) { return Text(needed).empty(); }) &&
           std::all_of(std::begin(kRefining), std::end(kRefining),
                       [&](auto other) { return !other.starts_with(kProof) || Problem(other).empty(); });
}

std::vector<std::string> Safeguards::Hosts(std::string_view key) const {
    return HostsIn(Text(key));
}

int Safeguards::Port(std::string_view key, int otherwise) const {
    const std::string text = Text(key);
    return text.empty() ? otherwise : std::stoi(text);
}

std::string Safeguards::Problem(std::string_view key) const {
    const Safeguard* safeguard = FindSafeguard(key);
    const std::string* value = settings_.Find(key);
    return safeguard == nullptr || value == nullptr ? "" : ProblemOf(*safeguard, *value);
}

bool Safeguards::AnyOn() const {
    return std::any_of(std::begin(kSafeguards), std::end(kSafeguards), [&](const Safeguard& safeguard) {
        if (safeguard.value == Switch) return IsOn(safeguard.key);
        return !Refines(safeguard.key) && !Text(safeguard.key).empty();
    });
}

std::vector<std::string> Safeguards::Problems() const {
    std::vector<std::string> problems;
    for (const Safeguard& safeguard : kSafeguards)
        if (const std::string problem = Problem(safeguard.key); !problem.empty()) problems.push_back(problem);
    if (Text(kProof) == kOn)
        for (const std::string_view needed : kNeededByProof)
            if (Text(needed).empty()) problems.push_back("ProveMail: it needs a usable " + std::string(needed) + ".");
    return problems;
}

void Safeguards::TellProblems() {
    const std::vector<std::string> problems = Problems();
    for (const std::string& problem : problems) {
        if (std::find(toldProblems_.begin(), toldProblems_.end(), problem) != toldProblems_.end()) continue;
        const std::string text = "Safeguard off. " + problem;
        log_.WriteLog(kLogFatal, kLogError, text);
        status_.setStatusMSG(text);
    }
    toldProblems_ = problems;
}

void Safeguards::Acted(std::string_view key, const std::string& what) {
    ++counts_[std::string(key)];
    const std::string line = "Safeguard " + std::string(key) + ": " + what;
    const auto now = clock_.GetTickCount();
    const auto written = written_.find(line);
    if (written != written_.end() && now - written->second < kSilence) return;
    std::erase_if(written_, [&](const auto& each) { return now - each.second >= kSilence; });
    written_.emplace(line, now);
    log_.Info(line);  // the last step: a safeguard that hides a part of the line acts again
}

std::string Safeguards::CountsText() const {
    std::string counts;
    for (const auto& [key, count] : counts_)
        counts += (counts.empty() ? " " : ", ") + key + " " + std::to_string(count);
    return counts.empty() ? "No safeguard has acted since the start of Korvane."
                          : "How often safeguards have acted since the start of Korvane:" + counts + ".";
}

}  // namespace korvane
