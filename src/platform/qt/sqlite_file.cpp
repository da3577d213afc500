#include "platform/qt/sqlite_file.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QUrl>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace korvane {
namespace {

constexpr std::string_view kMagic("SQLite format 3\0", 16);

}  // namespace

DamagedError NoDatabaseError(const std::string& path) {
    return DamagedError("The file '" + path + "' is not an SQLite 3 database. It was left untouched.");
}

Error CannotReadError(const std::string& path, int problem) {
    return Error("The database '" + path + "' cannot be read: " + std::strerror(problem));
}

// Closing the file drops this process's SQLite locks on it, so no statement may be running; in a single thread none is.
void CheckMagic(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
    if (!file) throw CannotReadError(path, errno);
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
    char magic[kMagic.size()];
    if (std::string_view(magic, std::fread(magic, 1, sizeof magic, file.get())) != kMagic) throw NoDatabaseError(path);
}

QString UriOf(const std::string& path) {
    const QByteArray encoded = QUrl::toPercentEncoding(QString::fromStdString(path), "/");
    return QString::fromUtf8((path.starts_with('/') ? "file://" : "file:") + encoded + "?mode=rw");
}

}  // namespace korvane
