#include "support/qt_application.h"

#include <QByteArray>
#include <QCoreApplication>
#include <memory>

namespace korvane {

void NeedQtApplication() {
    if (QCoreApplication::instance() != nullptr) return;
    qputenv("QT_NO_GLIB", "1");  // as the program does: Qt's own dispatcher
    static int argumentCount = 1;
    static char name[] = "korvane-test";
    static char* arguments[] = {name, nullptr};
    static const auto application = std::make_unique<QCoreApplication>(argumentCount, arguments);
}

}  // namespace korvane
