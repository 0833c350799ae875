#include "InstallationIdentity.h"

#include "MemoryPreferenceBackend.h"
#include "PreferenceStore.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

class InstallationIdentityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_memory = std::make_shared<PreferenceMemory>(); }

    void makesOneIdentifierPerInstallation();
    void makesAnotherForAnotherInstallation();
    void usesWhatIsStored_data();
    void usesWhatIsStored();
    void replacesWhatIsNoText();
    void keepsWhatCannotBeRead();

private:
    std::unique_ptr<PreferenceStore> openStore() const
    {
        return std::make_unique<PreferenceStore>(
            std::make_unique<MemoryPreferenceBackend>(m_memory));
    }

    std::shared_ptr<PreferenceMemory> m_memory;
};

void InstallationIdentityTest::makesOneIdentifierPerInstallation()
{
    QString userId;
    {
        const auto store = openStore();
        const InstallationIdentity identity(store.get());
        QVERIFY(store->flush());
        QVERIFY(m_memory->values().isEmpty());

        userId = identity.installationUserId();
        static const QRegularExpression form(
            u"\\Aaulora-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\z"_s);
        QVERIFY2(form.match(userId).hasMatch(), qPrintable(userId));
        QVERIFY(store->flush());
        QCOMPARE(m_memory->value(u"aulora.installation.userId"_s), PreferenceValue(userId));
        QCOMPARE(identity.installationUserId(), userId);
    }
    const auto store = openStore();
    QCOMPARE(InstallationIdentity(store.get()).installationUserId(), userId);
}

void InstallationIdentityTest::makesAnotherForAnotherInstallation()
{
    const auto store = openStore();
    const QString userId = InstallationIdentity(store.get()).installationUserId();
    m_memory = std::make_shared<PreferenceMemory>();
    const auto otherStore = openStore();
    QVERIFY(InstallationIdentity(otherStore.get()).installationUserId() != userId);
}

void InstallationIdentityTest::usesWhatIsStored_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("without the prefix") << u"alumna-7"_s;
    QTest::newRow("empty") << u""_s;
    QTest::newRow("lower case") << u"aulora-3f2504e0-4f89-11d3-9a0c-0305e82c3301"_s;
}

void InstallationIdentityTest::usesWhatIsStored()
{
    QFETCH(QString, stored);
    m_memory->setValue(InstallationIdentity::userIdKey, stored);
    const auto store = openStore();
    QCOMPARE(InstallationIdentity(store.get()).installationUserId(), stored);
}

void InstallationIdentityTest::replacesWhatIsNoText()
{
    m_memory->setValue(InstallationIdentity::userIdKey, true);
    const auto store = openStore();
    QVERIFY(InstallationIdentity(store.get()).installationUserId().startsWith(u"aulora-"_s));
}

void InstallationIdentityTest::keepsWhatCannotBeRead()
{
    m_memory->setValue(InstallationIdentity::userIdKey, u"aulora-1"_s);
    m_memory->setReadFailure(u"sin permiso"_s);
    {
        const auto store = openStore();
        const InstallationIdentity identity(store.get());
        const QString meanwhile = identity.installationUserId();
        QVERIFY(meanwhile.startsWith(u"aulora-"_s));
        QCOMPARE(identity.installationUserId(), meanwhile);
        m_memory->setReadFailure(std::nullopt);
    }
    const auto store = openStore();
    QCOMPARE(InstallationIdentity(store.get()).installationUserId(), u"aulora-1"_s);
}

QTEST_GUILESS_MAIN(InstallationIdentityTest)
#include "InstallationIdentityTest.moc"
