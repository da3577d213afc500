// What a mail costs: on the wire to a server on this machine, while a server is silent, and for a large attachment.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <string>

#include "notify/encodings.h"
#include "notify/esmtp.h"
#include "notify/plain_mailer.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"
#include "support/loopback_server.h"
#include "support/qt_application.h"
#include "support/recording_operator.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

/// Answers each command at once.
void Serve(LoopbackServer::Peer& peer) {
    peer.Send("220 ready\r\n");
    for (int command = 0; command < 3; ++command) {  // EHLO, MAIL, RCPT
        peer.ReadUntil("\r\n");
        peer.Send("250 ok\r\n");
    }
    peer.ReadUntil("\r\n");
    peer.Send("354 go on\r\n");
    peer.ReadUntil("\r\n.\r\n");
    peer.Send("250 queued\r\n");
    peer.ReadUntil("\r\n");
    peer.Send("221 bye\r\n");
}

struct Desk {
    Desk() { NeedQtApplication(); }
    SystemClock clock;
    QtEvents events;
    LinuxFiles files;
    LinuxGuidSource guids;
    QtTcpSocket socket;
    TemporaryFolder home;
    RecordingOperator person;
    StatusLog status{person, clock};
    Log log{files, clock, home.Path(), "1.0.0"};
};

double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void BM_EsmtpMailToThisMachine(benchmark::State& state) {
    Desk desk;
    LoopbackServer server(Serve);
    for (auto _ : state) {
        clsEsmtp mail({desk.files, desk.clock, desk.events, desk.guids}, desk.socket);
        mail.SmtpHost = "127.0.0.1";
        mail.smtpport = server.Port();
        mail.emailFromAddress = "me@example.com";
        mail.emailTo = "you@example.com";
        mail.plainMessage = "A server failed.";
        if (!mail.SendMail()) state.SkipWithError(mail.ErrorLog.c_str());
    }
}
BENCHMARK(BM_EsmtpMailToThisMachine)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PlainMailToThisMachine(benchmark::State& state) {
    Desk desk;
    LoopbackServer server(Serve);
    PlainMailer mailer({desk.socket, desk.clock, desk.events, desk.person, desk.status, desk.log}, server.Port());
    std::string error;
    for (auto _ : state) {
        if (!mailer.SendPlainMail("you@example.com", "you", "me", "me@example.com", "Down", "A server failed.", "127.0.0.1", "",
                                  error, "", ""))
            state.SkipWithError(error.c_str());
    }
}
BENCHMARK(BM_PlainMailToThisMachine)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The whole 30 seconds in which a server that takes the connection says nothing; `cpu_ms` is what the process used of them.
void BM_SilentServer(benchmark::State& state) {
    Desk desk;
    LoopbackServer server([](LoopbackServer::Peer& peer) { peer.ReadToEnd(); });
    double cpu = 0;
    for (auto _ : state) {
        clsEsmtp mail({desk.files, desk.clock, desk.events, desk.guids}, desk.socket);
        mail.SmtpHost = "127.0.0.1";
        mail.smtpport = server.Port();
        const double before = CpuSeconds();
        if (mail.SendMail()) state.SkipWithError("the server was not silent");
        cpu += CpuSeconds() - before;
    }
    state.counters["cpu_ms"] = benchmark::Counter(cpu * 1000, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_SilentServer)->Unit(benchmark::kSecond)->UseRealTime()->Iterations(1);

/// Reading and encoding 20 MB with a timer of 10 ms beside it: `longest_ms` is the longest time that timer had to wait.
void BM_AttachmentOf20MB(benchmark::State& state) {
    Desk desk;
    const std::string file = desk.home.Path() + "/big.bin";
    desk.files.Replace(file, std::string(20 << 20, '\xA5'));
    QtTimers timers;
    auto last = desk.clock.GetTickCount();
    std::chrono::milliseconds longest{0};
    const auto timer = timers.NewTimer("beside");
    timer->SetInterval(10ms);
    timer->OnTick([&] {
        longest = std::max(longest, desk.clock.GetTickCount() - last);
        last = desk.clock.GetTickCount();
    });
    timer->SetEnabled(true);
    for (auto _ : state) {
        MailProperties mail;
        mail.AttachFiles = {file};
        MailMessage message({desk.files, desk.clock, desk.events, desk.guids}, mail);
        last = desk.clock.GetTickCount();
        message.Prepare({});
    }
    state.counters["longest_ms"] = static_cast<double>(longest.count());
}
BENCHMARK(BM_AttachmentOf20MB)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The floor for the one above: the same bytes encoded in one go.
void BM_Base64Of20MB(benchmark::State& state) {
    const std::string contents(20 << 20, '\xA5');
    for (auto _ : state)
        benchmark::DoNotOptimize(Base64Encode(contents));
}
BENCHMARK(BM_Base64Of20MB)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace korvane

BENCHMARK_MAIN();
