#include "system/process.h"

#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "support/temporary_folder.h"

namespace fs = std::filesystem;

namespace korvane::test {
namespace {

// Where servers lie, too, which is not on an ordinary user's PATH.
std::string Program(const std::string& name) {
    for (const char* folder : {"/usr/sbin/", "/usr/bin/", "/sbin/", "/bin/"}) {
        if (fs::exists(folder + name)) return folder + name;
    }
    return name;
}

void GiveToNobody(const std::string& folder) {
    const passwd* nobody = getpwnam("nobody");
    auto give = [&](const fs::path& path) {
        if (lchown(path.c_str(), nobody->pw_uid, nobody->pw_gid) != 0) throw std::runtime_error("chown " + path.string());
    };
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        give(entry.path());
    give(folder);
}

}  // namespace

bool Installed(const std::string& program) {
    return Program(program) != program;
}

PrivateFolder::PrivateFolder() {
    std::string path = (fs::temp_directory_path() / "korvane-system-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("no folder " + path);
    path_ = path;
}

PrivateFolder::~PrivateFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

void PrivateFolder::Write(std::string_view name, std::string_view text) const {
    std::ofstream(Path(name)) << text;
}

std::string PrivateFolder::Read(std::string_view name) const {
    return ReadAll(Path(name));
}

Process::Process(const std::vector<std::string>& command, const PrivateFolder& folder, Rights rights) {
    std::vector<std::string> words = {Program("setpriv"), "--pdeathsig", "KILL"};
    if (rights == Rights::Nobody && geteuid() == 0) {
        GiveToNobody(folder.Path());
        for (const char* word : {"--reuid=nobody", "--regid=nogroup", "--clear-groups"})
            words.emplace_back(word);
    }
    words.push_back(Program(command.at(0)));
    words.insert(words.end(), command.begin() + 1, command.end());
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, 1, folder.Path("output").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    posix_spawn_file_actions_adddup2(&files, 1, 2);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    const int error = posix_spawn(&pid_, words[0].c_str(), &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0) throw std::runtime_error("cannot start " + words[0]);
    ended_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
}

Process::~Process() {
    kill(-pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    close(ended_);
}

void Process::Signal(int number) const {
    kill(pid_, number);
}

bool Process::Ended(std::chrono::milliseconds limit) const {
    pollfd end{ended_, POLLIN, 0};
    return poll(&end, 1, static_cast<int>(limit.count())) == 1;
}

int Process::ExitStatus() const {
    siginfo_t end{};
    waitid(P_PIDFD, static_cast<id_t>(ended_), &end, WEXITED | WNOWAIT);
    return end.si_code == CLD_EXITED ? end.si_status : -end.si_status;
}

std::string Rows(const std::string& database, const std::string& sql) {
    if (!fs::exists(database)) return "";
    FILE* answer = popen(("sqlite3 -cmd '.timeout 5000' '" + database + "' \"" + sql + "\" 2>&1").c_str(), "r");
    std::string rows;
    for (int byte = fgetc(answer); byte != EOF; byte = fgetc(answer))
        rows += static_cast<char>(byte);
    pclose(answer);
    return rows;
}

}  // namespace korvane::test
