// The published pages with the installation's templates and pictures: in a real browser, and on a disk where the program is
// killed while it writes them.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "base/text.h"
#include "platform/linux/linux_files.h"
#include "platform/qt/sql_store.h"
#include "reports/reports_rig.h"
#include "store/schema.h"
#include "support/qt_application.h"
#include "system/process.h"

namespace korvane::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr const char* kTypes[] = {"HTTP", "HTTPS", "PING", "DNS",  "ECHO", "FINGER", "FTP",  "GOPHER", "IMAP",      "IMAP4",
                                  "NNTP", "POP",   "POP2", "POP3", "SMTP", "SNMP",   "SNPP", "TELNET", "OTHER PORT"};
constexpr const char* kStatuses[] = {"UP", "UP", "UP", "DOWN", "Failing", "Down-Time", "Inactive"};

// The program's folder as it is installed, with a database of two customers, each type and each status.
void Install(const PrivateFolder& home) {
    const fs::path installed = KORVANE_DIST_DIR;
    fs::copy(installed / "i", home.Path("i"));
    fs::copy(installed / "kvempty.mdb", home.Path("kvdata2.mdb"));
    for (const auto& file : fs::directory_iterator(installed)) {
        if (file.path().extension() == ".htm") fs::copy(file, home.Path());
    }
    std::string sql = "BEGIN;";
    int id = 0;
    for (const char* type : kTypes) {
        const std::string status = kStatuses[++id % std::size(kStatuses)];
        const std::string number = std::to_string(id);
        const bool failed = status != "UP";
        sql +=
            "INSERT INTO Servers (ID, idCustomer, strGroup, strDesc, strAddress_IP, strType, strCurStatus, nAveResponse, "
            "nAveSession,"
            " nSuccess, nFail, nPercentUp, datelastcheck, datelastfail, datelastreset) VALUES (" +
            number + "," + std::to_string(id % 2) + ",'" + (id % 3 == 0 ? "Büro" : "Web") + std::to_string(id % 2) +
            "','Entry & co. " + number + "','server" + number + ".example.org','" + type + "','" + status + "'," +
            std::to_string(id * 137) + ",90.5,12345,67," + (failed ? "98.7" : "100") + ",'2026-11-21 15:03:00'," +
            (failed ? "'2026-11-21 14:04:00'" : "NULL") + ",'2026-01-01 00:00:00');";
    }
    const std::string numbers = "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 59) ";
    sql += numbers +
           "INSERT INTO Failures SELECT ID * 100 + i, ID, strGroup, strDesc, strAddress_IP, strType, strPort, 15, 1 + i % 3, 3,"
           " 'None.<ul><li>noted</ul><script>document.title = 7</script>', 'The server did not answer.', "
           "datetime('2026-11-21 14:04:00', '-' || i || ' hours')"
           " FROM Servers, n;";
    sql += numbers +
           "INSERT INTO Response (id, idParent, txtType, dtCur, nAveResponse) SELECT ID * 1000 + i, ID, 'hour',"
           " datetime('2026-11-21 15:04:00', '-' || (i * 50) || ' minutes'), 80 + i % 7 FROM Servers, n WHERE i < 26;";
    sql += numbers +
           "INSERT INTO Response (id, idParent, txtType, dtCur, nAveResponse) SELECT ID * 1000 + 500 + i, ID, 'day',"
           " datetime('2026-11-21 14:04:00', '-' || (i * 2) || ' days'), 80 + i % 7 FROM Servers, n; COMMIT;";
    Rows(home.Path("kvdata2.mdb"), sql);
}

// As a run of the program would.
std::string Publish(const PrivateFolder& home, int times = 1) {
    NeedQtApplication();
    VirtualWorld world(DateTime::Of(2026, 11, 21, 15, 4, 5));
    QtSqlStore store(KindOfColumn);
    LinuxFiles files;
    const std::string dir = home.Path().substr(0, home.Path().size() - 1);
    ReportsRig rig(files, store, world.events, world, dir);
    std::string strErr;
    for (int i = 0; i < times; ++i)
        strErr += rig.Publish();
    return strErr;
}

std::vector<fs::path> PagesBelow(const std::string& folder) {
    std::vector<fs::path> pages;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".htm") pages.push_back(entry.path());
    }
    return pages;
}

// A page that opens all the others in frames, wide and narrow, and writes down what it sees in them.
std::string LookingPage(const std::vector<fs::path>& pages, const fs::path& reports) {
    std::string list;
    for (const fs::path& page : pages)
        list += "\"" + fs::relative(page, reports).string() + "\",";
    return R"(<!DOCTYPE html><meta charset="utf-8"><body><pre id="seen"></pre><script>
const seen = document.getElementById("seen");
const say = (...words) => seen.append(words.join("|") + "\n");
async function look(page, width) {
  const frame = document.createElement("iframe");
  Object.assign(frame, {width, height: 800, src: page});
  document.body.append(frame);
  await new Promise(loaded => frame.onload = loaded);
  const inside = frame.contentDocument;
  for (const image of inside.images) if (!image.complete || !image.naturalWidth) say("no picture", page, image.src);
  for (const link of inside.querySelectorAll("[href],[src]")) say("link", page, decodeURI(link.href || link.src));
  const over = inside.documentElement.scrollWidth - frame.clientWidth;
  if (over > 0) say("wider", page, width, over);
  if (inside.title == "7") say("script", page);
  say("looked", page, inside.images.length);
  frame.remove();
}
(async () => { for (const page of [)" +
           list + R"(]) for (const width of [1280, 390]) await look(page, width); say("done"); })();
</script></body>)";
}

TEST(ReportPages, ShowInABrowserWithAllTheirPicturesAndLinks) {
    KORVANE_NEEDS("chromium");
    const PrivateFolder home;
    Install(home);
    ASSERT_EQ(Publish(home), "");
    const std::string reports = home.Path("Reports");
    const auto pages = PagesBelow(reports);
    ASSERT_EQ(pages.size(), 2 + 4 + 2 * std::size(kTypes) + 11);  // groups, summaries, graphs, failures
    home.Write("Reports/look.htm", LookingPage(pages, reports));

    Process browser({"chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
                     "--allow-file-access-from-files", "--virtual-time-budget=60000", "--enable-logging=stderr", "--v=0",
                     "--user-data-dir=" + home.Path("browser"), "--dump-dom", "file://" + reports + "/look.htm"},
                    home);
    ASSERT_TRUE(browser.Ended(60s));
    const std::string output = home.Read("output");
    EXPECT_TRUE(Holds(output, "\ndone\n")) << output.substr(0, 4000);
    std::set<std::string> links;
    std::size_t looked = 0;
    for (const std::string& line : Split(output, '\n')) {
        const std::vector<std::string> words = Split(line, '|');
        const bool console = Holds(line, "CONSOLE") &&
                             !Holds(line, "source: chrome://") &&                  // the browser's own windows are slow at times
                             !Holds(line, "'script-src' was not explicitly set");  // it does not run a script, and says so
        EXPECT_FALSE(words[0] == "no picture" || words[0] == "wider" || words[0] == "script" || console) << line;
        if (words[0] == "link") links.insert(words.at(2));
        if (words[0] == "looked") ++looked;
    }
    EXPECT_EQ(looked, 2 * pages.size());
    EXPECT_GT(links.size(), pages.size());
    for (const std::string& link : links) {
        EXPECT_TRUE(link.starts_with("file://") || link.starts_with("data:")) << "a request to somewhere else: " << link;
        EXPECT_TRUE(link.starts_with("data:") || fs::is_regular_file(link.substr(7))) << link;
    }
    // Every page can be reached from the pages of groups.
    for (const fs::path& page : pages)
        EXPECT_TRUE(page.filename() == "groups.htm" || links.contains("file://" + page.string())) << page;
}

TEST(ReportPages, AreWholeWheneverTheProgramIsKilled) {
    const PrivateFolder home;
    Install(home);
    ASSERT_EQ(Publish(home), "");
    const std::size_t published = PagesBelow(home.Path("Reports")).size();
    std::mt19937 random(20261121);
    for (int round = 0; round < 100; ++round) {
        std::array<int, 2> begins{};
        ASSERT_EQ(pipe(begins.data()), 0);
        const pid_t publisher = fork();
        if (publisher == 0) {
            if (write(begins[1], "b", 1) == 1) Publish(home, 1'000'000);
            _exit(1);
        }
        char word = 0;
        EXPECT_EQ(read(begins[0], &word, 1), 1);
        std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution(3'000, 60'000)(random)));
        kill(publisher, SIGKILL);
        waitpid(publisher, nullptr, 0);
        for (const int end : begins)
            close(end);
        ASSERT_EQ(Rows(home.Path("kvdata2.mdb"), "PRAGMA integrity_check"), "ok\n") << round;
        const auto pages = PagesBelow(home.Path("Reports"));
        ASSERT_EQ(pages.size(), published);
        for (const fs::path& page : pages)
            ASSERT_TRUE(home.Read(fs::relative(page, home.Path()).string()).ends_with("</html>\n\r\n"))
                << page << " in " << round;
    }
    EXPECT_EQ(Publish(home), "");
}

}  // namespace
}  // namespace korvane::test
