#include "ChooserPlaces.h"

#include "BackgroundWork.h"
#include "LocalFile.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

struct Place
{
    QString label;
    QString symbol;
    QString path;
};

struct FoundPlaces
{
    QList<Place> places;
    Place start;
};

Place home()
{
    return {.label = u"Inicio"_s, .symbol = u"house"_s, .path = QDir::homePath()};
}

Place machine()
{
    return {.label = u"Equipo"_s, .symbol = u"internaldrive"_s, .path = QDir::rootPath()};
}

Place standardPlace(const QString &label, const QString &symbol,
                    QStandardPaths::StandardLocation location)
{
    return {.label = label, .symbol = symbol, .path = QStandardPaths::writableLocation(location)};
}

/// Desktops name the home folder itself in place of a folder that there is none of.
bool exists(const Place &place)
{
    return QDir(place.path).exists() && QDir(place.path) != QDir::home();
}

FoundPlaces findPlaces()
{
    const Place pictures
        = standardPlace(u"Imágenes"_s, u"photo"_s, QStandardPaths::PicturesLocation);
    FoundPlaces found{.places = {home()}, .start = exists(pictures) ? pictures : home()};
    for (const Place &place :
         {pictures,
          standardPlace(u"Descargas"_s, u"arrow.down.to.line"_s, QStandardPaths::DownloadLocation),
          standardPlace(u"Escritorio"_s, u"desktopcomputer"_s, QStandardPaths::DesktopLocation)}) {
        if (exists(place))
            found.places.append(place);
    }
    found.places.append(machine());
    return found;
}

QUrl urlOf(const Place &place)
{
    return localFileUrl(QFile::encodeName(place.path));
}

QVariantList inMaps(const QList<Place> &places)
{
    QVariantList maps;
    for (const Place &place : places) {
        maps.append(QVariantMap{
            {u"label"_s, place.label}, {u"symbol"_s, place.symbol}, {u"folder"_s, urlOf(place)}});
    }
    return maps;
}

} // namespace

ChooserPlaces::ChooserPlaces(QObject *parent)
    : QObject(parent)
    , m_places(inMaps({home(), machine()}))
{
    runThenFinish(loadingPool(), this, findPlaces, [this](const FoundPlaces &places) {
        m_places = inMaps(places.places);
        m_start = urlOf(places.start);
        Q_EMIT found();
    });
}
