// How the windows look: light or dark by the desktop's choice, told by a portal on a bus of the test's own; and pictures that their
// shapes tell apart.
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include "desktop/desktop_test.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/look/theme.h"
#include "support/service_bus.h"

namespace korvane {
namespace {

const QString kPortalPath = "/org/freedesktop/portal/desktop";
const QVariantList kScheme{"org.freedesktop.appearance", "color-scheme"};

// The desktop's settings, with the one that matters here. The value stands in a variant in the variant of the answer.
struct SettingsPortal : QDBusVirtualObject {
    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() != "Read" || message.arguments() != kScheme) return false;
        return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(scheme))))));
    }
    uint scheme = 1;
};

bool Dark() {
    return QApplication::palette().color(QPalette::Base).lightness() < QApplication::palette().color(QPalette::Text).lightness();
}

TEST(Look, FollowsTheDesktopsChoiceUnlessAThemeIsNamed) {
    NeedDesktop();
    const ServiceBus daemon(ServiceBus::Manager::None, {}, {});
    const QPalette light = QApplication::palette();
    SettingsPortal portal;
    auto bus = QDBusConnection::connectToBus(Q(daemon.Address()), "portal");
    EXPECT_TRUE(bus.registerVirtualObject(kPortalPath, &portal) && bus.registerService("org.freedesktop.portal.Desktop"));
    auto theme = std::make_unique<DesktopTheme>(QDBusConnection::connectToBus(Q(daemon.Address()), "program"));
    EXPECT_FALSE(Dark()) << "it does not wait for the answer";
    EXPECT_TRUE(QTest::qWaitFor(Dark));
    for (const uint scheme : {2U, 1U, 0U}) {
        portal.scheme = scheme;
        auto changed = QDBusMessage::createSignal(kPortalPath, "org.freedesktop.portal.Settings", "SettingChanged");
        changed.setArguments(kScheme + QVariantList{QVariant::fromValue(QDBusVariant(scheme))});
        bus.send(changed);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Dark() == (scheme == 1); })) << scheme;
    }
    EXPECT_EQ(QApplication::palette(), light) << "the style's own colours are back";
    theme.reset();
    qputenv("GTK_THEME", "Adwaita:dark");
    EXPECT_TRUE((DesktopTheme(), Dark()));
    qunsetenv("GTK_THEME");
    QApplication::setPalette(QPalette());
    for (const char* name : {"portal", "program"})
        QDBusConnection::disconnectFromBus(name);
}

// On white and without colours, as somebody who can't tell them apart sees it.
template <class Key>
void ExpectShapesOfTheirOwn(QIcon (*picture)(Key), Key last) {
    std::vector<QImage> before;
    for (int key = 0; key <= static_cast<int>(last); ++key) {
        QImage page(22, 22, QImage::Format_RGB32);
        page.fill(Qt::white);
        QPainter(&page).drawPixmap(0, 0, picture(static_cast<Key>(key)).pixmap(QSize(22, 22)));
        for (const QImage& other : before) {
            int different = 0;
            for (int at = 0; at < 22 * 22; ++at)
                different += std::abs(qGray(page.pixel(at % 22, at / 22)) - qGray(other.pixel(at % 22, at / 22))) > 80;
            EXPECT_GT(different, 22 * 22 / 25) << key << " and " << &other - before.data();
        }
        before.push_back(page);
    }
}

TEST(Look, PicturesAreToldApartByTheirShape) {
    NeedDesktop();
    ExpectShapesOfTheirOwn(CommandIcon, CommandPicture::Hide);
    ExpectShapesOfTheirOwn(StateIcon, RowIcon::Cur);
    ExpectShapesOfTheirOwn(TrayIcon, TrayPicture::Off);
}

}  // namespace
}  // namespace korvane
