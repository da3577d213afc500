// Programs of the system: commands as real processes, which are given nothing of ours and of which nothing stays; programs that are
// run to their end; what opens a page and plays a sound.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>

#include "base/text.h"
#include "platform/linux/desktop_entries.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/program_runner.h"
#include "platform/real_ports.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace korvane::commands_test {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

struct CommandsTest : RealPorts {
    /// Ended, and taken out of the system's table.
    bool Vanishes(int pid) {
        return Wait([&] { return !fs::exists("/proc/" + std::to_string(pid)); });
    }
    /// What the command writes to its file "out", or why it did not start.
    std::string Run(const std::string& command) {
        fs::remove(out);
        const std::string why = ErrorOf([&] { EXPECT_TRUE(Vanishes(processes.Shell(command, WindowStyle::Normal))) << command; });
        return why.empty() ? ReadAll(out) : why;
    }
    void Write(const std::string& name, const std::string& text, fs::perms mode = fs::perms(0600)) {
        fs::create_directories(fs::path(folder + name).parent_path());
        std::ofstream(folder + name) << text;
        fs::permissions(folder + name, mode);
    }

    LinuxProcesses processes{events};
    const RunProgram run = ProgramRunner(events, clock);
    const TemporaryFolder temporary;
    const std::string folder = temporary.Path() + "/", out = folder + "out";
};

TEST_F(CommandsTest, RunInTheShellOrSayWhyNotAndHaveNothingOfOurs) {
    Write("data", "nothing to run");
    Write("script", "echo from the script > " + out, fs::perms(0700));  // which names no interpreter
    EXPECT_EQ(Run("no-such-program -x"), "No such file or directory");
    EXPECT_EQ(Run(folder + "data"), "Permission denied");
    EXPECT_EQ(Run("echo 'two  blanks' \"$((1 + 1))\" | tr b B > " + out), "two  Blanks 2\n");
    EXPECT_EQ(Run(folder + "script"), "from the script\n");
    const Descriptor ours(::open("/dev/zero", O_RDONLY));  // without O_CLOEXEC, as a careless library would leave it
    sigset_t all, before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, &before);
    const auto pipes = ::signal(SIGPIPE, SIG_IGN);
    const int sleeper = processes.Shell("sleep 600", WindowStyle::Normal);
    ::signal(SIGPIPE, pipes);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    const std::string process = "/proc/" + std::to_string(sleeper);
    const auto openIn = [](const std::string& of) {
        return std::distance(fs::directory_iterator(of + "/fd"), fs::directory_iterator());
    };
    EXPECT_TRUE(Wait([&] { return openIn(process) == 3; })) << "its loader has a library open for a moment";
    for (const char* file : {"/fd/0", "/fd/1", "/fd/2"})
        EXPECT_EQ(fs::read_symlink(process + file), "/dev/null");
    const std::string had = ReadAll(process + "/status");
    ::kill(sleeper, SIGKILL);
    EXPECT_TRUE(Holds(had, "SigBlk:\t0000000000000000")) << had;
    EXPECT_EQ(std::stoull(had.substr(had.find("SigIgn:") + 8, 16), nullptr, 16) & 0x7FFFFFFF, 0U) << had;
    const auto open = openIn("/proc/self");
    std::vector<int> pids(300);
    for (int& pid : pids)
        pid = processes.Shell("true", WindowStyle::Normal);
    EXPECT_LT(openIn("/proc/self"), open + 150);  // also while none of them has been reaped
    EXPECT_TRUE(std::all_of(pids.begin(), pids.end(), [&](int pid) { return Vanishes(pid); }));
    EXPECT_LE(openIn("/proc/self"), open + 1);
}

TEST_F(CommandsTest, GetVariablesThatNobodyElseGets) {
    ::setenv("KORVANE_TRIED", "inherited", 1);
    Write("look", "printf '%s|%s' \"$KORVANE_TRIED\" \"${KORVANE_OTHER-none}\" > " + out, fs::perms(0700));
    for (const std::string& command : {folder + "look", "sh " + folder + "look", "sh '" + folder + "look'"}) {
        processes.Shell(command, WindowStyle::Normal, {{"KORVANE_TRIED", "a 'b' $(c)\n"}, {"KORVANE_OTHER", ""}});
        EXPECT_TRUE(Wait([&] { return ReadAll(out) == "a 'b' $(c)\n|"; })) << command;
        EXPECT_EQ(Run(command), "inherited|none");
    }
    ::unsetenv("KORVANE_TRIED");
}

// Stands for the hosts of the manual's recipes and for the system's log: writes down what came.
constexpr const char* kStandIn = R"(
import http.server, json, os, socket, ssl, urllib.parse
log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
log.bind("log")
class Handler(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"])).decode()
        form = "form" in self.headers["Content-Type"]
        note(self.headers["Host"] + self.path, urllib.parse.parse_qsl(body) if form else json.loads(body))
        self.send_response(200)
        self.end_headers()
def note(*words):
    open("new", "w", encoding="utf-8").write(" ".join(map(str, words)))
    os.rename("new", "out")
server = http.server.HTTPServer(("127.0.0.1", 0), Handler)
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain("both")
server.socket = context.wrap_socket(server.socket, server_side=True)
open(".curlrc", "w").write('connect-to = "::127.0.0.1:%d"\ncacert = "%s/both"\n' % (server.server_port, os.getcwd()))
note("ready")
server.handle_request()
server.handle_request()
note(log.recv(2000).decode().split(" korvane: ")[1])
)";

TEST_F(CommandsTest, OfTheManualPostToAChatAPushServiceAndTheSystemsLog) {
    const std::string manual = ReadAll(KORVANE_SOURCE_DIR "/docs/manual.md");
    const auto begin = manual.find("\n## Commands know what happened\n");
    Write("logger", "#!/bin/sh\nexec /usr/bin/logger --socket " + folder + "log \"$@\"", fs::perms(0700));
    Write("stand-in", kStandIn);
    const int pid =
        processes.Shell("cd " + folder +
                            " && exec > trouble 2>&1 && openssl req -x509 -newkey rsa:2048 -nodes -subj /CN=x -addext "
                            "subjectAltName=DNS:*.example.com -keyout both -out both && exec /usr/bin/python3 stand-in",
                        WindowStyle::Normal);
    const Variables variables{{"KORVANE_NAME", "B\u00FCro \"A\\n\" & `touch bad` $(touch bad) %s"},
                              {"KORVANE_ADDRESS", "web"},
                              {"KORVANE_STATE", "DOWN"},
                              {"KORVANE_REASON", "<no> answer;"},
                              {"KORVANE_SINCE", "2026-11-21 15:04:05"},
                              {"CURL_HOME", folder},
                              {"PATH", folder + ":" + ::getenv("PATH")}};
    std::string arrived;
    const auto arrives = [&] {
        EXPECT_TRUE(Wait([&] { return fs::exists(out); })) << arrived << ReadAll(folder + "trouble");
        arrived += ReadAll(out) + "\n";
        fs::remove(out);
    };
    arrives();
    for (const std::string& line : Split(manual.substr(begin, manual.find("\n## ", begin + 1) - begin), '\n')) {
        if (!line.starts_with("    ")) continue;
        processes.Shell(line, WindowStyle::Normal, variables);
        arrives();
    }
    ::kill(pid, SIGKILL);
    EXPECT_EQ(arrived, R"(ready
chat.example.com/hooks/KEY {'text': 'Büro "A\\n" & `touch bad` $(touch bad) %s is DOWN. <no> answer;'}
push.example.com/messages [('token', 'KEY'), ('title', 'Büro "A\\n" & `touch bad` $(touch bad) %s is DOWN'), ('message', 'Since 2026-11-21 15:04:05. <no> answer;')]
Büro "A\n" & `touch bad` $(touch bad) %s (web) is DOWN since 2026-11-21 15:04:05. <no> answer;
)");
}

TEST_F(CommandsTest, AProgramGivesItsStatusAndWhatItSaidOrEndsAtTheLimitWithAllThatItStarted) {
    const auto shell = [&](const std::string& line) { return run({"sh", "-c", line}, 30s); };
    EXPECT_EQ(run({"printf", "%s|", "a b", "$HOME"}, 30s).output, "a b|$HOME|");
    EXPECT_EQ(shell("echo out; echo err >&2; cat; head -c 200000 /dev/zero").output.size(), 65536U);
    EXPECT_EQ(shell("exit 3").status * 1000 + shell("kill -9 $$").status, 3137);
    EXPECT_EQ(::kill(std::stoi(shell("sleep 600 & echo $!").output), SIGKILL), 0);  // it holds the pipe, and does not hold us up
    EXPECT_THROW(run({"sh", "-c", "sleep 600 & echo $! > " + out + "; wait"}, 1s), Error);
    const std::string stat = "/proc/" + TrimAll(ReadAll(out)) + "/stat";  // its end is the business of whoever inherits it
    EXPECT_TRUE(Wait([&] { return ReadAll(stat).empty() || Holds(ReadAll(stat), ") Z "); }));
}

TEST_F(CommandsTest, PagesAreOpenedByTheFirstChoiceThatIsInstalled) {
    std::map<std::string, std::string> variables = {
        {"HOME", folder + "home"}, {"XDG_CONFIG_DIRS", folder + "etc"}, {"XDG_DATA_DIRS", folder + "none:" + folder + "usr"}};
    const std::tuple<const char*, const char*, const char*> steps[] = {
        // a file, its text, and what opens pages then
        {"usr/applications/mimeinfo.cache", "[MIME Cache]\ntext/html=gone.desktop;cached.desktop;\n", ""},
        {"usr/applications/cached.desktop", "", "cached.desktop"},
        {"usr/applications/own.desktop", "", "cached.desktop"},
        {"etc/mimeapps.list", "[Added Associations]\ntext/html=own.desktop\n", "own.desktop"},
        {"home/.config/mimeapps.list", "[Default Applications]\r\n text/html = gone.desktop;cached.desktop;\r\n",
         "cached.desktop"}};
    for (const auto& [file, text, entry] : steps) {
        Write(file, text);
        EXPECT_EQ(DefaultDesktopEntry(kPageKind, [&](const std::string& name) { return variables[name]; }), entry) << text;
    }
    EXPECT_TRUE(PassesInChild([&] {
        ::setenv("PATH", folder.c_str(), 1);
        ::unsetenv("BROWSER");
        std::string why;
        const auto notOpened = [&](const std::string& reason) { why = reason; };
        EXPECT_TRUE(!processes.OpenPage("/page", notOpened) && why == "xdg-open: No such file or directory") << why;
        fs::create_symlink("/bin/false", folder + "xdg-open");  // as one that knows no program
        EXPECT_TRUE(processes.OpenText("/text", notOpened));
        EXPECT_TRUE(Wait([&] { return why == "xdg-open ended with status 1"; }));
        ::setenv("BROWSER", ("no-such-browser:/bin/cp %s " + out).c_str(), 1);
        Write("it's a page.htm", "text");
        processes.OpenPage(folder + "it's a page.htm", notOpened);
        EXPECT_TRUE(Wait([&] { return ReadAll(out) == "text"; }));
        return !HasFailure();
    }));
}

}  // namespace korvane::commands_test
