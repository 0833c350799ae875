#include "Preferences.h"

#include "MemoryPreferenceBackend.h"
#include "PreferenceStore.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class PreferencesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_memory = std::make_shared<PreferenceMemory>();
        m_store = std::make_unique<PreferenceStore>(
            std::make_unique<MemoryPreferenceBackend>(m_memory));
    }
    void cleanup() { m_store.reset(); }

    void yieldsDefaultsWithoutWritingThem();
    void usesTheFixedKeys();
    void yieldsWhatIsStored();
    void yieldsDefaultsForOtherTypes();
    void keepsTextsThatNameNoCase();
    void aChangeReachesEveryObject();
    void tellsOnlyRealChanges();

private:
    std::shared_ptr<PreferenceMemory> m_memory;
    std::unique_ptr<PreferenceStore> m_store;
};

void PreferencesTest::yieldsDefaultsWithoutWritingThem()
{
    const Preferences preferences(m_store.get());
    QCOMPARE(preferences.appearanceRawValue(), u"system"_s);
    QCOMPARE(preferences.textSizeRawValue(), u"standard"_s);
    QCOMPARE(preferences.imageAnalysisEnabled(), true);
    QCOMPARE(preferences.showImagePreviews(), true);
    QVERIFY(m_store->flush());
    QVERIFY(m_memory->values().isEmpty());
}

void PreferencesTest::usesTheFixedKeys()
{
    Preferences preferences(m_store.get());
    preferences.setAppearanceRawValue(u"dark"_s);
    preferences.setTextSizeRawValue(u"large"_s);
    preferences.setImageAnalysisEnabled(false);
    preferences.setShowImagePreviews(false);
    QVERIFY(m_store->flush());
    const QHash<QString, PreferenceValue> expected{
        {u"aulora.settings.appearance"_s, u"dark"_s},
        {u"aulora.settings.textSize"_s, u"large"_s},
        {u"aulora.settings.imageAnalysis"_s, false},
        {u"aulora.settings.imagePreviews"_s, false},
    };
    QCOMPARE(m_memory->values(), expected);
}

void PreferencesTest::yieldsWhatIsStored()
{
    m_store->setString(Preferences::appearanceKey, u"light"_s);
    m_store->setString(Preferences::textSizeKey, u"compact"_s);
    m_store->setBoolean(Preferences::imageAnalysisKey, false);
    m_store->setBoolean(Preferences::imagePreviewsKey, false);
    const Preferences preferences(m_store.get());
    QCOMPARE(preferences.appearanceRawValue(), u"light"_s);
    QCOMPARE(preferences.textSizeRawValue(), u"compact"_s);
    QCOMPARE(preferences.imageAnalysisEnabled(), false);
    QCOMPARE(preferences.showImagePreviews(), false);
}

void PreferencesTest::yieldsDefaultsForOtherTypes()
{
    m_store->setBoolean(Preferences::appearanceKey, true);
    m_store->setData(Preferences::textSizeKey, [] { return QByteArray("large"); });
    m_store->setString(Preferences::imageAnalysisKey, u"false"_s);
    m_store->setString(Preferences::imagePreviewsKey, u""_s);
    const Preferences preferences(m_store.get());
    QCOMPARE(preferences.appearanceRawValue(), u"system"_s);
    QCOMPARE(preferences.textSizeRawValue(), u"standard"_s);
    QCOMPARE(preferences.imageAnalysisEnabled(), true);
    QCOMPARE(preferences.showImagePreviews(), true);
}

void PreferencesTest::keepsTextsThatNameNoCase()
{
    m_store->setString(Preferences::appearanceKey, u"sepia"_s);
    m_store->setString(Preferences::textSizeKey, u"LARGE"_s);
    const Preferences preferences(m_store.get());
    QCOMPARE(preferences.appearanceRawValue(), u"sepia"_s);
    QCOMPARE(preferences.textSizeRawValue(), u"LARGE"_s);
}

void PreferencesTest::aChangeReachesEveryObject()
{
    Preferences one(m_store.get());
    const Preferences other(m_store.get());
    const QSignalSpy appearance(&other, &Preferences::appearanceRawValueChanged);
    const QSignalSpy textSize(&other, &Preferences::textSizeRawValueChanged);
    const QSignalSpy imageAnalysis(&other, &Preferences::imageAnalysisEnabledChanged);
    const QSignalSpy imagePreviews(&other, &Preferences::showImagePreviewsChanged);

    one.setAppearanceRawValue(u"dark"_s);
    QCOMPARE(other.appearanceRawValue(), u"dark"_s);
    QCOMPARE(appearance.size(), 1);
    one.setTextSizeRawValue(u"large"_s);
    QCOMPARE(other.textSizeRawValue(), u"large"_s);
    QCOMPARE(textSize.size(), 1);
    one.setImageAnalysisEnabled(false);
    QCOMPARE(other.imageAnalysisEnabled(), false);
    QCOMPARE(imageAnalysis.size(), 1);
    one.setShowImagePreviews(false);
    QCOMPARE(other.showImagePreviews(), false);
    QCOMPARE(imagePreviews.size(), 1);

    QCOMPARE(appearance.size(), 1);
    QCOMPARE(textSize.size(), 1);
    QCOMPARE(imageAnalysis.size(), 1);
}

void PreferencesTest::tellsOnlyRealChanges()
{
    Preferences preferences(m_store.get());
    const QSignalSpy appearance(&preferences, &Preferences::appearanceRawValueChanged);
    const QSignalSpy imagePreviews(&preferences, &Preferences::showImagePreviewsChanged);

    preferences.setAppearanceRawValue(u"system"_s);
    preferences.setShowImagePreviews(true);
    m_store->remove(Preferences::appearanceKey);
    m_store->setString(u"aulora.settings.other"_s, u"dark"_s);
    QCOMPARE(appearance.size(), 0);
    QCOMPARE(imagePreviews.size(), 0);

    preferences.setAppearanceRawValue(u"dark"_s);
    preferences.setAppearanceRawValue(u"dark"_s);
    QCOMPARE(appearance.size(), 1);
    m_store->remove(Preferences::appearanceKey);
    QCOMPARE(preferences.appearanceRawValue(), u"system"_s);
    QCOMPARE(appearance.size(), 2);
}

QTEST_GUILESS_MAIN(PreferencesTest)
#include "PreferencesTest.moc"
