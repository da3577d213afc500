// A real PostgreSQL server of the test program's own: started by the first test that wants it, in a temporary folder with its socket,
// without TCP, and ended with the program. It refuses to run as root; root's tests run it as another user.
#pragma once

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
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "base/text.h"
#include "support/temporary_folder.h"
#include "support/test_database.h"

namespace korvane {

class PostgresServer {
public:
    /// The one of this program.
    static PostgresServer& Running() {
        static PostgresServer server;
        return server;
    }
    PostgresServer(const PostgresServer&) = delete;

    /// The address of a new empty database.
    std::string NewDatabase() {
        const std::string name = "list" + std::to_string(++databases_);
        Run("CREATE DATABASE " + name + " OWNER korvane");
        return Address(name);
    }
    std::string Address(const std::string& database) const {
        return "postgresql://korvane@/" + database + "?host=" + ReplaceAll(folder_.Path(), "/", "%2F");
    }
    static std::string NameIn(const std::string& address) {
        const std::size_t start = address.find("@/") + 2;
        return address.substr(start, address.find('?') - start);
    }

    /// Another program's statement, which may do anything: the first value of its result, or the error.
    std::string Run(const std::string& statement, const std::string& database = "postgres") const {
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

    void Start() {
        process_ = Launch({"postgres", "-D", Data(), "-k", folder_.Path(), "-c", "listen_addresses=", "-c", "fsync=off"});
        Await([this] { return Holds(ReadAll(Data() + "/postmaster.pid"), "ready"); });
    }
    /// At once, as a power cut of its machine would.
    void Stop() {
        ::kill(process_, SIGQUIT);
        Reap(process_);
    }

private:
    PostgresServer() {
        NeedQtApplication();
        if (::geteuid() == 0) {
            user_ = ::getpwnam("postgres") != nullptr ? ::getpwnam("postgres") : ::getpwnam("nobody");
            if (::chown(folder_.Path().c_str(), user_->pw_uid, user_->pw_gid) != 0) throw std::runtime_error("chown");
        }
        const pid_t made =
            Launch({"initdb", "-D", Data(), "-A", "trust", "-U", "master", "-N", "-E", "UTF8", "--locale=C.UTF-8"});
        if (Reap(made) != 0) throw std::runtime_error("initdb: " + ReadAll(folder_.Path() + "/output"));
        Start();
        Run("CREATE ROLE korvane LOGIN");
    }
    ~PostgresServer() { Stop(); }

    std::string Data() const { return folder_.Path() + "/data"; }

    /// The folder of the newest version.
    static std::string Programs() {
        std::vector<std::string> all;
        std::error_code none;
        for (const auto& version : std::filesystem::directory_iterator("/usr/lib/postgresql", none))
            all.push_back(version.path().string() + "/bin/");
        if (all.empty()) throw std::runtime_error("PostgreSQL is not installed (scripts/setup --test)");
        return *std::max_element(all.begin(), all.end());
    }

    pid_t Launch(std::vector<std::string> words) {
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

    static int Reap(pid_t child) {
        int status = 0;
        ::waitpid(child, &status, 0);
        return status;
    }

    void Await(const std::function<bool()>& isThere) const {
        for (const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30); !isThere();) {
            if (std::chrono::steady_clock::now() > end) throw std::runtime_error(ReadAll(folder_.Path() + "/output"));
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    const TemporaryFolder folder_;
    const passwd* user_ = nullptr;
    pid_t process_ = 0;
    int databases_ = 0;
};

/// One instance of the program at a list on the server: a home of its own, and the store that its connection texts open.
struct SharedHome {
    explicit SharedHome(std::string at = PostgresServer::Running().NewDatabase(),
                        std::chrono::milliseconds patience = std::chrono::seconds(15))
        : address(std::move(at)),
          store(KindOfColumn, std::chrono::seconds(1),
                {folder.Path() + "/kvdata2.mdb", address, DatabaseStatements(), patience}) {}

    const TemporaryFolder folder;
    const std::string address;
    QtSqlStore store;
    TestDatabase rows{folder.Path(), store};
};

}  // namespace korvane
