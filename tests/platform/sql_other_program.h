// What another SQLite program does to a database file beside the store.
#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
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

}  // namespace korvane
