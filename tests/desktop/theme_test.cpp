// Light and dark by the desktop's choice: a portal that plays its part, on a message bus of the test's own.
#include "shell/desktop/look/theme.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include "desktop/desktop_test.h"
#include "support/temporary_folder.h"

namespace korvane {
namespace {

class MessageBus {
public:
    MessageBus() {
        QFile file(QString::fromStdString(folder_.Path() + "/bus.conf"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<busconfig><type>session</type><listen>unix:dir=" + QByteArray::fromStdString(folder_.Path()) +
                   "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/><allow "
                   "eavesdrop=\"true\"/><allow own=\"*\"/></policy>"
                   "</busconfig>");
        file.close();
        daemon_.start("dbus-daemon", {"--nofork", "--print-address", "--config-file=" + file.fileName()});
        EXPECT_TRUE(daemon_.waitForReadyRead());
        address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
    }
    ~MessageBus() {
        for (const QString& name : {QStringLiteral("program"), QStringLiteral("portal")})
            QDBusConnection::disconnectFromBus(name);
        daemon_.kill();
        daemon_.waitForFinished();
    }

    QDBusConnection Connect(const QString& name) const { return QDBusConnection::connectToBus(address_, name); }

private:
    TemporaryFolder folder_;
    QProcess daemon_;
    QString address_;
};

// The desktop's settings, with the one that matters here.
class SettingsPortal : public QDBusVirtualObject {
public:
    SettingsPortal(const QDBusConnection& bus, uint atFirst) : scheme(atFirst), bus_(bus) {
        EXPECT_TRUE(bus_.registerVirtualObject("/org/freedesktop/portal/desktop", this));
        EXPECT_TRUE(bus_.registerService("org.freedesktop.portal.Desktop"));
    }

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.interface() != "org.freedesktop.portal.Settings" || message.member() != "Read" ||
            message.arguments() != QVariantList{"org.freedesktop.appearance", "color-scheme"})
            return false;
        ++asked;
        // The value stands in a variant in the variant of the answer.
        const QDBusVariant value(scheme);
        return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(value)))));
    }

    void Change(uint to) {
        scheme = to;
        QDBusMessage changed =
            QDBusMessage::createSignal("/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged");
        changed.setArguments({"org.freedesktop.appearance", "color-scheme", QVariant::fromValue(QDBusVariant(scheme))});
        EXPECT_TRUE(bus_.send(changed));
    }

    uint scheme;
    int asked = 0;

private:
    QDBusConnection bus_;
};

bool Dark() {
    return QApplication::palette().color(QPalette::Base).lightness() < 128 &&
           QApplication::palette().color(QPalette::Text).lightness() > 128;
}

class ThemeTest : public testing::Test {
protected:
    ThemeTest() {
        NeedDesktop();
        qunsetenv("GTK_THEME");
    }
    ~ThemeTest() override {
        qunsetenv("GTK_THEME");
        QApplication::setPalette(QPalette());
    }
};

TEST_F(ThemeTest, FollowsTheDesktopsChoice) {
    if (QStandardPaths::findExecutable("dbus-daemon").isEmpty())
        GTEST_SKIP() << "dbus-daemon is not installed (scripts/setup --test)";
    const QPalette light = QApplication::palette();
    const MessageBus bus;
    SettingsPortal portal(bus.Connect("portal"), 1);
    {
        const DesktopTheme theme(bus.Connect("program"));
        EXPECT_FALSE(Dark()) << "it does not wait for the answer";
        EXPECT_TRUE(QTest::qWaitFor(Dark));
        portal.Change(2);
        EXPECT_TRUE(QTest::qWaitFor([] { return !Dark(); }));
        EXPECT_EQ(QApplication::palette(), light) << "the style's own colours are back";
        portal.Change(1);
        EXPECT_TRUE(QTest::qWaitFor(Dark));
        portal.Change(0);
        EXPECT_TRUE(QTest::qWaitFor([] { return !Dark(); }));
    }
    const int asked = portal.asked;

    // A dark palette that is there already stays, and nobody is asked; nor where the environment names a theme.
    QPalette own = DarkPalette();
    own.setColor(QPalette::Highlight, Qt::magenta);
    QApplication::setPalette(own);
    const DesktopTheme theirs(bus.Connect("program"));
    QApplication::setPalette(light);
    qputenv("GTK_THEME", "Adwaita");
    const DesktopTheme named(bus.Connect("program"));
    portal.scheme = 1;
    // Questions are answered in their order.
    qunsetenv("GTK_THEME");
    const DesktopTheme last(bus.Connect("program"));
    EXPECT_TRUE(QTest::qWaitFor(Dark));
    EXPECT_EQ(portal.asked, asked + 1);
}

TEST_F(ThemeTest, StaysAsItIsWithoutADesktopToAsk) {
    const DesktopTheme noBus(QDBusConnection::connectToBus("unix:path=/nowhere/at/all", "program"));
    QDBusConnection::disconnectFromBus("program");
    EXPECT_FALSE(Dark());
    qputenv("GTK_THEME", "Adwaita:dark");
    const DesktopTheme named;
    EXPECT_TRUE(Dark());
}

}  // namespace
}  // namespace korvane
