#include "AssistantService.h"

#include "CurlLibrary.h"
#include "TestCertificates.h"

#include <QFile>
#include <QSslCertificate>
#include <QTest>

class AssistantServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void trustsAnchorsBesidesTheSystemsRoots()
    {
        const TestAuthority one;
        const TestAuthority other;
        const CurlLibrary *curl = CurlLibrary::instance();
        QVERIFY(curl);
        CURL *handle = curl->easyInit();
        const char *systemRoots = nullptr;
        curl->easyGetinfo(handle, CURLINFO_CAINFO, &systemRoots);
        const QString path = QFile::decodeName(systemRoots);
        curl->easyCleanup(handle);
        const QList<QSslCertificate> roots = QSslCertificate::fromPath(path);
        QVERIFY(roots.size() > 50);

        AssistantService service;
        // A file may lack its last line end.
        service.extraTrustAnchors = one.certificate() + other.certificate().trimmed();
        const QList<QSslCertificate> trusted
            = QSslCertificate::fromData(trustAnchors(service, path));
        QCOMPARE(trusted.size(), roots.size() + 2);
        for (const QSslCertificate &root : roots)
            QVERIFY(trusted.contains(root));
        for (const TestAuthority &authority : {one, other})
            QVERIFY(trusted.contains(QSslCertificate(authority.certificate())));
    }

    void trustsAnchorsWithoutRoots()
    {
        AssistantService service;
        service.extraTrustAnchors = TestAuthority().certificate();
        const QByteArray anchors = trustAnchors(service, QString());
        QCOMPARE(QSslCertificate::fromData(anchors).size(), 1);
    }

    void waitsFiveMinutes() { QCOMPARE(AssistantService().idleTimeout, std::chrono::minutes(5)); }
};

QTEST_GUILESS_MAIN(AssistantServiceTest)
#include "AssistantServiceTest.moc"
