#include "AssistantService.h"

#include "TestCertificates.h"

#include <QSslCertificate>
#include <QTest>

class AssistantServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheRulesOfTheSystemWithoutAnchors()
    {
        QVERIFY(tlsConfiguration({}) == QSslConfiguration::defaultConfiguration());
        // Were these equal, the line above could not tell whether the system's roots are trusted.
        QSslConfiguration withoutRoots = QSslConfiguration::defaultConfiguration();
        withoutRoots.addCaCertificates(QList<QSslCertificate>());
        QVERIFY(withoutRoots != QSslConfiguration::defaultConfiguration());
    }

    void trustsAnchorsBesidesTheSystemsRoots()
    {
        const TestAuthority one;
        const TestAuthority other;
        const QSslConfiguration configuration = tlsConfiguration(
            {.apiURL = {}, .extraTrustAnchors = one.certificate() + other.certificate()});
        const QList<QSslCertificate> trusted = configuration.caCertificates();
        for (const QSslCertificate &root : QSslConfiguration::systemCaCertificates())
            QVERIFY(trusted.contains(root));
        for (const TestAuthority &authority : {one, other})
            QVERIFY(trusted.contains(QSslCertificate(authority.certificate())));
    }

    void waitsFiveMinutes() { QCOMPARE(AssistantService().idleTimeout, std::chrono::minutes(5)); }
};

QTEST_GUILESS_MAIN(AssistantServiceTest)
#include "AssistantServiceTest.moc"
