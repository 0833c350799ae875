#include "ColorSchemeSource.h"

#include "DesktopPortal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QStyleHints>

using namespace Qt::StringLiterals;

namespace {

const QString appearanceGroup = u"org.freedesktop.appearance"_s;
const QString colorSchemeKey = u"color-scheme"_s;

/// The scheme that Qt reports. Qt before 6.5 reports none, later versions none on a desktop that
/// they have no platform theme for.
std::optional<ColorScheme> hintedScheme()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    switch (QGuiApplication::styleHints()->colorScheme()) {
    case Qt::ColorScheme::Dark:
        return ColorScheme::Dark;
    case Qt::ColorScheme::Light:
        return ColorScheme::Light;
    case Qt::ColorScheme::Unknown:
        break;
    }
#endif
    return std::nullopt;
}

ColorScheme paletteScheme()
{
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness()
            < palette.color(QPalette::WindowText).lightness()
        ? ColorScheme::Dark
        : ColorScheme::Light;
}

constexpr int portalTimeout = 100; // milliseconds, while the first frame waits

const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;

QDBusMessage readColorScheme()
{
    auto message = portalCall(settingsInterface, u"Read"_s);
    message << appearanceGroup << colorSchemeKey;
    return message;
}

} // namespace

ColorSchemeSource::ColorSchemeSource(QObject *parent)
    : QObject(parent)
{
    if (sessionBusExists())
        connectToPortal();
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    connect(QGuiApplication::styleHints(), &QStyleHints::colorSchemeChanged, this,
            &ColorSchemeSource::update);
#endif
    update();
    qGuiApp->installEventFilter(this);
}

bool ColorSchemeSource::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange && watched == qGuiApp)
        update();
    return QObject::eventFilter(watched, event);
}

void ColorSchemeSource::connectToPortal()
{
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(portalService, portalPath, settingsInterface, u"SettingChanged"_s, this,
                SLOT(takeSetting(QString, QString, QDBusVariant)));
    auto message = readColorScheme();
    message.setAutoStartService(false);
    const QDBusMessage reply = bus.call(message, QDBus::Block, portalTimeout);
    if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
        takeValue(reply.arguments().constFirst());
    else
        askPortalLater();
}

void ColorSchemeSource::askPortalLater()
{
    const auto call = QDBusConnection::sessionBus().asyncCall(readColorScheme());
    auto *watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isError())
            return;
        takeValue(reply.value().variant());
        update();
    });
}

void ColorSchemeSource::takeSetting(const QString &group, const QString &key,
                                    const QDBusVariant &value)
{
    if (group != appearanceGroup || key != colorSchemeKey)
        return;
    takeValue(value.variant());
    update();
}

void ColorSchemeSource::takeValue(const QVariant &value)
{
    // `Read` wraps the value in one variant more than the signal does.
    QVariant plain = value;
    while (plain.canConvert<QDBusVariant>())
        plain = plain.value<QDBusVariant>().variant();

    constexpr uint preferDark = 1;
    constexpr uint preferLight = 2;
    switch (plain.toUInt()) {
    case preferDark:
        m_stated = ColorScheme::Dark;
        break;
    case preferLight:
        m_stated = ColorScheme::Light;
        break;
    default:
        m_stated.reset();
    }
}

void ColorSchemeSource::update()
{
    const auto hinted = hintedScheme();
    const auto scheme = m_stated ? *m_stated : hinted ? *hinted : paletteScheme();
    if (m_scheme == scheme)
        return;
    m_scheme = scheme;
    Q_EMIT schemeChanged();
}
