// A Qt application with windows but without a screen.
#pragma once

#include <QApplication>

namespace korvane {

/// Makes the one QApplication of this test program, on the platform without a screen. Call it before anything else of Qt.
inline void NeedDesktop() {
    if (QCoreApplication::instance() != nullptr) return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_NO_GLIB", "1");
    static int argumentCount = 1;
    static char name[] = "korvane-test";
    static char* arguments[] = {name, nullptr};
    [[maybe_unused]] static const auto* application =
        new QApplication(argumentCount, arguments);  // at exit Qt's own statics go before it could
    QApplication::setQuitOnLastWindowClosed(false);
}

/// A member of this kind stands before all others that need Qt.
struct QtDesktop {
    QtDesktop() { NeedDesktop(); }
};

}  // namespace korvane
