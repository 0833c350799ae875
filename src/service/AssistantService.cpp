#include "AssistantService.h"

#include <QFile>

QByteArray trustAnchors(const AssistantService &service, const QString &systemRoots)
{
    QByteArray anchors = service.extraTrustAnchors + '\n';
    QFile file(systemRoots);
    if (file.open(QIODevice::ReadOnly))
        anchors += file.readAll();
    return anchors;
}
