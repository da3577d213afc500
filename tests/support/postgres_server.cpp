#include "support/postgres_server.h"

#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "base/text.h"
#include "support/qt_application.h"

namespace korvane {
namespace {

constexpr std::chrono::seconds kLimit{30};

/// The folder of the newest version.
std::string Programs() {
    std::vector<std::string> all;
    std::error_code none;
    for (const auto& version : std::filesystem::directory_iterator("/usr/lib/postgresql", none))
        all.push_back(version.path().string() + "/bin/");
    if (all.empty()) throw std::runtime_error("PostgreSQL is not installed (scripts/setup --test)");
    return *std::max_element(all.begin(), all.end());
}

int Reap(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

}  // namespace

PostgresServer& PostgresServer::Running() {
    static PostgresServer server;
    return server;
}

PostgresServer::PostgresServer() {
    NeedQtApplication();
    if (::geteuid() == 0) {
        user_ = ::getpwnam("postgres") != nullptr ? ::getpwnam("postgres") : ::getpwnam("nobody");
        if (::chown(folder_.Path().c_str(), user_->pw_uid, user_->pw_gid) != 0) throw std::runtime_error("chown");
    }
    const pid_t made = Launch({"initdb", "-D", Data(), "-A", "trust", "-U", "master", "-N", "-E", "UTF8", "--locale=C.UTF-8"});
    if (Reap(made) != 0) throw std::runtime_error("initdb: " + ReadAll(folder_.Path() + "/output"));
    Start();
    Run("CREATE ROLE korvane LOGIN");
}

PostgresServer::~PostgresServer() {
    Stop();
}

std::string PostgresServer::NewDatabase() {
    const std::string name = "list" + std::to_string(++databases_);
    Run("CREATE DATABASE " + name + " OWNER korvane");
    return Address(name);
}

std::string PostgresServer::Address(const std::string& database) const {
    return "postgresql://korvane@/" + database + "?host=" + ReplaceAll(folder_.Path(), "/", "%2F");
}

std::string PostgresServer::NameIn(const std::string& address) {
    const std::size_t start = address.find("@/") + 2;
    return address.substr(start, address.find('?') - start);
}

std::string PostgresServer::Run(const std::string& statement, const std::string& database) const {
    struct Other : QSqlDatabase {
        Other() : QSqlDatabase("QPSQL") {}
    } other;
    other.setHostName(QString::fromStdString(folder_.Path()));
    other.setDatabaseName(QString::fromStdString(database));
    other.setUserName("master");
    if (!other.open()) return other.lastError().databaseText().toStdString();
    QSqlQuery query(other);
    if (!query.exec(QString::fromStdString(statement))) return query.lastError().databaseText().toStdString();
    return query.next() ? query.value(0).toString().toStdString() : "";
}

void PostgresServer::Start() {
    process_ = Launch({"postgres", "-D", Data(), "-k", folder_.Path(), "-c", "listen_addresses=", "-c", "fsync=off"});
    const auto end = std::chrono::steady_clock::now() + kLimit;
    while (!Holds(ReadAll(Data() + "/postmaster.pid"), "ready")) {
        if (std::chrono::steady_clock::now() > end) throw std::runtime_error(ReadAll(folder_.Path() + "/output"));
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void PostgresServer::Stop() {
    ::kill(process_, SIGQUIT);
    Reap(process_);
}

// It ends with this process, whatever happens to it.
pid_t PostgresServer::Launch(std::vector<std::string> words) {
    const std::string program = Programs() + words.front(), output = folder_.Path() + "/output";
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child != 0) return child;
    if (user_ != nullptr && (::setgroups(0, nullptr) != 0 || ::setgid(user_->pw_gid) != 0 || ::setuid(user_->pw_uid) != 0))
        ::_exit(127);
    ::prctl(PR_SET_PDEATHSIG, SIGQUIT);
    if (std::freopen(output.c_str(), "a", stdout) == nullptr || ::dup2(1, 2) < 0 || ::chdir(folder_.Path().c_str()) != 0)
        ::_exit(127);
    ::execv(program.c_str(), arguments.data());
    ::_exit(127);
}

}  // namespace korvane
