#include "SettingsPreferenceBackend.h"

#include <QVariant>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// QSettings separates groups by slashes, and writes them as dots to the user defaults.
QString settingsKey(const QString &key)
{
    return QString(key).replace(u'.', u'/');
}

QString preferenceKey(const QString &key)
{
    return QString(key).replace(u'/', u'.');
}

QVariant toVariant(const PreferenceValue &value)
{
    if (const auto *bytes = std::get_if<QByteArray>(&value))
        return *bytes;
    if (const auto *text = std::get_if<QString>(&value))
        return *text;
    return std::get<bool>(value);
}

} // namespace

SettingsPreferenceBackend::SettingsPreferenceBackend(OpenSettings openSettings)
    : m_openSettings(std::move(openSettings))
{ }

QHash<QString, PreferenceValue> SettingsPreferenceBackend::load()
{
    m_settings = m_openSettings();
    QHash<QString, PreferenceValue> scalars;
    const QStringList keys = m_settings->allKeys();
    for (const QString &key : keys) {
        const QVariant value = m_settings->value(key);
        if (value.typeId() == QMetaType::QString)
            scalars.insert(preferenceKey(key), value.toString());
        else if (value.typeId() == QMetaType::Bool)
            scalars.insert(preferenceKey(key), value.toBool());
    }
    return scalars;
}

std::optional<QByteArray> SettingsPreferenceBackend::data(const QString &key)
{
    const QVariant value = m_settings->value(settingsKey(key));
    if (value.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return value.toByteArray();
}

std::optional<QString>
SettingsPreferenceBackend::commit(const QHash<QString, PreferenceValue> &changes)
{
    for (auto it = changes.cbegin(); it != changes.cend(); ++it) {
        if (std::holds_alternative<std::monostate>(*it))
            m_settings->remove(settingsKey(it.key()));
        else
            m_settings->setValue(settingsKey(it.key()), toVariant(*it));
    }
    m_settings->sync();
    if (m_settings->status() == QSettings::NoError)
        return std::nullopt;
    return u"no se puede escribir en las preferencias"_s;
}
