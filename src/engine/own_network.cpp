#include "engine/own_network.h"

#include <algorithm>
#include <utility>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "notify/mail_message.h"
#include "platform/wait.h"
#include "store/database_files.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::seconds;

constexpr std::string_view kKey = "OwnNetwork";
constexpr auto kAnswerWait = 1000ms;
constexpr seconds kUsualRetry = 60s;
constexpr int kHops = 255;
constexpr int kRefused = 10061;
constexpr std::string_view kNotCounted = "Not counted, because the own network is down since ";
constexpr std::string_view kWasNotCounted = "Not counted, because the own network was down since ";
const std::string kQuestion(32, 'N');  // not that of the ping check: a raw socket receives the answers to both

std::string InWords(seconds length) {
    return std::to_string(length / 1min) + " min. " + std::to_string((length % 1min).count()) + " sec.";
}

std::string Counted(std::size_t checks, bool atLeast) {
    return (atLeast ? "At least " : "") + std::to_string(checks) +
           (checks == 1 ? " failed check was not counted." : " failed checks were not counted.");
}

// Returns when the outage began, as the last response of an entry says. The end of all time if it does not say it.
DateTime BeginIn(std::string_view response) {
    if (!response.starts_with(kNotCounted)) return DateTime::Last();
    response.remove_prefix(kNotCounted.size());
    return ParseDateTime(response.substr(0, response.find(": ")));
}

}  // namespace

void OwnNetwork::AskBeforeCheck() {
    downBefore_ = false;
    const std::vector<std::string> hosts = ports_.safeguards.Hosts(kKey);
    if (hosts.empty()) {
        outage_.reset();
        if (std::exchange(isOpen_, false)) ports_.echo.IcmpCloseHandle();
        return;
    }
    Recall();
    const std::vector<std::string> others = SendEchoes(hosts);
    downBefore_.reset();
    if (outage_ || !others.empty()) downBefore_ = !IsAnswered(others);
}

bool OwnNetwork::Excuses(Recordset& rs, const std::string& strReason) {
    const std::vector<std::string> hosts = ports_.safeguards.Hosts(kKey);
    if (hosts.empty()) return false;
    if (!downBefore_) downBefore_ = !IsAnswered({});
    if (!*downBefore_ && IsAnswered(SendEchoes(hosts))) return false;
    Note(rs);
    ports_.safeguards.Acted(kKey, "The own network is down since " + outage_->since.Text() + ": none of " +
                                      ports_.safeguards.Text(kKey) + " answers. Failed checks are not counted.");
    ports_.status.setStatusMSG("The own network is down. The failed check of " + ColumnText(rs, "strAddress_IP") +
                               " is not counted.");
    Write(rs, strReason);
    return true;
}

// Returns the hosts that an echo cannot ask.
std::vector<std::string> OwnNetwork::SendEchoes(const std::vector<std::string>& hosts) {
    std::string whyNot;
    if (!isOpen_) isOpen_ = ports_.echo.IcmpCreateFile(whyNot);
    std::vector<Ipv4Address> addresses;
    std::vector<std::string> others;
    for (const std::string& host : hosts) {
        const auto address = isOpen_ ? ports_.echo.InetAddr(host) : std::nullopt;
        address ? addresses.push_back(*address) : others.push_back(host);
    }
    ports_.echo.SendEchoes(addresses, kQuestion, kHops);
    return others;
}

bool OwnNetwork::IsAnswered(const std::vector<std::string>& others) {
    const bool answered =
        ports_.echo.EchoCameBack(kAnswerWait) || std::any_of(others.begin(), others.end(), [&](const std::string& host) {
            return Connects(host, 80) || Connects(host, 443) || Connects(host, 53);
        });
    if (answered && outage_) TellItIsBack();
    return answered;
}

bool OwnNetwork::Connects(const std::string& host, std::int32_t port) {
    bool refused = false;
    bool failed = false;
    ports_.socket.SetHandlers({.dataArrival = {}, .close = {}, .error = [&](int number, const std::string&) {
                                   failed = true;
                                   refused = number == kRefused;
                               }});
    const auto connected = [&] { return ports_.socket.State() == SocketState::Connected; };
    const bool inBrackets = host.starts_with('[') && host.ends_with(']');
    IgnoreErrors([&] {
        ports_.socket.Connect(inBrackets ? host.substr(1, host.size() - 2) : host, port);
        WaitFor(ports_.events, ports_.clock, kAnswerWait, [&] { return failed || connected(); });
    });
    const bool answered = refused || connected();
    ports_.socket.Close();
    ports_.socket.SetHandlers({});
    return answered;
}

// The entries still have the status of an outage that began before the start.
void OwnNetwork::Recall() {
    if (recalled_) return;
    recalled_ = IgnoreErrors([&] {
        const auto conn = ports_.store.NewConnection();
        conn->SetConnectionString(ports_.connectionString);
        conn->Open();
        for (const auto rs = OpenRows(ports_.store, *conn, query::kOwnNetworkDown); !rs->Eof(); rs->MoveNext()) {
            const std::string response = ColumnText(*rs, "strLastResponse");
            if (response.starts_with(kWasNotCounted)) continue;
            Note(*rs);
            IgnoreErrors([&] { outage_->since = std::min(outage_->since, BeginIn(response)); });
        }
    });
    if (!recalled_) outage_.reset();  // another try begins anew
    if (!outage_) return;
    outage_->start -= ports_.clock.Now() - outage_->since;
    outage_->recalled = true;
}

void OwnNetwork::Note(Recordset& rs) {
    if (!outage_) outage_ = {.since = ports_.clock.Now(), .start = ports_.clock.GetTickCount(), .strFrom = {}, .people = {}};
    ++outage_->checks;
    if (outage_->strFrom.empty()) outage_->strFrom = ColumnText(rs, "strEmailFrom");
    for (const char* column : {"strEmailList1", "strEmailList2"})
        for (const std::string& recipient : Split(NormaliseRecipients(ColumnText(rs, column)), ';'))
            if (!Trim(recipient).empty()) outage_->people.insert(Trim(recipient));
}

void OwnNetwork::Write(Recordset& rs, const std::string& strReason) const {
    seconds next = kUsualRetry;
    const auto useIfPositive = [&](seconds time) { next = time > 0s ? time : next; };
    IgnoreErrors([&] { useIfPositive(seconds(ParseWhole(ports_.settings.getKvSettingsColVal("GlobalRetryDuration")))); });
    IgnoreErrors([&] { useIfPositive(std::min(next, seconds(rs.Fields("nIntervalSeconds").Value().Int64()))); });
    rs.Fields("strCurStatus") = status::kOwnNetworkDown;
    rs.Fields("strLastResponse") =
        Left(std::string(kNotCounted) + outage_->since.Text() + ": " + WithoutControls(strReason), kMostStoredCharacters);
    rs.Fields("dtNextCheck") = ports_.clock.Now() + next;
    rs.Update();
}

// The entries keep their status until they are checked again; a start before that must not take it for an outage.
void OwnNetwork::NoteItIsOver() {
    IgnoreErrors([&] {
        const auto conn = ports_.store.NewConnection();
        conn->SetConnectionString(ports_.connectionString);
        conn->Open();
        conn->Execute(query::kOwnNetworkIsBack);
    });
}

void OwnNetwork::TellItIsBack() {
    const Outage outage = *std::exchange(outage_, std::nullopt);
    const auto length = std::chrono::duration_cast<seconds>(ports_.clock.GetTickCount() - outage.start);
    const std::string text = "The own network is back after " + InWords(length) + " " + Counted(outage.checks, outage.recalled);
    ports_.status.setStatusMSG(text);
    ports_.log.Info("Safeguard OwnNetwork: " + text);
    if (outage.people.empty()) return NoteItIsOver();
    std::string people;
    for (const std::string& recipient : outage.people)
        people += (people.empty() ? "" : ";") + recipient;
    const SendOutcome outcome =
        ports_.send({people, "", outage.strFrom, "OWN NETWORK BACK UP",
                     "Time: " + ports_.clock.Now().Text() + "\r\n\r\n" + text + "\r\n\r\nIt was down since " +
                         outage.since.Text() + ": none of " + ports_.safeguards.Text(kKey) + " answered."});
    NoteItIsOver();
    if (outcome.sent) return;
    ports_.log.WriteLog(kLogFatal, kLogError, "The mail about the own network FAILED because '" + outcome.strError + "'.");
}

}  // namespace korvane
