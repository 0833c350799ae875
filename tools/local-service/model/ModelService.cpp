#include "ModelService.h"

#include <QUrl>

using namespace Qt::StringLiterals;

std::optional<ModelService> modelServiceAt(const QString &url)
{
    const QUrl parsed(url, QUrl::StrictMode);
    const bool usesTls = parsed.scheme() == "https"_L1;
    const bool isHttp = usesTls || parsed.scheme() == "http"_L1;
    if (!parsed.isValid() || !isHttp || parsed.host().isEmpty() || !parsed.userInfo().isEmpty()
        || parsed.hasQuery() || parsed.hasFragment())
        return std::nullopt;

    constexpr int httpPort = 80;
    constexpr int httpsPort = 443;
    ModelService service;
    service.usesTls = usesTls;
    service.host = parsed.host(QUrl::FullyEncoded);
    if (service.host.startsWith(u'['))
        service.host = service.host.sliced(1).chopped(1);
    service.port = parsed.port(usesTls ? httpsPort : httpPort);
    service.basePath = parsed.path(QUrl::FullyEncoded);
    while (service.basePath.endsWith(u'/'))
        service.basePath.chop(1);
    return service;
}
