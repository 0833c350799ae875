#include "InstallationIdentity.h"

#include "PreferenceStore.h"
#include "UuidText.h"

using namespace Qt::StringLiterals;

InstallationIdentity::InstallationIdentity(PreferenceStore *store)
    : m_store(store)
{ }

QString InstallationIdentity::installationUserId() const
{
    if (const auto stored = m_store->string(userIdKey))
        return *stored;
    QString userId = u"aulora-"_s + uuidText(QUuid::createUuid());
    m_store->setString(userIdKey, userId);
    return userId;
}
