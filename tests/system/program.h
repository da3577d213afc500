// The program as people get it, in a home of its own and started as a user, a desktop or a service manager starts it; and other
// programs beside it. Nothing of them is left when their objects are gone, or when the test dies first.
#pragma once

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "base/text.h"
#include "platform/linux/descriptor.h"
#include "support/temporary_folder.h"

namespace korvane::test {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr auto kLimit = 40s;  ///< nothing here takes so long
const std::string kDist = KORVANE_DIST_DIR;
const std::string kSystemTests = KORVANE_SOURCE_DIR "/tests/system/";
const std::string kBegin = "Begin=0\n";  ///< a setting: monitoring begins at once

inline bool Waited(const std::function<bool()>& condition, std::chrono::milliseconds limit = kLimit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(30ms);
    }
    return true;
}

/// What a shell's command prints.
inline std::string Answer(const std::string& command) {
    FILE* output = popen(("PATH=$PATH:/usr/sbin:/sbin; " + command).c_str(), "r");
    std::string text;
    for (int byte = fgetc(output); byte != EOF; byte = fgetc(output))
        text += static_cast<char>(byte);
    pclose(output);
    return text;
}

/// Ends the test as skipped where one of these programs is not installed.
#define KORVANE_NEEDS(programs)                                                                                           \
    if (const auto lacks = Answer("for p in " programs "; do command -v $p >/dev/null || echo $p; done"); !lacks.empty()) \
    GTEST_SKIP() << TrimAll(lacks) << ": not installed (scripts/setup --test)"

inline std::size_t Count(const std::string& text, const std::string& part) {
    return (text.size() - ReplaceAll(text, part, "").size()) / part.size();
}

/// Whether this user may have mounts that nobody else sees; and words before a program that give it those of a shell's commands.
inline bool OwnMounts() {
    return Answer("unshare -m true 2>&1").empty();
}
inline std::string Mounted(const std::string& commands) {
    return "unshare -m sh -ec '" + commands + "; exec \"$0\"' ";
}

struct Folder : TemporaryFolder {
    std::string At(const std::string& name) const { return Path() + "/" + name; }
    void Write(const std::string& name, const std::string& text) const { std::ofstream(At(name)) << text; }
    void WriteScript(const std::string& name, const std::string& text) const {
        Write(name, "#!/bin/sh\n" + text);
        fs::permissions(At(name), fs::perms::owner_all);
    }
    std::string Read(const std::string& name) const { return ReadAll(At(name)); }
};

/// A shell's command in a process group of its own. It begins in the folder, where its output goes to the file "output".
class Process {
public:
    Process(const std::string& command, const Folder& folder) {
        const std::string all = "cd " + folder.Path() + "; exec >>output 2>&1 </dev/null; PATH=$PATH:/usr/sbin:/sbin; " + command;
        if ((pid_ = fork()) == 0) {
            setpgid(0, 0);
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            execl("/bin/sh", "sh", "-c", all.c_str(), nullptr);
            _exit(127);
        }
        setpgid(pid_, pid_);
    }
    ~Process() {
        kill(-pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    int Id() const { return pid_; }
    void Signal(int number) const { kill(pid_, number); }
    bool Ended(std::chrono::milliseconds limit = kLimit) const {
        return Waited([&] { return End().si_pid == pid_; }, limit);
    }
    /// Of a process that has ended: its exit status, or the signal that ended it.
    int Status() const { return End().si_status; }

private:
    siginfo_t End() const {
        siginfo_t end{};
        waitid(P_PID, static_cast<id_t>(pid_), &end, WEXITED | WNOHANG | WNOWAIT);
        return end;
    }
    int pid_ = 0;
};

/// The service manager's end of its protocol (sd_notify(3)).
class Manager {
public:
    explicit Manager(const std::string& path) : socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
        sockaddr_un name{AF_UNIX, {}};
        path.copy(name.sun_path, sizeof name.sun_path - 1);
        bind(socket_.Number(), reinterpret_cast<const sockaddr*>(&name), sizeof name);
    }
    /// A line for each word so far.
    const std::string& Told() {
        char text[500];
        for (ssize_t size = 0; (size = recv(socket_.Number(), text, sizeof text, 0)) >= 0;)
            told_ += std::string(text, static_cast<std::size_t>(size)) + "\n";
        return told_;
    }
    void Forget() {
        Told();
        told_.clear();
    }

private:
    Descriptor socket_;
    std::string told_;
};

/// An entry that is due; `more` are further columns, as ", nTries = 1".
inline std::string Due(const std::string& type, const std::string& address, int port, const std::string& expected = "",
                       const std::string& more = "") {
    return "INSERT INTO Servers (strDesc) VALUES ('entry'); UPDATE Servers SET dtNextCheck = '2026-01-01 00:00:00', strType = '" +
           type + "', strAddress_IP = '" + address + "', strPort = '" + std::to_string(port) + "', strExpectedText = '" +
           expected + "'" + more + " WHERE ID = last_insert_rowid();";
}

class Program {
public:
    /// A home that was set up before. Lines of the section Settings, and what is done to the database.
    explicit Program(const std::string& settings = kBegin, const std::string& sql = "") {
        home.Write("kvurlwatchn.ini", "[Setup]\nDone=True\n[Settings]\n" + settings + "bALLInDB=True\n");
        fs::copy_file(kDist + "/kvempty.mdb", home.At("kvdata2.mdb"));
        Query(sql);
    }

    /// `words` come before the program: variables, or another program that starts it.
    std::string Command(const std::string& words) const {
        return "unset DISPLAY WAYLAND_DISPLAY SYSTEMD_EXEC_PID WATCHDOG_PID SESSION_MANAGER GTK_THEME QT_QPA_PLATFORM "
               "QT_QPA_PLATFORMTHEME XDG_CONFIG_HOME XDG_CACHE_HOME; exec env KORVANE_HOME=" +
               home.Path() + " " + words + " " + kDist + "/korvanecore";
    }
    void Start(const std::string& words = "") {
        process.reset();
        fs::remove(home.At("output"));
        process = std::make_unique<Process>(Command(words), home);
    }
    void StartAsService(const std::string& words = "") {
        manager.Forget();
        Start("NOTIFY_SOCKET=" + home.At("notify") + " " + words);
    }
    void Stop(int signal = SIGTERM) const {
        process->Signal(signal);
        ASSERT_TRUE(process->Ended(5s)) << Output();
        EXPECT_EQ(process->Status(), signal == SIGKILL ? SIGKILL : 0) << Output();
        ExpectWhole();
    }

    /// The rows, one a line, with their columns between "|".
    std::string Query(const std::string& sql) const {
        return Answer("sqlite3 -cmd '.timeout 9000' " + home.At("kvdata2.mdb") + " \"" + sql + "\" 2>&1");
    }
    bool Becomes(const std::string& sql, const std::string& rows) const {
        return Waited([&] { return Query(sql) == rows; });
    }
    /// What is true at any moment: the file is whole, and each failure that is counted has its row, or the last forty have.
    void ExpectWhole() const {
        EXPECT_EQ(Query("PRAGMA integrity_check"), "ok\n");
        EXPECT_EQ(
            Query("SELECT ID, nFail, nTriesCur, n FROM (SELECT *, (SELECT count(*) FROM Failures WHERE IDParent = Servers.ID) "
                  "AS n FROM Servers) WHERE nTriesCur > nFail OR n > nFail OR n < min(nFail, 40)"),
            "");
    }
    std::string Output() const { return home.Read("output").substr(0, 3000); }
    std::string Settings() const { return home.Read("kvurlwatchn.ini"); }

    const Folder home;
    Manager manager{home.At("notify")};
    std::unique_ptr<Process> process;
};

}  // namespace korvane::test
