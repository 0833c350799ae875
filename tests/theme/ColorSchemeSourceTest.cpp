#include "ColorSchemeSource.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPalette>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

/// The part of a desktop portal that says which colour scheme is preferred. It lives on a thread
/// of its own, as a portal is a process of its own.
class PortalSettings : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    enum class Answer { Value, Error, Late };

    explicit PortalSettings(QDBusConnection bus)
        : m_bus(std::move(bus))
    { }

    void state(uint value) { m_value = value; }
    void answer(Answer answer) { m_answer = answer; }

    /// Changes the value and emits the signal.
    void change(const QString &group, const QString &key, uint value)
    {
        state(value);
        auto signal
            = QDBusMessage::createSignal(u"/org/freedesktop/portal/desktop"_s,
                                         u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        m_bus.send(signal);
    }

public Q_SLOTS:
    // NOLINTNEXTLINE(readability-identifier-naming): the name on the bus
    QDBusVariant Read(const QString &group, const QString &key, const QDBusMessage &message)
    {
        if (m_answer == Answer::Error || group != u"org.freedesktop.appearance"
            || key != u"color-scheme") {
            message.setDelayedReply(true);
            m_bus.send(message.createErrorReply(QDBusError::UnknownProperty, u"no such setting"_s));
            return {};
        }
        if (m_answer == Answer::Late)
            QThread::msleep(lateness);
        return QDBusVariant(QVariant::fromValue(QDBusVariant(m_value.load())));
    }

private:
    static constexpr int lateness = 500; // milliseconds, more than the first frame waits

    QDBusConnection m_bus;
    std::atomic<uint> m_value = 0;
    std::atomic<Answer> m_answer = Answer::Value;
};

class ColorSchemeSourceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void knowsTheStatedSchemeAtOnce_data();
    void knowsTheStatedSchemeAtOnce();
    void followsTheDesktopLive();
    void ignoresOtherSettings();
    void asksAgainWhenThePortalIsLate();
    void fallsBackToThePalette_data();
    void fallsBackToThePalette();
    void followsThePaletteLive();

private:
    void startPortal(uint value, PortalSettings::Answer answer = PortalSettings::Answer::Value);
    static void setPalette(Qt::GlobalColor window, Qt::GlobalColor text);

    static inline const QString group = u"org.freedesktop.appearance"_s;
    static inline const QString key = u"color-scheme"_s;
    static inline const QString portalConnection = u"portal"_s;

    QThread m_portalThread;
    std::unique_ptr<PortalSettings> m_portal;
};

void ColorSchemeSourceTest::init()
{
    setPalette(Qt::white, Qt::black);
}

void ColorSchemeSourceTest::cleanup()
{
    if (!m_portal)
        return;
    auto bus = QDBusConnection(portalConnection);
    bus.unregisterService(u"org.freedesktop.portal.Desktop"_s);
    bus.unregisterObject(u"/org/freedesktop/portal/desktop"_s);
    m_portalThread.quit();
    m_portalThread.wait();
    m_portal.reset();
    QDBusConnection::disconnectFromBus(portalConnection);
}

void ColorSchemeSourceTest::startPortal(uint value, PortalSettings::Answer answer)
{
    auto bus = QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"),
                                             portalConnection);
    m_portal = std::make_unique<PortalSettings>(bus);
    m_portal->state(value);
    m_portal->answer(answer);
    m_portal->moveToThread(&m_portalThread);
    m_portalThread.start();
    QVERIFY(bus.registerObject(u"/org/freedesktop/portal/desktop"_s, m_portal.get(),
                               QDBusConnection::ExportAllSlots));
    const QString service = u"org.freedesktop.portal.Desktop"_s;
    QVERIFY(bus.registerService(service));
    // The program's connection drops signals while it thinks that the last test's portal has the
    // name; news of the new one comes before the answer to this.
    QCOMPARE(QDBusConnection::sessionBus().interface()->serviceOwner(service).value(),
             bus.baseService());
}

void ColorSchemeSourceTest::setPalette(Qt::GlobalColor window, Qt::GlobalColor text)
{
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    QGuiApplication::setPalette(palette);
}

void ColorSchemeSourceTest::knowsTheStatedSchemeAtOnce_data()
{
    QTest::addColumn<uint>("value");
    QTest::addColumn<ColorScheme>("scheme");

    // The palette is light.
    QTest::newRow("no preference") << 0U << ColorScheme::Light;
    QTest::newRow("dark") << 1U << ColorScheme::Dark;
    QTest::newRow("light") << 2U << ColorScheme::Light;
    QTest::newRow("unknown") << 3U << ColorScheme::Light;
}

void ColorSchemeSourceTest::knowsTheStatedSchemeAtOnce()
{
    QFETCH(uint, value);
    QFETCH(ColorScheme, scheme);

    startPortal(value);
    const ColorSchemeSource source;
    QCOMPARE(source.scheme(), scheme);
}

void ColorSchemeSourceTest::followsTheDesktopLive()
{
    startPortal(2);
    const ColorSchemeSource source;
    QSignalSpy changed(&source, &ColorSchemeSource::schemeChanged);
    m_portal->change(group, key, 1);
    QTRY_COMPARE(source.scheme(), ColorScheme::Dark);
    m_portal->change(group, key, 2);
    QTRY_COMPARE(source.scheme(), ColorScheme::Light);
    QCOMPARE(changed.count(), 2);
    setPalette(Qt::black, Qt::white);
    m_portal->change(group, key, 0);
    QTRY_COMPARE(source.scheme(), ColorScheme::Dark);
}

void ColorSchemeSourceTest::ignoresOtherSettings()
{
    startPortal(2);
    const ColorSchemeSource source;
    m_portal->change(u"org.gnome.desktop.interface"_s, key, 1);
    m_portal->change(group, u"contrast"_s, 1);
    // Signals keep their order, so the last one has the others behind it.
    QSignalSpy changed(&source, &ColorSchemeSource::schemeChanged);
    m_portal->change(group, key, 1);
    QTRY_COMPARE(source.scheme(), ColorScheme::Dark);
    QCOMPARE(changed.count(), 1);
}

void ColorSchemeSourceTest::asksAgainWhenThePortalIsLate()
{
    startPortal(1, PortalSettings::Answer::Late);
    QElapsedTimer timer;
    timer.start();
    const ColorSchemeSource source;
    const auto waited = timer.elapsed();
    QVERIFY2(waited < 300, qPrintable(QString::number(waited)));
    QCOMPARE(source.scheme(), ColorScheme::Light);
    QTRY_COMPARE(source.scheme(), ColorScheme::Dark);
}

void ColorSchemeSourceTest::fallsBackToThePalette_data()
{
    QTest::addColumn<bool>("portalRuns");
    QTest::addColumn<bool>("busIsKnown");
    QTest::addColumn<Qt::GlobalColor>("window");
    QTest::addColumn<ColorScheme>("scheme");

    QTest::newRow("portal without the setting, dark")
        << true << true << Qt::black << ColorScheme::Dark;
    QTest::newRow("portal without the setting, light")
        << true << true << Qt::white << ColorScheme::Light;
    QTest::newRow("no portal, dark") << false << true << Qt::black << ColorScheme::Dark;
    QTest::newRow("no portal, light") << false << true << Qt::white << ColorScheme::Light;
    QTest::newRow("no bus, dark") << false << false << Qt::black << ColorScheme::Dark;
    QTest::newRow("no bus, light") << false << false << Qt::white << ColorScheme::Light;
}

void ColorSchemeSourceTest::fallsBackToThePalette()
{
    QFETCH(bool, portalRuns);
    QFETCH(bool, busIsKnown);
    QFETCH(Qt::GlobalColor, window);
    QFETCH(ColorScheme, scheme);

    if (portalRuns)
        startPortal(0, PortalSettings::Answer::Error);
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    if (!busIsKnown)
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    setPalette(window, window == Qt::white ? Qt::black : Qt::white);
    const ColorSchemeSource source;
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    QCOMPARE(source.scheme(), scheme);
}

void ColorSchemeSourceTest::followsThePaletteLive()
{
    const ColorSchemeSource source;
    QCOMPARE(source.scheme(), ColorScheme::Light);
    setPalette(Qt::black, Qt::white);
    QTRY_COMPARE(source.scheme(), ColorScheme::Dark);
}

namespace {

/// Everybody may do everything, and no service is started on demand.
constexpr const char *busConfiguration = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

int main(int argc, char *argv[])
{
    // A bus of our own, so that neither the desktop's portal answers nor a real one is started.
    qunsetenv("XDG_RUNTIME_DIR");
    QTemporaryFile configuration;
    if (!configuration.open() || configuration.write(busConfiguration) < 0
        || !configuration.flush())
        qFatal("no configuration for dbus-daemon");
    QProcess daemon;
    daemon.start(
        u"dbus-daemon"_s,
        {u"--config-file"_s, configuration.fileName(), u"--nofork"_s, u"--print-address"_s});
    if (!daemon.waitForReadyRead())
        qFatal("dbus-daemon does not start: %s", qPrintable(daemon.errorString()));
    qputenv("DBUS_SESSION_BUS_ADDRESS", daemon.readLine().trimmed());

    int failures = 0;
    {
        QGuiApplication application(argc, argv);
        ColorSchemeSourceTest test;
        failures = QTest::qExec(&test, argc, argv);
    }
    daemon.terminate();
    daemon.waitForFinished();
    return failures;
}

#include "ColorSchemeSourceTest.moc"
