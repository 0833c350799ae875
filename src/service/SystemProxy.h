#pragma once

#include <QFuture>
#include <QNetworkProxy>
#include <QUrl>

/// The first proxy that the system's settings name for `url`, with the name and password that they
/// hold for it; none for this machine itself.
///
/// The answer can take long, because it may need a script from the network, and a lookup cannot be
/// called off. It is left behind where nobody waits for it any more; should it still run when the
/// program ends, the window and everything else is gone by then and only the process stays until
/// the lookup ends.
QFuture<QNetworkProxy> lookUpSystemProxy(const QUrl &url);
