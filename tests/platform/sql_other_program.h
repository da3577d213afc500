// What another SQLite program does to a database file beside the store.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <csignal>
#include <functional>
#include <stdexcept>
#include <string>

namespace korvane {

/// Runs the statement on a connection of its own. Gives its first value, if it has one.
inline std::string RunSql(const std::string& path, const std::string& statement) {
    struct Program : QSqlDatabase {
        Program() : QSqlDatabase("QSQLITE") {}
    } program;
    program.setDatabaseName(QString::fromStdString(path));
    program.open();
    QSqlQuery query(program);
    if (!query.exec(QString::fromStdString(statement))) throw std::runtime_error(query.lastError().text().toStdString());
    return query.next() ? query.value(0).toString().toStdString() : "";
}

/// A process that runs `work` beside this one, until it is killed at the latest.
class OtherProcess {
public:
    explicit OtherProcess(const std::function<void(const std::function<void()>& sayReady)>& work) {
        int ends[2];
        if (pipe(ends) != 0) throw std::runtime_error("pipe");
        output_ = ends[0];
        id_ = fork();
        if (id_ != 0) {
            close(ends[1]);
            return;
        }
        const auto say = [&](const std::string& text) { return write(ends[1], text.data(), text.size()) > 0; };
        try {
            work([&] { say("ready"); });
        } catch (const std::exception& error) {
            say(error.what());
        }
        _exit(0);
    }
    ~OtherProcess() {
        kill(id_, SIGKILL);
        waitpid(id_, nullptr, 0);
        close(output_);
    }

    /// Waits for it to say "ready" or its error; empty when it ended without.
    std::string Said() {
        char text[1000];
        const auto length = read(output_, text, sizeof text);
        return {text, static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
    }

private:
    pid_t id_;
    int output_;
};

}  // namespace korvane
