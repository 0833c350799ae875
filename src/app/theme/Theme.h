#pragma once

#include "ColorSchemeSource.h"
#include "SystemColors.h"

#include <QFont>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

/// The colours and the type of the program; in QML, through the singleton `Theme`.
///
/// The two greens are the brand's and the same in both schemes; everything else follows the
/// scheme: the one `appearanceRawValue` forces, else the desktop's, live.
class Theme : public QObject
{
    Q_OBJECT
    QML_NAMED_ELEMENT(ThemeBase)

    Q_PROPERTY(QColor accent READ accent CONSTANT)
    Q_PROPERTY(QColor accentSoft READ accentSoft CONSTANT)
    Q_PROPERTY(QColor accentDeep READ accentDeep CONSTANT)
    Q_PROPERTY(QColor panelBackground READ panelBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor hairline READ hairline NOTIFY schemeChanged)
    Q_PROPERTY(QColor primary READ primary NOTIFY schemeChanged)
    Q_PROPERTY(QColor secondary READ secondary NOTIFY schemeChanged)
    Q_PROPERTY(QColor textBackground READ textBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor separator READ separator NOTIFY schemeChanged)
    Q_PROPERTY(QColor windowBackground READ windowBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor orange READ orange NOTIFY schemeChanged)
    Q_PROPERTY(QColor red READ red NOTIFY schemeChanged)
    Q_PROPERTY(QColor gray READ gray NOTIFY schemeChanged)
    Q_PROPERTY(bool dark READ isDark NOTIFY schemeChanged)
    Q_PROPERTY(QString appearanceRawValue READ appearanceRawValue WRITE setAppearanceRawValue NOTIFY
                   appearanceRawValueChanged)

public:
    explicit Theme(QObject *parent = nullptr);

    static QColor accent();
    static QColor accentSoft(); ///< accent at 9 %
    static QColor accentDeep();
    QColor panelBackground() const { return m_colors.controlBackground; }
    QColor hairline() const; ///< primary at 7 %
    QColor primary() const { return m_colors.primary; }
    QColor secondary() const { return m_colors.secondary; }
    QColor textBackground() const { return m_colors.textBackground; }
    QColor separator() const { return m_colors.separator; }
    QColor windowBackground() const { return m_colors.windowBackground; }
    QColor orange() const { return m_colors.orange; }
    QColor red() const { return m_colors.red; }
    QColor gray() const { return m_colors.gray; }
    bool isDark() const { return m_scheme == ColorScheme::Dark; }

    /// Raw value of an `AuloraAppearance`; a text that names none follows the desktop.
    QString appearanceRawValue() const { return m_appearanceRawValue; }
    void setAppearanceRawValue(const QString &rawValue);

    /// `color` with its alpha multiplied by `opacity` (0…1).
    Q_INVOKABLE static QColor atOpacity(QColor color, double opacity);

    /// The interface font with an em of exactly `points` logical pixels, whatever the screen's
    /// density; `weight` as in QFont::Weight, `tracking` in points between letters.
    Q_INVOKABLE static QFont font(double points, int weight = QFont::Normal, double tracking = 0);

Q_SIGNALS:
    void schemeChanged();
    void appearanceRawValueChanged();

private:
    void updateScheme();

    ColorSchemeSource m_schemeSource;
    QString m_appearanceRawValue;
    ColorScheme m_scheme = ColorScheme::Light;
    SystemColors m_colors;
};
