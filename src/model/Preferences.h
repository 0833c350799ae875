#pragma once

#include <QObject>
#include <QString>

class PreferenceStore;

/// The four display and image preferences, read from and written to the preference store
/// directly. A default is what a read yields while the key holds no value; it is never written.
class Preferences : public QObject
{
    Q_OBJECT

public:
    inline static const QString appearanceKey = QStringLiteral("aulora.settings.appearance");
    inline static const QString textSizeKey = QStringLiteral("aulora.settings.textSize");
    inline static const QString imageAnalysisKey = QStringLiteral("aulora.settings.imageAnalysis");
    inline static const QString imagePreviewsKey = QStringLiteral("aulora.settings.imagePreviews");

    /// `store` is borrowed and outlives this object.
    explicit Preferences(PreferenceStore *store, QObject *parent = nullptr);

    /// Raw value of an `AuloraAppearance`, or whatever text is stored; "system" when absent.
    QString appearanceRawValue() const;
    void setAppearanceRawValue(const QString &rawValue);

    /// Raw value of an `AuloraTextSize`, or whatever text is stored; "standard" when absent.
    QString textSizeRawValue() const;
    void setTextSizeRawValue(const QString &rawValue);

    bool imageAnalysisEnabled() const;
    void setImageAnalysisEnabled(bool enabled);

    bool showImagePreviews() const;
    void setShowImagePreviews(bool show);

Q_SIGNALS:
    // Each is emitted only when the value that reads yield has really changed.
    void appearanceRawValueChanged();
    void textSizeRawValueChanged();
    void imageAnalysisEnabledChanged();
    void showImagePreviewsChanged();

private:
    void follow(const QString &key);

    PreferenceStore *m_store;
    // What reads yielded last, to tell a change from a value set again.
    QString m_appearanceRawValue;
    QString m_textSizeRawValue;
    bool m_imageAnalysisEnabled;
    bool m_showImagePreviews;
};
