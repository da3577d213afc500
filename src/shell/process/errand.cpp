#include "shell/process/errand.h"

#include <QCoreApplication>
#include <iostream>
#include <iterator>
#include <string>

#include "notify/mail_errand.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/linux/linux_guid_source.h"
#include "platform/linux/linux_own_program.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_tcp_socket.h"

namespace korvane {

bool IsErrand(int argc, char** argv) {
    return argc == 3 && std::string(argv[1]) == kSendMail;
}

int RunErrand(int argc, char** argv) {
    constexpr int kNotDone = 1;
    if (!EndWithParent(argv[2])) return kNotDone;
    const QCoreApplication application(argc, argv);
    const std::string errand(std::istreambuf_iterator<char>(std::cin), {});
    SystemClock clock;
    QtEvents events;
    LinuxFiles files;
    LinuxGuidSource guids;
    QtTcpSocket sckesmtp, plainSocket;
    RunMailErrand(errand, {sckesmtp, plainSocket, clock, events, files, guids},
                  [](const std::string& line) { std::cout << line << std::endl; });
    return 0;
}

}  // namespace korvane
