// How the windows look: light or dark by the desktop's choice, told by a portal on a bus of the test's own.
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include "desktop/desktop_test.h"
#include "shell/desktop/look/decoration.h"
#include "shell/desktop/look/icons.h"
#include "shell/desktop/look/theme.h"
#include "support/service_bus.h"

namespace korvane::look_test {

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
    const ServiceBus daemon;
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

TEST(Look, PicturesRespondToTheMouseAndTheChosenTabIsStronger) {
    NeedDesktop();
    QPushButton button(CommandIcon(CommandPicture::Save), "Save");
    std::vector<QImage> seen;
    for (const auto state : {QStyle::State_None, QStyle::State_MouseOver, QStyle::State_Sunken}) {
        QStyleOptionButton option;
        option.initFrom(&button);
        option.icon = button.icon();
        option.iconSize = {16, 16};
        option.state = QStyle::State_Enabled | state;
        seen.push_back(WithLivelyPicture(option, 1).icon.pixmap(16).toImage());
    }
    EXPECT_TRUE(seen[0] != seen[1] && seen[1] != seen[2]);
    const auto strength = [](QStyle::State state) {
        QImage image(60, 24, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QStyleOptionTab tab;
        tab.rect = image.rect();
        tab.state = state;
        QPainter painter(&image);
        ColourTab(painter, tab, nullptr);
        return image.pixelColor(30, 4).alpha();
    };
    EXPECT_GT(strength(QStyle::State_Selected), strength(QStyle::State_None));
}

TEST(Look, APageOfTabsIsAsDarkAsTheWindowAroundIt) {
    NeedDesktop();
    QImage image(40, 40, QImage::Format_RGB32);
    QStyleOptionTabWidgetFrame page;
    page.rect = image.rect();
    page.palette = DarkPalette();
    QPainter painter(&image);
    MarkStyle().drawPrimitive(QStyle::PE_FrameTabWidget, &page, &painter, nullptr);
    EXPECT_NEAR(image.pixelColor(20, 20).lightness(), page.palette.color(QPalette::Window).lightness(), 3);
}

}  // namespace korvane::look_test
