#pragma once

#include "PreferenceBackend.h"

#include <QSettings>

#include <functional>
#include <memory>

/// Preferences in a QSettings: on macOS, with its native format, the user defaults. The format
/// must keep the types of values apart, which the INI format does not.
class SettingsPreferenceBackend : public PreferenceBackend
{
public:
    using OpenSettings = std::function<std::unique_ptr<QSettings>()>;

    /// `openSettings` is called on the thread that makes all other calls.
    explicit SettingsPreferenceBackend(OpenSettings openSettings);

    std::variant<Values, PreferenceReadError> load() override;
    std::variant<std::optional<QByteArray>, PreferenceReadError> data(const QString &key) override;
    std::optional<QString> commit(const Values &changes,
                                  const std::function<Values()> &others) override;

private:
    QSettings *settings();

    OpenSettings m_openSettings;
    std::unique_ptr<QSettings> m_settings;
};
