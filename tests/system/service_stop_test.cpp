// A service that is stopped or killed at the worst moments: it ends at once, nothing is lost, and the next start goes on.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/text.h"
#include "platform/linux/descriptor.h"
#include "support/loopback_server.h"
#include "support/temporary_folder.h"
#include "system/real_servers.h"
#include "system/service_run.h"

namespace korvane::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

/// A port on which somebody listens and never answers: the system itself takes the connections in.
class UnansweringPort {
public:
    UnansweringPort(const std::string& address, int port)
        : port_(port), socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const int yes = 1;
        ::setsockopt(socket_.Number(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_port = htons(static_cast<std::uint16_t>(port));
        ::inet_pton(AF_INET, address.c_str(), &name.sin_addr);
        bound_ = ::bind(socket_.Number(), reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0;
        ::listen(socket_.Number(), 10);
    }
    bool Bound() const { return bound_; }
    int Port() const { return port_; }
    /// Waits for a client, and forgets it.
    bool HasClient() const {
        pollfd client{socket_.Number(), POLLIN, 0};
        if (::poll(&client, 1, 50) != 1) return false;
        clients_.emplace_back(::accept4(socket_.Number(), nullptr, nullptr, SOCK_CLOEXEC));
        return true;
    }

private:
    int port_;
    Descriptor socket_;
    bool bound_ = false;
    mutable std::vector<Descriptor> clients_;
};

using Amid = std::function<bool()>;

class StoppedService : public Service {
protected:
    /// Starts it, stops it when `amid` is true, and starts it again until `again` is.
    void StopAmid(const Amid& amid, const Amid& again, int signal = SIGTERM) {
        const std::string before = Counts();
        Start();
        ASSERT_TRUE(Waited(amid, 120s)) << home.Read("output");
        if (signal == SIGTERM) {
            Stop();
        } else {
            process->Signal(signal);
            ASSERT_TRUE(process->Ended(kLimit));
            EXPECT_EQ(Query("PRAGMA integrity_check"), "ok\n");
        }
        output = home.Read("output");
        EXPECT_EQ(Counts(), before);
        EXPECT_EQ(Query("SELECT count(*) FROM Servers WHERE ID = 1 AND nSuccess + nFail > 0"), "0\n");
        EXPECT_EQ(Query("SELECT count(*) FROM Servers WHERE ID = 1 AND dtNextCheck > datetime('now', 'localtime')"), "0\n");
        Start();
        EXPECT_TRUE(Waited(again, 120s)) << home.Read("output");
    }
    std::string Counts() const { return Query("SELECT count(*) FROM Servers; SELECT count(*) FROM Failures"); }

    std::string output;  ///< of the run that was stopped
};

TEST_F(StoppedService, AmidAnHttpCheck) {
    const UnansweringPort web("127.0.0.1", FreePorts(1, 20000)[0]);
    Prepare("Begin=0\n", DueEntry("HTTP", "127.0.0.1/page", web.Port(), ", nTimeout", ", 300"));
    StopAmid([&] { return web.HasClient(); }, [&] { return web.HasClient(); });
}

TEST_F(StoppedService, AmidAConversation) {
    const LoopbackServer server([](LoopbackServer::Peer& peer) {
        peer.Send("220 there\r\n");
        peer.Note(peer.ReadUntil("HELO"));
        peer.ReadToEnd();
    });
    Prepare("Begin=0\n",
            DueEntry("TCP", "127.0.0.1", server.Port(), ", strExpectedText, nTimeout", ", '220,HELO here,250', 300"));
    StopAmid([&] { return server.Notes().size() == 1; }, [&] { return server.Notes().size() == 2; });
}

TEST_F(StoppedService, AmidAMail) {
    const std::string address = "127.0.0.86";
    const UnansweringPort mail(address, 25);
    if (!mail.Bound()) GTEST_SKIP() << "this user may not listen on port 25";
    Prepare("Begin=0\nServer=" + address + "\n",
            DueEntry("TCP", "127.0.0.1", RefusingPort(), ", nTries, strEmailList1, strEmailFrom",
                     ", 1, 'operator@korvane.example', 'monitor@korvane.example'"));
    for (const int signal : {SIGTERM, SIGKILL}) {
        SCOPED_TRACE(signal);
        // The outage is not accounted for before its mail is through, so the next start sends it.
        StopAmid([&] { return mail.HasClient(); }, [&] { return mail.HasClient(); }, signal);
    }
}

TEST_F(StoppedService, AmidACompaction) {
    Prepare("Begin=1\n", DueEntry("TCP", "127.0.0.1", RefusingPort()));
    Query(
        "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300000) INSERT INTO Failures (ID, IDParent, dateFail, "
        "strReason) SELECT i, i % 100, '2026-11-21 08:00:00', printf('%0250d', i) FROM n");
    StopAmid([&] { return fs::exists(home.Path("COMPACTkvdata2.mdb")); }, [&] { return manager->Count(kReady) == 1; });
    EXPECT_FALSE(Holds(output, "Done compacting")) << output;
}

TEST_F(StoppedService, AmidAPublication) {
    constexpr int kEntries = 500;
    const LoopbackServer server([](LoopbackServer::Peer& peer) { peer.ReadToEnd(); });
    Prepare("Begin=0\n");
    // One entry that keeps the cycle going until the first publication, a minute after the start, and those that it writes of.
    Query(
        "INSERT INTO Servers (ID, strDesc, strType, strAddress_IP, strPort, nIntervalSeconds, dtNextCheck) VALUES (2, 'pace', "
        "'TCP', '127.0.0.1', '" +
        std::to_string(server.Port()) + "', 5, '2026-01-01 00:00:00')");
    Query("WITH n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(kEntries + 9) +
          ") INSERT INTO Servers (ID, strDesc, strType, strAddress_IP, nSuccess, nFail, nPercentUp, nAveResponse, nAveSession, "
          "nTotalSession, dtNextCheck, datelastfail) SELECT i, 'entry ' || i, 'HTTP', '127.0.0.1/' || i, 90, 10, 90, 50, 50, 9, "
          "datetime('now', 'localtime', '+1 day'), '2026-11-21 08:00:00' FROM n");
    const auto pages = [&] {
        int count = 0;
        std::error_code none;
        for (const auto& file : fs::recursive_directory_iterator(home.Path("Reports"), none))
            count += file.path().extension() == ".htm" ? 1 : 0;
        return count;
    };
    StopAmid([&] { return pages() > 20; }, [&] { return manager->Count(kReady) == 1; });
    EXPECT_LT(pages(), 2 * kEntries);
    EXPECT_FALSE(Holds(output, "Publishing Group Report")) << output;
    for (const auto& file : fs::recursive_directory_iterator(home.Path("Reports"))) {
        if (file.path().extension() != ".htm") continue;
        EXPECT_TRUE(Holds(ToLower(ReadAll(file.path())), "</html>")) << file.path();
    }
}

}  // namespace
}  // namespace korvane::test
