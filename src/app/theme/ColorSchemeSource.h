#pragma once

#include "SystemColors.h"

#include <QObject>

#include <optional>

class QDBusVariant;

/// The colour scheme the desktop asks for, followed live.
///
/// Where there is a session bus, the desktop portal's setting `org.freedesktop.appearance`
/// `color-scheme` is used: Qt 6.8 follows it with some desktops' themes only. Without a portal, or
/// where it states no preference, Qt's own hint does (6.5 and newer; macOS and Windows); where Qt
/// knows nothing, a palette whose window is darker than its text means dark.
class ColorSchemeSource : public QObject
{
    Q_OBJECT

public:
    /// Knows the scheme when it returns, so that the first frame is right. Waits for a portal that
    /// is running for at most a tenth of a second and never for one that would have to be started.
    explicit ColorSchemeSource(QObject *parent = nullptr);

    ColorScheme scheme() const { return m_scheme; }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void schemeChanged();

private Q_SLOTS:
    void takeSetting(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void connectToPortal();
    void askPortalLater();
    void takeValue(const QVariant &value);
    void update();

    /// What the desktop stated; nothing while it stated no preference.
    std::optional<ColorScheme> m_stated;
    ColorScheme m_scheme = ColorScheme::Light;
};
