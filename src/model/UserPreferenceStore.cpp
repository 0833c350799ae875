#include "UserPreferenceStore.h"

#include "PreferenceStore.h"
#ifdef Q_OS_MACOS
#include "SettingsPreferenceBackend.h"
#else
#include "SqlitePreferenceBackend.h"
#endif

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

QString userDataFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    // XDG_DATA_HOME as Qt takes it; a relative one is to be ignored.
    const QString absoluteFolder
        = QDir::isAbsolutePath(folder) ? folder : QDir::homePath() + u"/.local/share"_s;
    return absoluteFolder + u"/aulora-ia"_s;
}

std::unique_ptr<PreferenceStore> makeUserPreferenceStore()
{
#ifdef Q_OS_MACOS
    // The domain that macOS derives from these two is the application's identifier.
    auto backend = std::make_unique<SettingsPreferenceBackend>([] {
        return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                           u"aulora.ar"_s, u"AuloraIA"_s);
    });
#else
    auto backend
        = std::make_unique<SqlitePreferenceBackend>(userDataFolder() + u"/preferences.sqlite"_s);
#endif
    return std::make_unique<PreferenceStore>(std::move(backend));
}
