// The cost of one check of each kind over its bare transfer, in processor time of this process: a whole tick with accounting and
// durable Update, a check_http process for the same page, and the parts that a tick is made of.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "engine/http_requester.h"
#include "engine/list_clock.h"
#include "engine/monitor_cycle.h"
#include "engine/server_away.h"
#include "engine/shared_turn.h"
#include "platform/curl/curl_inet.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/linux/linux_icmp_echo.h"
#include "platform/linux/linux_own_program.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "store/ini_file.h"
#include "support/loopback_server.h"
#include "support/played_machine.h"
#include "support/recording_operator.h"
#include "support/test_database.h"

namespace korvane {
namespace {

const std::string kPage = "<html><body>" + std::string(4000, 'x') + "Welcome</body></html>";

class SilentActions : public FailureActions {
public:
    std::string DoFailureStateStuff(Connection&, Recordset&, const std::string&) override { return "None."; }
    void DoUpAgainStuff(Recordset&) override {}
};

/// Checks are what is measured, not pages.
class NoReports : public ReportPublisher {
public:
    std::string PublishReports() override { return ""; }
};

/// The program's own rooms on the real adapters, with a database on the disk of the temporary folder, without the timer of the
/// cycle.
struct Machine {
    explicit Machine(int entries, const Entry& like) {
        person.keepOnlyCounts = true;
        for (const auto& [key, value] : {std::pair{"GlobalRetryDuration", "60"},
                                         {"bYellowAlert", "False"},
                                         {"bRedAlert", "False"},
                                         {"ProxyName", ""},
                                         {"ProxyPort", ""}}) {
            settings.setKvSettingsColValue(key, value);
        }
        http.LoadInets([this] { return std::make_unique<CurlInet>(events, clock, CurlInet::Options{}); });
        database.AddMany(std::vector<Entry>(static_cast<std::size_t>(entries), like));
        count = entries;
    }

    /// A tick that checks a row. The rows are made due again before they run out, outside of the time that is measured.
    void Check(benchmark::State& state, bool withinSecond = false) {
        if (checked++ % (count / 2) == 0) {
            state.PauseTiming();
            MakeAllDue();
            state.ResumeTiming();
        }
        cycle.TimerMonitorDB_Timer(withinSecond);
    }

    void MakeAllDue() {
        const auto conn = database.TheStore().NewConnection();
        conn->SetConnectionString(database.DriverString());
        conn->Open();
        const auto rs = database.TheStore().NewRecordset();
        rs->Open("SELECT * FROM Servers where dtNextCheck > #" + QueryDate(clock.Now()) + "#", *conn, CursorType::Keyset,
                 LockType::Optimistic);
        for (; !rs->Eof(); rs->MoveNext()) {
            rs->Fields("dtNextCheck") = clock.Now() - std::chrono::seconds(60);
            rs->Update();
        }
        cycleState.nSleepLeft = 0;
        cycleState.nReportTicks = 0;
    }

    /// A benchmark of ticks that did not check, or of checks that failed, must not give a figure.
    void ExpectAllPassed(benchmark::State& state) {
        std::int64_t passed = 0;
        for (const Row& row : database.Rows("Servers"))
            passed += row.at("nSuccess").Int64();
        if (passed != checked)
            state.SkipWithError((std::to_string(passed) + " of " + std::to_string(checked) + " checks passed").c_str());
    }

    SystemClock clock;
    LinuxFiles files;
    QtEvents events;
    QtTimers timers;
    QtTcpSocket socket;
    LinuxIcmpEcho echo;
    RecordingOperator person;
    RecordingSound sound;
    TestDatabase database;
    SettingsCollection settings;
    CycleState cycleState;
    SilentActions actions;
    NoReports reports;
    NoConversationWindow conversation;
    Log log{files, clock, database.Folder(), "1.0.0"};
    StatusLog status{person, clock};
    Safeguards safeguards{settings, clock, log, status};
    IniFile ini{files, database.Folder() + "/kvurlwatchn.ini"};
    ServerIds ids{ini, clock};
    std::unique_ptr<Timer> TimerProgress = timers.NewTimer("TimerProgress");
    RequestProgress progress{{events, person, cycleState, *TimerProgress}};
    EntrySafeguards ofEntries{database.TheStore(), database.DriverString()};
    HttpRequester http{{settings, safeguards, events, clock, progress}};
    TcpChecker tcp{{socket, events, clock, person, status, conversation}};
    PingChecker ping{{echo, clock, person, status, log}};
    QtTcpSocket networkSocket;
    LinuxIcmpEcho networkEcho;
    OwnNetwork network{{networkEcho, networkSocket, clock, events, status, log, settings, safeguards,
                        [](const Notification&) { return SendOutcome{}; }, database.TheStore(), database.DriverString()}};
    LinuxGuidSource guids;
    LinuxOwnProgram ownProgram{events};
    AlertPath alertPath{{safeguards, settings, files, clock}, database.Folder()};
    MailOutbox outbox{{database.TheStore(), clock, timers, guids, ownProgram, person, status, log, settings, safeguards,
                       database.Folder(), [] { return std::string("bench"); }, alertPath, [] {}}};
    CheckKeeper keeper{
        {database.TheStore(), clock, status, log, settings, outbox, [](const Notification&) { return SendOutcome{}; }}};
    OutcomeAccounting accounting{{database.TheStore(), clock, events, person, sound, status, log, settings, ids, actions, network,
                                  safeguards, outbox, keeper}};
    RecordingServiceManager manager;
    StoreAlarm alarm{{person, status, log, manager}};
    KeptAccounts kept{{database.TheStore(), clock, log, ids, safeguards, database.DriverString()}};
    BadEntries badEntries{{database.TheStore(), clock, status, log, safeguards, kept, database.DriverString()}};
    BlindAlarm blind{{clock, status, log, [](const Notification&) { return SendOutcome{}; }, safeguards}};
    ListClock listClock{{clock, status, log}};
    SharedTurn turn{{database.TheStore(), listClock, database.DriverString(), settings, nullptr}};
    ServerAway away{{clock, status, log, manager, files, [](const Notification&) { return SendOutcome{}; }, database.Folder()}};
    MonitorCycle cycle{{database.TheStore(),
                        clock,
                        events,
                        person,
                        status,
                        log,
                        settings,
                        ofEntries,
                        http,
                        tcp,
                        ping,
                        network,
                        accounting,
                        alarm,
                        reports,
                        cycleState,
                        database.DriverString(),
                        safeguards,
                        badEntries,
                        kept,
                        blind,
                        keeper,
                        turn,
                        away}};
    int count = 0;
    int checked = 0;
};

// The port stands in the address: as a port of the entry it would have to fit 16 bits with a sign.
Entry HttpEntry(const std::string& port) {
    return {.strAddress_IP = "127.0.0.1:" + port + "/",
            .strType = "HTTP",
            .strPort = "80",
            .nIntervalSeconds = 3600,
            .strExpectedText = "Welcome",
            .dtNextCheck = DateTime::Of(2026, 1, 1, 0, 0, 1)};
}

std::size_t CountBytes(char*, std::size_t size, std::size_t count, void* total) {
    *static_cast<std::size_t*>(total) += size * count;
    return size * count;
}

void HttpBareTransfer(benchmark::State& state) {
    LoopbackServer server(AnswerHttp(HttpAnswer(kPage)));
    const std::string url = server.Http() + "/";
    for (auto _ : state) {
        std::size_t bytes = 0;
        CURL* easy = curl_easy_init();
        curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, CountBytes);
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, &bytes);
        const CURLcode code = curl_easy_perform(easy);
        curl_easy_cleanup(easy);
        if (code != CURLE_OK || bytes != kPage.size()) state.SkipWithError("transfer failed");
    }
}
BENCHMARK(HttpBareTransfer);

void HttpTransferSlot(benchmark::State& state) {
    LoopbackServer server(AnswerHttp(HttpAnswer(kPage)));
    SystemClock clock;
    QtEvents events;
    CurlInet inet(events, clock, {});
    Inet::Request request;
    request.URL = server.Http() + "/";
    for (auto _ : state)
        benchmark::DoNotOptimize(inet.OpenURL(request));
}
BENCHMARK(HttpTransferSlot);

/// With this many safeguards on: those of web checks, then the questions about the own network.
void HttpCheck(benchmark::State& state) {
    LoopbackServer server(AnswerHttp(HttpAnswer(kPage)));
    Machine machine(100, HttpEntry(std::to_string(server.Port())));
    constexpr std::pair<const char*, const char*> kSafeguards[] = {
        {"HTTPStatusFails", "True"}, {"SameHostRedirects", "True"}, {"OwnNetwork", "127.0.0.1"}};
    for (std::int64_t i = 0; i < state.range(0); ++i)
        machine.settings.setKvSettingsColValue(kSafeguards[i].first, kSafeguards[i].second);
    for (auto _ : state)
        machine.Check(state);
    machine.ExpectAllPassed(state);
}
BENCHMARK(HttpCheck)->Arg(0)->Arg(2)->Arg(3);

/// Without and with the phases of the check kept.
void HttpCheckMeasured(benchmark::State& state) {
    LoopbackServer server(AnswerHttp(HttpAnswer(kPage)));
    Machine machine(100, HttpEntry(std::to_string(server.Port())));
    if (state.range(0) != 0) machine.settings.setKvSettingsColValue("KeepPhases", "True");
    for (auto _ : state)
        machine.Check(state);
    machine.ExpectAllPassed(state);
}
BENCHMARK(HttpCheckMeasured)->Arg(0)->Arg(1);

/// The part of such a check that the questions to so many addresses are, before one that passes.
void OwnNetworkQuestion(benchmark::State& state) {
    Machine machine(1, HttpEntry("80"));
    machine.settings.setKvSettingsColValue("OwnNetwork", state.range(0) == 1 ? "127.0.0.1" : "127.0.0.1;127.0.0.2;127.0.0.3");
    for (auto _ : state)
        machine.network.AskBeforeCheck();
}
BENCHMARK(OwnNetworkQuestion)->Arg(1)->Arg(3);

/// The same with the safeguards of the cycle; a thousand entries are due.
void HttpCheckGuarded(benchmark::State& state) {
    LoopbackServer server(AnswerHttp(HttpAnswer(kPage)));
    Machine machine(static_cast<int>(state.range(0)), HttpEntry(std::to_string(server.Port())));
    for (const char* key : {"CatchUp", "GuardBadEntries"})
        machine.settings.setKvSettingsColValue(key, state.range(1) != 0 ? "True" : "False");
    for (auto _ : state)
        machine.Check(state, state.range(1) != 0);
    machine.ExpectAllPassed(state);
}
BENCHMARK(HttpCheckGuarded)->ArgsProduct({{100, 1000}, {0, 1}})->UseRealTime();

/// The processor time of a child process that does the same check, from fork to its end.
void HttpCheckProcess(benchmark::State& state) {
    constexpr const char* kProgram = "/usr/lib/nagios/plugins/check_http";
    if (!std::filesystem::exists(kProgram)) {
        state.SkipWithError("check_http of monitoring-plugins is not installed");
        return;
    }
    LoopbackServer server(AnswerHttp(HttpAnswer(kPage)));
    const std::string port = std::to_string(server.Port());
    const auto childSeconds = [] {
        rusage usage{};
        getrusage(RUSAGE_CHILDREN, &usage);
        const auto seconds = [](const timeval& t) {
            return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
        };
        return seconds(usage.ru_utime) + seconds(usage.ru_stime);
    };
    for (auto _ : state) {
        const double before = childSeconds();
        const pid_t child = fork();
        if (child == 0) {
            if (freopen("/dev/null", "w", stdout) == nullptr) _exit(2);
            execl(kProgram, kProgram, "-I", "127.0.0.1", "-p", port.c_str(), "-u", "/", "-s", "Welcome", nullptr);
            _exit(2);
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (status != 0) state.SkipWithError("check_http failed");
        state.SetIterationTime(childSeconds() - before);
    }
}
BENCHMARK(HttpCheckProcess)->UseManualTime()->Iterations(300);

/// What the store and the accounts cost without any transfer: open, the due query over so many rows, DoSuccess with its durable
/// Update, close.
void StoreAndAccounts(benchmark::State& state) {
    Machine machine(static_cast<int>(state.range(0)), HttpEntry("80"));
    for (auto _ : state) {
        const auto conn = machine.database.TheStore().NewConnection();
        conn->SetConnectionString(machine.database.DriverString());
        conn->Open();
        const auto rs = machine.database.TheStore().NewRecordset();
        rs->Open("SELECT  * from servers where dtNextCheck <= #1/1/2026 12:00:02 AM# order by dtNextCheck ", *conn,
                 CursorType::Keyset, LockType::Pessimistic);
        if (rs->RecordCount() < 1) {
            rs->Close();
            rs->Open("SELECT * from servers order by dtNextCheck ", *conn, CursorType::Keyset, LockType::Pessimistic);
        }
        machine.accounting.DoSuccess(*rs, *conn, std::chrono::milliseconds(5));
        rs->Close();
        conn->Close();
    }
}
BENCHMARK(StoreAndAccounts)->Arg(100)->Arg(500);

void LogRecord(benchmark::State& state) {
    Machine machine(1, HttpEntry("80"));
    for (auto _ : state)
        machine.log.Info("frmMonitor:TimerMonitorDB: HTTP failure: Reason 'Connection refused'");
}
BENCHMARK(LogRecord);

void ServeMailBanner(LoopbackServer::Peer& peer) {
    peer.Send("220 ready\r\n");
    peer.ReadUntil("\r\n");
    peer.Send("221 bye\r\n");
}

void TcpBareSocket(benchmark::State& state) {
    LoopbackServer server(ServeMailBanner);
    for (auto _ : state) {
        const int fd = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(server.Port()));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        char buffer[256];
        const bool ok = connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                        recv(fd, buffer, sizeof buffer, 0) > 0 && send(fd, "QUIT\r\n", 6, 0) == 6 &&
                        recv(fd, buffer, sizeof buffer, 0) > 0;
        close(fd);
        if (!ok) state.SkipWithError("conversation failed");
    }
}
BENCHMARK(TcpBareSocket);

void TcpCheck(benchmark::State& state) {
    LoopbackServer server(ServeMailBanner);
    Machine machine(100, {.strAddress_IP = "127.0.0.1",
                          .strType = "SMTP",
                          .strPort = std::to_string(server.Port()),
                          .nIntervalSeconds = 3600,
                          .strExpectedText = "220,QUIT,221",
                          .dtNextCheck = DateTime::Of(2026, 1, 1, 0, 0, 1)});
    for (auto _ : state)
        machine.Check(state);
    machine.ExpectAllPassed(state);
}
BENCHMARK(TcpCheck);

void PingBareSocket(benchmark::State& state) {
    LinuxIcmpEcho echo;
    std::string whyNot;
    const std::string data(32, 'A');
    for (auto _ : state) {
        if (!echo.IcmpCreateFile(whyNot)) {
            state.SkipWithError(whyNot.c_str());
            return;
        }
        benchmark::DoNotOptimize(echo.IcmpSendEcho(htonl(INADDR_LOOPBACK), data, 255, std::chrono::seconds(2)));
        echo.IcmpCloseHandle();
    }
}
BENCHMARK(PingBareSocket);

void PingCheck(benchmark::State& state) {
    Machine machine(100, {.strAddress_IP = "127.0.0.1",
                          .nIntervalSeconds = 3600,
                          .strExpectedText = "1000",
                          .dtNextCheck = DateTime::Of(2026, 1, 1, 0, 0, 1)});
    for (auto _ : state)
        machine.Check(state);
    machine.ExpectAllPassed(state);
}
BENCHMARK(PingCheck);

/// A failed check beside so many old rows of `Failures`.
void FailedCheckBesideOldFailures(benchmark::State& state) {
    Machine machine(100, {.strAddress_IP = "127.0.0.1",
                          .strType = "SMTP",
                          .strPort = std::to_string(RefusingPort()),
                          .nIntervalSeconds = 3600,
                          .strExpectedText = "220",
                          .dtNextCheck = DateTime::Of(2026, 1, 1, 0, 0, 1)});
    const std::string fill =
        "sqlite3 '" + machine.database.Path() + "' \"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(state.range(0)) +
        ") INSERT INTO Failures SELECT i, i % 100 + 1, 'Group1', 'entry', '10.0.0.1', 'PING', 'ICMP', 15, 1, 3, 'None.', "
        "'Ping Timeout', '2026-01-01 00:00:00' FROM n WHERE " +
        std::to_string(state.range(0)) + " > 0\"";
    if (std::system(fill.c_str()) != 0) state.SkipWithError("sqlite3 could not fill the table");
    for (auto _ : state)
        machine.Check(state);
}
BENCHMARK(FailedCheckBesideOldFailures)->Arg(0)->Arg(200000);

}  // namespace
}  // namespace korvane

int main(int argc, char** argv) {
    setenv("QT_NO_GLIB", "1", 1);
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
