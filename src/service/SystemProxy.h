#pragma once

#include <QFuture>
#include <QNetworkProxy>
#include <QUrl>

/// The first proxy that the system's settings name for `url`; none for this machine itself. The
/// answer can take long, because it may need a script from the network, and nothing waits for it
/// when the program ends.
QFuture<QNetworkProxy> lookUpSystemProxy(const QUrl &url);
