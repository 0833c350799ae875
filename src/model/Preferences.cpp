#include "Preferences.h"

#include "AuloraAppearance.h"
#include "AuloraTextSize.h"
#include "PreferenceStore.h"

#include <utility>

Preferences::Preferences(PreferenceStore *store, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_appearanceRawValue(appearanceRawValue())
    , m_textSizeRawValue(textSizeRawValue())
    , m_imageAnalysisEnabled(imageAnalysisEnabled())
    , m_showImagePreviews(showImagePreviews())
{
    connect(store, &PreferenceStore::changed, this, &Preferences::follow);
}

QString Preferences::appearanceRawValue() const
{
    return m_store->string(appearanceKey).value_or(rawValue(AuloraAppearance::system));
}

void Preferences::setAppearanceRawValue(const QString &rawValue)
{
    m_store->setString(appearanceKey, rawValue);
}

QString Preferences::textSizeRawValue() const
{
    return m_store->string(textSizeKey).value_or(rawValue(AuloraTextSize::standard));
}

void Preferences::setTextSizeRawValue(const QString &rawValue)
{
    m_store->setString(textSizeKey, rawValue);
}

bool Preferences::imageAnalysisEnabled() const
{
    return m_store->boolean(imageAnalysisKey).value_or(true);
}

void Preferences::setImageAnalysisEnabled(bool enabled)
{
    m_store->setBoolean(imageAnalysisKey, enabled);
}

bool Preferences::showImagePreviews() const
{
    return m_store->boolean(imagePreviewsKey).value_or(true);
}

void Preferences::setShowImagePreviews(bool show)
{
    m_store->setBoolean(imagePreviewsKey, show);
}

void Preferences::follow(const QString &key)
{
    const auto differs = [](auto &last, auto now) { return std::exchange(last, now) != now; };
    if (key == appearanceKey && differs(m_appearanceRawValue, appearanceRawValue()))
        Q_EMIT appearanceRawValueChanged();
    else if (key == textSizeKey && differs(m_textSizeRawValue, textSizeRawValue()))
        Q_EMIT textSizeRawValueChanged();
    else if (key == imageAnalysisKey && differs(m_imageAnalysisEnabled, imageAnalysisEnabled()))
        Q_EMIT imageAnalysisEnabledChanged();
    else if (key == imagePreviewsKey && differs(m_showImagePreviews, showImagePreviews()))
        Q_EMIT showImagePreviewsChanged();
}
