#include "SystemProxy.h"

#include <QHostAddress>
#include <QNetworkProxyFactory>
#include <QNetworkProxyQuery>
#include <QPromise>

#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QNetworkProxy systemProxyFor(const QUrl &url)
{
    if (url.host() == u"localhost"_s || QHostAddress(url.host()).isLoopback())
        return QNetworkProxy::NoProxy;
    const QList<QNetworkProxy> proxies
        = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
    return proxies.value(0, QNetworkProxy::NoProxy);
}

} // namespace

QFuture<QNetworkProxy> lookUpSystemProxy(const QUrl &url)
{
    QPromise<QNetworkProxy> promise;
    QFuture<QNetworkProxy> future = promise.future();
    std::thread([promise = std::move(promise), url]() mutable {
        promise.start();
        promise.addResult(systemProxyFor(url));
        promise.finish();
    }).detach();
    return future;
}
