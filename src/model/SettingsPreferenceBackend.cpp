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

PreferenceReadError readError()
{
    return {u"no se pueden leer las preferencias"_s};
}

} // namespace

SettingsPreferenceBackend::SettingsPreferenceBackend(OpenSettings openSettings)
    : m_openSettings(std::move(openSettings))
{ }

std::variant<PreferenceBackend::Values, PreferenceReadError> SettingsPreferenceBackend::load()
{
    QSettings *stored = settings();
    if (stored->status() != QSettings::NoError)
        return readError();
    Values values;
    const QStringList keys = stored->allKeys();
    for (const QString &key : keys) {
        const QVariant value = stored->value(key);
        if (value.typeId() == QMetaType::QString)
            values.insert(preferenceKey(key), value.toString());
        else if (value.typeId() == QMetaType::Bool)
            values.insert(preferenceKey(key), value.toBool());
    }
    return values;
}

std::variant<std::optional<QByteArray>, PreferenceReadError>
SettingsPreferenceBackend::data(const QString &key)
{
    const QSettings *stored = settings();
    if (stored->status() != QSettings::NoError)
        return readError();
    const QVariant value = stored->value(settingsKey(key));
    return value.typeId() == QMetaType::QByteArray ? std::optional(value.toByteArray())
                                                   : std::nullopt;
}

std::optional<QString> SettingsPreferenceBackend::commit(const Values &changes,
                                                         const std::function<Values()> & /*others*/)
{
    QSettings *stored = settings();
    for (auto it = changes.cbegin(); it != changes.cend(); ++it) {
        if (std::holds_alternative<std::monostate>(*it))
            stored->remove(settingsKey(it.key()));
        else
            stored->setValue(settingsKey(it.key()), toVariant(*it));
    }
    stored->sync();
    if (stored->status() == QSettings::NoError)
        return std::nullopt;
    return u"no se puede escribir en las preferencias"_s;
}

/// The settings, reopened after a failure: a QSettings object never leaves its error state.
QSettings *SettingsPreferenceBackend::settings()
{
    if (!m_settings || m_settings->status() != QSettings::NoError)
        m_settings = m_openSettings();
    return m_settings.get();
}
