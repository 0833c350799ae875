#pragma once

#include <QDBusMessage>
#include <QLatin1String>

// The desktop's portal: a service on the session bus that asks the desktop, whichever it is, on
// behalf of any program.

inline constexpr QLatin1String portalService("org.freedesktop.portal.Desktop");
inline constexpr QLatin1String portalPath("/org/freedesktop/portal/desktop");

/// Without a bus to talk to, the library would try to launch one, which takes long: ask this first.
bool sessionBusExists();

/// A call of one of the portal's methods, still without its arguments.
QDBusMessage portalCall(const QString &interface, const QString &method);
