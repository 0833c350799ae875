#pragma once

#include <QString>

class PreferenceStore;

/// The name by which this installation makes itself known to the assistant service.
class InstallationIdentity
{
public:
    inline static const QString userIdKey = QStringLiteral("aulora.installation.userId");

    /// `store` is borrowed and outlives this object.
    explicit InstallationIdentity(PreferenceStore *store);

    /// The stored identifier, whatever its form; at the first call of an installation a new one,
    /// "aulora-" and an upper-case UUID, which is stored first.
    QString installationUserId() const;

private:
    PreferenceStore *m_store;
};
