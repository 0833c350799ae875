#include "AssistantService.h"

#include <QSslCertificate>

QSslConfiguration tlsConfiguration(const AssistantService &service)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    const QList<QSslCertificate> anchors = QSslCertificate::fromData(service.extraTrustAnchors);
    // Left alone, the toolkit looks each system root up when a server names it, and reads none
    // before. Naming any certificate, even an empty list of them, makes it forget the others.
    if (!anchors.isEmpty())
        configuration.setCaCertificates(QSslConfiguration::systemCaCertificates() + anchors);
    return configuration;
}
