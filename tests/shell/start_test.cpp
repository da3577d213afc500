// How the program starts in its order and in each of its ways, how it ends, its first-run setup, and its life as a service.
#include <gtest/gtest.h>

#include <sstream>

#include "base/error.h"
#include "shell/run/terminal_operator.h"
#include "shell/setup/first_run.h"
#include "shell/shell_world.h"

namespace korvane::start_test {

using namespace std::chrono_literals;

constexpr const char* kOldSettings =
    R"([Settings]\nBegin=0\nServer=mail.example\nReboot=True\nNumURLs=1\nbALLInDB=True\n[Settings1]\nURL=10.0.0.1\nType=PING\nServPort=ICMP\nMustHaveText=1000\nTries=3\nEmail=me\100x.com\n[Commands1]\nSCAN1=no\n)";
constexpr const char* kPrepare =
    R"(cd DATA; cp *.htm kvempty.mdb @; cp kvempty.mdb ~/kvdata2.mdb; printf '[Settings]\nBegin=0\nbALLInDB=True' >~/kvurlwatchn.ini; )";

std::string StartIn(const std::string& way) {
    const std::string name = way.substr(0, way.find(':'));
    const TemporaryFolder home, installed;
    std::string prepare = ReplaceAll(kPrepare + way.substr(name.size() + 1), "~", home.Path());
    prepare = ReplaceAll(ReplaceAll(ReplaceAll(prepare, "@", installed.Path()), "OLD", kOldSettings), "DATA", KORVANE_DIST_DIR);
    EXPECT_EQ(std::system(prepare.c_str()), 0) << prepare;
    ShellWorld w({.home = home.Path(), .dataDir = installed.Path(), .commandLine = name}), other({.home = home.Path()});
    const std::string database = w.Text("kvdata2.mdb");
    const auto writer = other.database.NewConnection();
    writer->SetConnectionString(w.rows.DriverString());
    if (name == "locked") writer->Open(), writer->BeginTrans();
    if (name == "second") other.Start();
    if (name == "older") w.rows.Add({.nTries = 1, .dtNextCheck = Value()});  // no query by date finds it; and it does not answer
    if (name == "end") w.world.After(0ms, [&] { EXPECT_FALSE(w.run.MayExit()); });
    if (Holds(way, "OLD")) w.store.faults.Add({.operation = StoreOperation::Update});  // the import's second pass goes well
    w.serviceManager.startedThis = name == "service";
    std::size_t seen = w.LogTexts().size();
    w.window = [&](const std::string& step) {
        for (const auto log = w.LogTexts(); seen < log.size(); ++seen)
            if (name == "empty" || log[seen].starts_with("#"))
                w.heard.push_back(ReplaceAll(log[seen], "frmMonitor:Form_Load: ", ""));
        if (name == "empty") w.heard.push_back("[" + step + (step == "monitors" && w.run.Loading() ? ", early]" : "]"));
        return step;
    };
    w.Start(), w.window("up");
    std::string did = ReplaceAll(ReplaceAll(w.Heard(), "Korvane Service Failed to Start.; ", ""), "Settings Saved; ", "");
    if (w.started == Run::Started::SecondInstance) return did + "is second";
    if (w.started == Run::Started::CannotGoOn) return did + (w.Text("kvdata2.mdb") == database ? "ends" : "ends, and harms");
    w.window = [&](const std::string& step) { return did += step + ", "; };
    w.RunFor(6s);
    const std::string settings = w.Text("kvurlwatchn.ini");
    w.Set("Server", "changed.since"), w.run.mnuExit_Click();
    did += w.Text("kvurlwatchn.ini") == settings ? "settings kept, " : "imported: " + w.Stored("bALLInDB") + ", ";
    did += w.files.Exists(w.PathOf("kvsetup.dat")) ? "marked, " : "";
    return did + std::to_string(w.mail.mails.size()) + " mails, " + w.Counts() + w.LogTexts().back().substr(0, 31);
}

// The command line, and how home (~) and installation (@) are changed before; then what is said, after "#" the errors of the log, and
// what becomes of it. Of the empty home all that is logged, and in brackets what the window is asked for.
TEST(Start, GoesAndEndsInEachOfItsWays) {
    Play(R"(
$ empty: rm ~/*; printf '\331\325\5\371\40\241\143\327\0\0\0\0\0\0\0\0\0\0\0\1\0\0\2\0\0\0\20\0' >~/kvdata2.mdb-journal; truncate -s 512 ~/kvdata2.mdb-journal => Korvane Starting *********************************; [Korvane Network Monitoring & Server Monitor v1.0.0 by Brellix]; determined to be first Instance; ReadInGlobalSettings.; [place, shown]; New User. Initialize Database...; copy blank database template so we can initialize.; read in ini files to convert first time database users.; All data should be in database.; calling Form_Resize; [monitors]; [up]; set up, imported: True, marked, 0 mails, 0; 0; 0; 0; Korvane Closing: Form_Terminate
$ template: rm ~/kvdata2.mdb @/kvempty.mdb => ! The necessary Template Databasee ~/kvempty...repair option).; # the blank database was not there.  can't initialize database.; ends
$ page: rm @/grouptmp.htm => ! The necessary report template ~/grouptmp.ht..repair option).; # the group template /grouptmp.htm was missing. can't continue.; ends
$ disk: rm ~/kvdata2.mdb; mkdir ~/.kvempty.mdb.new => ! Cannot write ~/kvempty.mdb: File exists; # Cannot write ~/kvempty.mdb: File exists; ends
$ Jet: printf '\0\1\0\0Standard Jet DB\0' >~/kvdata2.mdb => ! Required: Install Microsoft Jet4 components..rvane service)!; ! Click this button only after you've browsed..o close Korvane; # the database didn't open properly. sending user jet4 info.; # 0 Desc: The file '~/kvdata2.mdb' is not an ..left untouched.; ends
$ other: rm ~/kvdata2.mdb; sqlite3 ~/kvdata2.mdb 'CREATE TABLE diary (entry)' => ! Required: Install Microsoft Jet4 components..rvane service)!; ! Click this button only after you've browsed..o close Korvane; # the database didn't open properly. sending user jet4 info.; # 0 Desc: no such table: servers; ends
$ older: printf '\n[Setup]\nDone=True\n' >>~/kvurlwatchn.ini; sqlite3 ~/kvdata2.mdb 'ALTER TABLE Servers DROP COLUMN nAveSession' => the database lacks Servers.nAveSession. Check..ar as they can.; # the database lacks Servers.nAveSession. Che..ar as they can.; imported: True, marked, 0 mails, 1; 1; 0; 0; Korvane Closing: Form_Terminate
$ settings: printf '[Settings]\nServer=\0' >~/kvurlwatchn.ini => ~/kvurlwatchn.ini is no text file.; # ~/kvurlwatchn.ini is no text file.; All INI data importing into Korvane Database (one time only)...; Settings not saved: ~/kvurlwatchn.ini is no text file.; Settings not saved: ~/kvurlwatchn.ini is no text file.; Settings not saved: ~/kvurlwatchn.ini is no text file.; Settings not saved: ~/kvurlwatchn.ini is no text file.; settings kept, 0 mails, 0; 0; 0; 0; Korvane Closing: Form_Terminate
$ marked: rm ~/kvurlwatchn.ini; echo >~/kvsetup.dat => New User. Initialize Database...; imported: True, marked, 0 mails, 0; 0; 0; 0; Korvane Closing: Form_Terminate
$ locked: => The database '~/kvdata2.mdb' is locked by another program.; # The database '~/kvdata2.mdb' is locked by another program.; set up, imported: True, marked, 0 mails, 0; 0; 0; 0; Korvane Closing: Form_Terminate
$ second: => ! Korvane Multiple Instance.: Korvane is alre..stance may run.; is second
$ service: => Korvane Service Started Successfully!; Service Started.; set up, settings kept, marked, 0 mails, 0; 0; 0; 0; Korvane Closing: Form_Terminate
$ import: rm ~/kvdata2.mdb; printf 'OLD' >~/kvurlwatchn.ini => All INI data importing into Korvane Database (one time only)...; SaveDBServerDATA for 7112115002; Saving Server ; Save: entry 1 (, 10.0.0.1) was not stored: disk I/O error; SaveDBServerDATA for 7112115002; Saving Server ; SaveDBServerDATAFailCommands for 7112115002; no --> ; # Save: entry 1 (, 10.0.0.1) was not stored: disk I/O error; set up, imported: True, marked, 1 mails, 1; 1; 0; 1; Korvane Closing: Form_Terminate
$ -restart: rm ~/kvdata2.mdb; printf 'OLD' >~/kvurlwatchn.ini => All INI data importing into Korvane Database (one time only)...; SaveDBServerDATA for 7112115002; Saving Server ; Save: entry 1 (, 10.0.0.1) was not stored: disk I/O error; SaveDBServerDATA for 7112115002; Saving Server ; SaveDBServerDATAFailCommands for 7112115002; no --> ; # Save: entry 1 (, 10.0.0.1) was not stored: disk I/O error; set up, imported: True, marked, 0 mails, 1; 1; 0; 1; Korvane Closing: Form_Terminate
$ end: rm ~/kvdata2.mdb; printf 'OLD' >~/kvurlwatchn.ini => All INI data importing into Korvane Database (one time only)...; set up, imported: False, marked, 1 mails, 0; 0; 0; 0; Korvane Closing: Form_Terminate
)",
         StartIn);
}

TEST(TerminalOperator, PrintsLinesThatCannotHarmTheTerminal) {
    std::ostringstream lines, messages;
    TerminalOperator(lines, messages).StatusLine("3:04:05 PM", "banner \x1B[2J\xC3\xBC\xC2\x9B");
    EXPECT_EQ(lines.str(), "3:04:05 PM - banner  [2J\xC3\xBC  \n");
}

std::string SetUpWith(const std::string& line) {
    const Texts given = Split(ReplaceAll(line, "^", std::string(1, '\0')), '|');
    StartedWorld w;
    w.rows.AddMany({{.id = 1, .nTimeout = 99, .nFail = 7}, {.id = 2}});
    const Row other = w.rows.Server(2);
    w.serviceManager.present = given[0] != "shortcut";
    if (given[0] == "refused service") w.serviceManager.refusal = "No.";
    if (given[0] == "full disk") w.store.faults.Add({.operation = StoreOperation::Update, .nth = 2});
    w.autostart.names = {"Korvane"};
    std::string did;
    const auto ask = [&, asked = 0U](const WizardPage& page) mutable {
        did += page.title.substr(14, page.title.size() - 19) + std::string(w.serviceManager.asked.size(), '*');
        did += w.run.Service().mnuTrayNTService() || w.run.Service().mnuTrayStartup() ? "!, " : ", ";
        return page.textboxVisible && given.at(++asked) != "=" ? given[asked] : page.defaultText;
    };
    SetUpFirstRun(w.desk, ask, [&](const std::string& address) { did += "monitors " + address + ", "; });
    EXPECT_EQ(w.rows.Server(2), other);
    EXPECT_EQ(w.Logged("First-run setup ended early: disk I/O error"), given[0] == "full disk");
    for (const std::string& question : w.serviceManager.asked)
        did += question + ", ";
    did += w.autostart.last.name + (w.run.Service().mnuTrayNTService() ? " marked service, " : ", ");
    did += w.Cells("strGroup|nTimeout|nFail|strAddress_IP|strDesc|strEmailText|strEmailList1|strEmailFrom");
    for (const std::string& text : w.heard)
        did += text[0];
    return did + " " + w.Stored("Server") + " " + w.Stored("Service");
}

// How it comes back with the machine, and the three answers ("=": as it stands, "^": a NUL); then the pages ("*": the manager was
// asked, "!": the tray's command is marked), what the manager was asked, the name in the startup group, the first entry, what is
// said, and in the file the mail server and the mark of the service.
TEST(FirstRun, AsksInItsOrderAndMakesOfEachAnswerWhatItShould) {
    Play(R"(
$ service|=|=|= => Question 1, Question 2, Question 3, Info 1*, Info 2*!, Info 3*!, monitors someone@example.com, install Korvane,  marked service, Popular_Sites; 15; 0; www.example.com/default.htm; example/defaulthtm; Server example/defaulthtm Down.; someone@example.com; someone@example.com; ?S54321 mail.example.com True
$ refused service||| => Question 1, Question 2, Question 3, Info 2*!, Info 3*!, monitors , install Korvane,  marked service, Popular_Sites; 15; 0; www.example.com; Example; Server XXX Down.; someone@example.com; someone@example.com; NS54321 mail.example True
$ full disk|=|=|= => Question 1, Question 2, , Popular_Sites; 15; 0; www.example.com/default.htm; example/defaulthtm; Server example/defaulthtm Down.; someone@example.com; someone@example.com;  mail.example False
$ shortcut|HTTP://WWW.Shop.COM/Start.htm|admin@shop.com|= => Question 1, Question 2, Question 3, Info 2!, Info 3!, monitors admin@shop.com, Korvane, Popular_Sites; 15; 0; www.shop.com/start.htm; shop/starthtm; Server shop/starthtm Down.; admin@shop.com; admin@shop.com; S54321 mail.shop.com False
$ shortcut|  https://www.^comics.com |a@^b@c.de |smtp => Question 1, Question 2, Question 3, Info 2!, Info 3!, monitors a@b@c.de, Korvane, Popular_Sites; 15; 0; www.comics.com; ics; Server ics Down.; a@b@c.de; a@b@c.de; S54321 smtp False
)",
         SetUpWith);
}

TEST(Service, ObeysItsManagerAndStartsWhenItsInstallerHasEndedUnlessItWasRemoved) {
    ShellWorld w({.settings = "Begin=1"});
    ServiceMode& mode = w.run.Service();
    w.serviceManager.startedThis = true, w.serviceManager.aliveInterval = 150s;
    w.world.After(0ms, [&] { mode.Continue(), mode.Pause(); });  // in the middle of the start: the last one counts, after it
    w.Start();
    w.RunFor(301s);
    mode.Pause(), mode.Continue(), mode.Continue(), mode.Stop();
    w.serviceManager.shuttingDown = true;
    mode.Stop(), mode.Stop(true);  // frozen: the manager is not asked what the stop is for
    w.Set("MailOutbox", "True");
    w.desk.outbox.Post({"a@x", "", "", "", ""});
    w.RunFor(9s);
    w.Set("ReportPath", "/var/www/reports/");
    mode.HandOver(), mode.InstallService("K", true), mode.InstallService("K", true);
    EXPECT_EQ(w.serviceManager.program.folders, Texts{"/var/www/reports"});
    mode.FollowSettings(), mode.HandOver(), mode.InstallService("K", false), mode.HandOver();
    w.heard = w.serviceManager.told;
    w.heard.insert(w.heard.end(), w.serviceManager.asked.begin(), w.serviceManager.asked.end());
    EXPECT_EQ(
        w.Heard() + std::to_string(w.exits),
        R"(Service Started.; READY; Service Paused.; ALIVE; ALIVE; Service Already Paused.; Service Continuing (monitoring again); Service Still Continuing.; STOPPING; Service Stopped.; STOPPING; Service Shutting Down. Monitoring stopping; Service Stopped.; STOPPING; Service Stopped.; Service Stopped. Alert path not yet proven.; Service Stopped. Alert path last proven 11/21/2026 3:05:02 PM.; install K; install K; update Korvane; start K; uninstall K of ~; 3)");
}

}  // namespace korvane::start_test
