#include "DesktopPortal.h"

#include <QFile>

using namespace Qt::StringLiterals;

bool sessionBusExists()
{
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")
        || QFile::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/bus"_s);
}

QDBusMessage portalCall(const QString &interface, const QString &method)
{
    return QDBusMessage::createMethodCall(portalService, portalPath, interface, method);
}
