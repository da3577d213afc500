// What the command line makes of measured phases, of settings and of certificates that end soon, for people and for programs.
#include <QJsonDocument>
#include <sstream>

#include "shell/cli/print_phases.h"
#include "shell/cli/session.h"
#include "shell/list/entry_csv.h"
#include "shell/list/entry_detail.h"
#include "shell/list/server_list.h"
#include "shell/options/setting_change.h"
#include "shell/shell_world.h"
#include "store/last_checks.h"

namespace korvane::cli_test {

using namespace std::chrono_literals;

std::string Compact(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

TEST(Phases, ThoseThatNeverRanAreAbsent) {
    const DateTime now = DateTime::Of(2026, 11, 21, 15);
    const struct {
        CheckPhases phases;
        std::string lines, json;
    } rows[] = {
        {{}, "", "{}"},
        {{.whole = 7ms}, "whole  7.0 ms|", R"({"leftOver":7,"whole":7})"},
        {{.connect = 0ms, .whole = 0ms},
         "connect    0.0 ms|whole      0.0 ms|left over  0.0 ms|",
         R"({"connect":0,"leftOver":0,"whole":0})"},
        // After a redirect that took 40 ms.
        {{.connect = 250us, .tls = 9ms, .firstByte = 1000ms, .whole = 1049250us, .certificateEnd = now + 48h},
         "connect       0.3 ms|TLS           9.0 ms|first byte  1,000 ms|whole       1,049 ms|left over    40.0 ms|"
         "certificate ends in 2 d, on 11/23/2026 3:00:00 PM|",
         R"({"certificateEnd":"11/23/2026 3:00:00 PM","connect":0.25,"firstByte":1000,"leftOver":40,"tls":9,"whole":1049.25})"},
        {{.name = 3ms, .steps = {{"2\"\x1B\xC3\xA9", 4ms}}},
         "name    3.0 ms|'2\" \xC3\xA9'  4.0 ms|",
         "{\"name\":3,\"steps\":[{\"awaited\":\"2\\\"\\u001b\xC3\xA9\",\"milliseconds\":4}]}"},
    };
    for (const auto& row : rows) {
        std::string lines;
        for (const std::string& line : PrintPhases(row.phases, now))
            lines += line + "|";
        EXPECT_EQ(lines, row.lines);
        EXPECT_EQ(Compact(PhasesForJson(row.phases)), row.json);
    }
}

std::string Said(StartedWorld& w, const std::vector<std::string>& words, bool isShared = false) {
    std::ostringstream out;
    CommandOperator person(out, out);
    const RunPorts ports = w.Ports();
    RunOptions options;
    options.dir = w.home;
    options.isGuest = true;
    options.isShared = isShared;
    const int end = RunCommandWords(words, {ports, options, person, out, out, 0, "1"});
    return std::to_string(end) + " " + out.str();
}

TEST(Passwords, AreInNoOutputWithTheSafeguardAndComeBackFromAnExport) {
    for (const bool on : {false, true}) {
        StartedWorld w({.settings = on ? "HidePasswords=True" : ""});
        const std::string expected = "+OK,PASS s3cret,+OK";
        w.rows.Add({.strCurStatus = "DOWN"});
        w.rows.Change("Servers", 1, {{"strAddress_IP", "u:s3cret@h"}, {"strDesc", "Login page"}, {"strExpectedText", expected}});
        w.rows.AddRow("Failures", Columns("ID IDParent nFailCount nFailMax dateFail strAddress_IP strReason", 1, 1, 3, 3,
                                          w.world.clock.Now(), "u:s3cret@h", "no answer to '" + expected + "'"));
        for (const std::string word :
             {"list", "show 1", "show 1 --json", "why 1", "why 1 --json", "failures", "failures --json", "export",
              "export --json", "list --json", "set 1 address=u:s3cret2@h", "pause u:s3cret3@h"}) {
            const std::string text = Said(w, Split(word, ' '));
            EXPECT_EQ(Holds(text, "s3cret"), !on) << text;
            EXPECT_TRUE(Holds(text, "[not shown]") == on || word.starts_with("p")) << text;
        }
        EXPECT_TRUE(Holds(Said(w, {"show", "1", "--show-passwords"}), "u:s3cret2@h"));
        const ServerRow row = LoadServerList(w.desk, false).at(0);
        const EntryDetail detail = LoadEntryDetail(w.desk, 1, w.world.clock.Now());
        for (const std::string& text :
             {row.cells[column::FullName], row.cells[column::ScanText], detail.strAddress_IP, detail.failures.at(0).strReason})
            EXPECT_EQ(Holds(text, "s3cret"), !on) << text;
        EXPECT_EQ(row.Name(), "Login page");
        const std::string text = ExportEntries(w.desk, false);
        EXPECT_EQ(PlanImport(w.desk, text).Summary(), "0 added, 0 changed, 1 unchanged, 0 refused.") << text;
        EXPECT_EQ(PlanImport(w.desk, ReplaceAll(text, "\n1,", "\n,")).Count(ImportStep::Refused), on ? 1u : 0u);
    }
}

TEST(Settings, OnlyPasswordsAreHidden) {
    std::string hidden;
    for (const SettingInfo& each : AllSettings())
        if (each.isPassword) hidden += each.key + " ";
    EXPECT_EQ(hidden, "SMTPPass1 SMTPPass2 ProveMailPass ");
}

TEST(Add, OfASharedListFollowsMaxEntries) {
    StartedWorld w({.settings = "MaxEntries=1"});
    w.rows.Add({});
    EXPECT_TRUE(Holds(Said(w, {"add", "a.example"}, true), "1 is the maximum number of Server Entries."));
    EXPECT_TRUE(Holds(Said(w, {"add", "a.example"}), "added (id "));
}

TEST(Status, NamesCertificatesThatEndSoonAndStaysAsItIs) {
    for (const std::string days : {"", "20"}) {
        StartedWorld w({.settings = "CertWarnDays=" + days});
        w.rows.AddMany({{.strDesc = "now"}, {.strDesc = "so\non\x1B"}, {.strDesc = "late"}, {.strDesc = "none"}});
        const auto says = [&](const std::string& option) { return Said(w, {"status", option}); };
        const std::string line =
            "3 KORVANE UNKNOWN - 0 down, 0 failing, 4 up, 0 down-time, 0 inactive; no monitor runs with this home | "
            "down=0 failing=0 up=4 down-time=0 inactive=0\n";
        EXPECT_EQ(says("--home=x"), line) << "before the first check there is no table";
        for (int id = 1; id <= 3; ++id) {
            const DateTime end = w.world.clock.Now() + (id - 1) * 20 * 24h + (id - 2) * 1s;
            LastChecks(w.database).Write(*w.rows.Connected(), {id, {}, {.certificateEnd = end}});
        }
        const std::string ends = "now: certificate has ended 1 s ago, on 11/21/2026 2:59:59 PM";
        EXPECT_EQ(says("--home=x"),
                  line + (days.empty() ? "" : ends + "\nso on : certificate ends in 20 d, on 12/11/2026 3:00:00 PM\n"));
        const std::string json = says("--json");
        EXPECT_EQ(Holds(json, "\"certificates\":[\"" + ends + "\",\"so"), !days.empty()) << json;
        EXPECT_TRUE(QJsonDocument::fromJson(QByteArray::fromStdString(json.substr(2))).isObject()) << json;
    }
}

}  // namespace korvane::cli_test
