#include "PortalChooser.h"

#include "DesktopPortal.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {

const QString chooserInterface = u"org.freedesktop.portal.FileChooser"_s;
const QString requestInterface = u"org.freedesktop.portal.Request"_s;
const QString responseSignal = u"Response"_s;

/// How long the portal may take to say that it takes the request on, in milliseconds. The theme has
/// asked it before, so that it runs already, and this is far more than it needs.
constexpr int patience = 3000;

struct FilterPattern
{
    enum Kind : uint { Glob, MediaType };

    uint kind = Glob;
    QString text;
};

struct Filter
{
    QString name;
    QList<FilterPattern> patterns;
};

QDBusArgument &operator<<(QDBusArgument &argument, const FilterPattern &pattern)
{
    argument.beginStructure();
    argument << pattern.kind << pattern.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, FilterPattern &pattern)
{
    argument.beginStructure();
    argument >> pattern.kind >> pattern.text;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const Filter &filter)
{
    argument.beginStructure();
    argument << filter.name << filter.patterns;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Filter &filter)
{
    argument.beginStructure();
    argument >> filter.name >> filter.patterns;
    argument.endStructure();
    return argument;
}

QVariant filters(const QString &name, const QStringList &globs)
{
    qDBusRegisterMetaType<FilterPattern>();
    qDBusRegisterMetaType<QList<FilterPattern>>();
    qDBusRegisterMetaType<Filter>();
    qDBusRegisterMetaType<QList<Filter>>();
    Filter filter{.name = name, .patterns = {}};
    for (const QString &glob : globs)
        filter.patterns.append({.kind = FilterPattern::Glob, .text = glob});
    return QVariant::fromValue(QList{filter});
}

/// What a portal knows the window by. Qt tells no program what Wayland calls its windows; a dialog
/// without a parent is a window of its own there.
QString portalName(QWindow *window)
{
    constexpr int hexadecimal = 16;
    if (!window || QGuiApplication::platformName() != "xcb"_L1)
        return {};
    return u"x11:"_s + QString::number(window->winId(), hexadecimal);
}

/// Where the portal puts the request that `connection` makes with `token`.
QString requestPath(const QDBusConnection &connection, const QString &token)
{
    return u"%1/request/%2/%3"_s.arg(portalPath,
                                     connection.baseService().sliced(1).replace(u'.', u'_'), token);
}

} // namespace

PortalChooser::~PortalChooser()
{
    close();
}

void PortalChooser::open(QWindow *parent, const QString &title, const QString &acceptLabel,
                         const QString &filterName, const QStringList &patterns)
{
    close();
    if (!sessionBusExists() || !QDBusConnection::sessionBus().isConnected()) {
        Q_EMIT unavailable();
        return;
    }
    watchPortal();
    auto bus = QDBusConnection::sessionBus();

    // Nobody can guess it, so that nobody else can answer in the portal's place.
    const QString token = u"aulora"_s + QUuid::createUuid().toString(QUuid::Id128);
    const QString request = requestPath(bus, token);
    m_request = request;
    bus.connect({}, m_request, requestInterface, responseSignal, this,
                SLOT(takeResponse(uint, QVariantMap)));
    auto message = portalCall(chooserInterface, u"OpenFile"_s);
    message << portalName(parent) << title
            << QVariantMap{{u"handle_token"_s, token},
                           {u"accept_label"_s, acceptLabel},
                           {u"modal"_s, true},
                           {u"filters"_s, filters(filterName, patterns)}};
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(message, patience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, request] {
        watcher->deleteLater();
        if (m_request != request)
            return;
        if (!watcher->isError()) {
            m_isOpen = true;
            return;
        }
        close();
        Q_EMIT unavailable();
    });
}

void PortalChooser::takeResponse(uint response, const QVariantMap &results)
{
    if (m_request.isEmpty())
        return;
    forget();
    constexpr uint success = 0;
    QList<QUrl> urls;
    if (response == success) {
        const QStringList uris = results.value(u"uris"_s).toStringList();
        for (const QString &uri : uris)
            urls.append(QUrl::fromEncoded(uri.toUtf8()));
    }
    Q_EMIT finished(urls);
}

void PortalChooser::watchPortal()
{
    if (m_watchesPortal)
        return;
    m_watchesPortal = true;
    auto *watcher = new QDBusServiceWatcher(portalService, QDBusConnection::sessionBus(),
                                            QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        if (!m_isOpen)
            return;
        forget();
        Q_EMIT finished({});
    });
}

/// There is no dialog any more.
void PortalChooser::forget()
{
    QDBusConnection::sessionBus().disconnect({}, m_request, requestInterface, responseSignal, this,
                                             SLOT(takeResponse(uint, QVariantMap)));
    m_request.clear();
    m_isOpen = false;
}

/// Has the portal close the dialog, also one that it is late to open.
void PortalChooser::close()
{
    if (m_request.isEmpty())
        return;
    auto message
        = QDBusMessage::createMethodCall(portalService, m_request, requestInterface, u"Close"_s);
    message.setAutoStartService(false);
    QDBusConnection::sessionBus().send(message);
    forget();
}
