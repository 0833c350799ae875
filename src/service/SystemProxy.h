#pragma once

#include <QFuture>
#include <QNetworkProxy>
#include <QUrl>

/// The first proxy that the system's settings name for `url`, with the name and password that they
/// hold for it; none for this machine itself.
///
/// A lookup may load a script from the network, can take long and cannot be cancelled. When one
/// still runs at the end of the program, the window is gone at once and only the process stays
/// until the lookup ends.
QFuture<QNetworkProxy> lookUpSystemProxy(const QUrl &url);
