#include "shell/desktop/look/theme.h"

#include <QApplication>
#include <QColor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QPainter>
#include <QStyleOption>
#include <QTabBar>
#include <QTimer>

#include "shell/desktop/look/decoration.h"

namespace korvane {
namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kNamespace = QStringLiteral("org.freedesktop.appearance");
const QString kKey = QStringLiteral("color-scheme");
constexpr uint kDark = 1;  // 0: no preference, 2: light

bool IsDark(const QPalette& palette, QPalette::ColorRole ground = QPalette::Window,
            QPalette::ColorRole text = QPalette::WindowText) {
    return palette.color(ground).lightness() < palette.color(text).lightness();
}

void SetDark(bool dark) {
    if (dark == IsDark(QApplication::palette())) return;
    QApplication::setPalette(dark ? DarkPalette() : QPalette());  // an empty palette stands for the style's own
}

/// Returns whether the choice is still open. GTK_THEME overrides the desktop's choice, as it does for the desktop's own programs.
bool IsOpen() {
    const QString named = qEnvironmentVariable("GTK_THEME");
    if (named.endsWith(":dark")) SetDark(true);
    return named.isEmpty() && !IsDark(QApplication::palette());
}

/// Returns whether a session bus is known. Without this check the D-Bus library would start one, which delays the start.
bool HasSessionBus() {
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           QFile::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + "/bus");
}

/// Returns the head of a column with dots where it is cut, and apart from the next one if it is aligned at the right.
QStyleOptionHeader Fitting(QStyleOptionHeader head) {
    if (head.textAlignment.testFlag(Qt::AlignRight)) head.rect.setRight(head.rect.right() - SpaceAfterNumber(head.fontMetrics));
    head.text = head.fontMetrics.elidedText(head.text, Qt::ElideRight, head.rect.width());
    return head;
}

/// The portal wraps the value in one more variant than documented.
QVariant Unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

}  // namespace

/// Every change signal causes a new read of the portal, so that signals and answers are handled in the same way.
class DesktopTheme::Portal {
public:
    explicit Portal(const QDBusConnection& bus) : bus_(bus) {
        again_.setSingleShot(true);
        again_.setInterval(0);
        again_.callOnTimeout([this] { Read(); });
        bus_.connect(QString(), kPath, kInterface, QStringLiteral("SettingChanged"), {kNamespace, kKey}, QString(), &again_,
                     SLOT(start()));
        Read();
    }

private:
    void Read() {
        QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
        call.setArguments({kNamespace, kKey});
        reading_ = std::make_unique<QDBusPendingCallWatcher>(bus_.asyncCall(call));
        QObject::connect(reading_.get(), &QDBusPendingCallWatcher::finished, [](QDBusPendingCallWatcher* watcher) {
            const QDBusPendingReply<QDBusVariant> reply = *watcher;
            if (reply.isValid()) SetDark(Unwrapped(reply.value().variant()).toUInt() == kDark);
        });
    }

    QDBusConnection bus_;
    QTimer again_;
    std::unique_ptr<QDBusPendingCallWatcher> reading_;
};

DesktopTheme::DesktopTheme() {
    if (IsOpen() && HasSessionBus()) Follow(QDBusConnection::sessionBus());
}

DesktopTheme::DesktopTheme(const QDBusConnection& bus) {
    if (IsOpen()) Follow(bus);
}

DesktopTheme::~DesktopTheme() = default;

void DesktopTheme::Follow(const QDBusConnection& bus) {
    if (bus.isConnected()) portal_ = std::make_unique<Portal>(bus);
}

MarkStyle::MarkStyle() : QProxyStyle(QApplication::style()->name()) {}

void MarkStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    if (element == PE_FrameTabWidget)
        if (const auto* const frame = qstyleoption_cast<const QStyleOptionTabWidgetFrame*>(option)) {
            QStyleOptionTabWidgetFrame page = *frame;
            page.palette = PagePalette(page.palette);
            return QProxyStyle::drawPrimitive(element, &page, painter, widget);
        }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isBox = element == PE_IndicatorCheckBox || element == PE_IndicatorItemViewItemCheck;
    if ((!isBox && element != PE_IndicatorRadioButton) || !IsDark(option->palette, QPalette::Base, QPalette::Text)) return;
    painter->save();
    painter->setBrush(Qt::NoBrush);
    painter->setPen(option->palette.color(QPalette::PlaceholderText));
    const QRectF outline = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (isBox) {
        painter->drawRect(outline);
    } else {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->drawEllipse(outline);
    }
    painter->restore();
}

void MarkStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const {
    const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (element == CE_PushButtonLabel && button != nullptr) {
        const QStyleOptionButton lively = WithLivelyPicture(*button, painter->device()->devicePixelRatioF());
        return QProxyStyle::drawControl(element, &lively, painter, widget);
    }
    if (const auto* const head = qstyleoption_cast<const QStyleOptionHeader*>(option);
        element == CE_HeaderLabel && head != nullptr) {
        const QStyleOptionHeader fitting = Fitting(*head);
        return QProxyStyle::drawControl(element, &fitting, painter, widget);
    }
    const auto* const tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    if (element != CE_TabBarTabShape || tab == nullptr) return QProxyStyle::drawControl(element, option, painter, widget);
    QStyleOptionTab page = *tab;
    page.palette = PagePalette(page.palette);
    QProxyStyle::drawControl(element, &page, painter, widget);
    ColourTab(*painter, *tab, qobject_cast<const QTabBar*>(widget));
}

QPalette DarkPalette() {
    const QColor window(0x2b, 0x2d, 0x30), base(0x1e, 0x1f, 0x22), text(0xe6, 0xe7, 0xe9), faint(0x7d, 0x81, 0x87);
    const QColor button(0x3a, 0x3d, 0x41), highlight(0x2f, 0x6f, 0xc4), link(0x6f, 0xab, 0xf2);
    QPalette palette(text, button, button.lighter(150), base.darker(150), button.darker(130), text, Qt::white, base, window);
    palette.setColor(QPalette::AlternateBase, QColor(0x25, 0x27, 0x2a));
    palette.setColor(QPalette::ToolTipBase, button);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, link);
    palette.setColor(QPalette::LinkVisited, QColor(0xb3, 0x9b, 0xe8));
    palette.setColor(QPalette::Shadow, Qt::black);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    palette.setColor(QPalette::Disabled, QPalette::Base, window);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, button.lighter(130));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, faint);
    return palette;
}

}  // namespace korvane
