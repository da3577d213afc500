// A D-Bus of a test's own, and on it, when it is given units, a service manager that answers as systemd does.
#pragma once

#include <QProcess>
#include <string>

#include "base/error.h"
#include "support/qt_application.h"
#include "support/temporary_folder.h"

namespace korvane {

/// Throws Error when there is no dbus-daemon. `units` are as service_manager.py takes them.
class ServiceBus {
public:
    explicit ServiceBus(const QStringList& units = {}) {
        NeedQtApplication();
        const QString address = QString::fromStdString(address_);
        Start(daemon_, "dbus-daemon", {"--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address});
        const QStringList words{KORVANE_SOURCE_DIR "/tests/support/service_manager.py", address};
        if (!units.isEmpty()) Start(manager_, "/usr/bin/python3", words + units);
    }
    ~ServiceBus() {
        for (QProcess* const process : {&manager_, &daemon_})
            process->kill(), process->waitForFinished();
    }

    const std::string& Address() const { return address_; }

private:
    // Each prints a line when it is ready.
    static void Start(QProcess& process, const QString& program, const QStringList& words) {
        process.start(program, words);
        if (!process.waitForReadyRead()) throw Error(program.toStdString() + " does not start");
    }

    const TemporaryFolder folder_;
    const std::string address_ = "unix:path=" + folder_.Path() + "/bus";
    QProcess daemon_, manager_;
};

}  // namespace korvane
