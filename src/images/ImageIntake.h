#pragma once

#include "ItemProvider.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

class ContentView;
class QJSValue;

/// Why the file chooser could not give a file, in words for people.
struct ImportError
{
    QString localizedDescription;
};

/// Takes one image in, from the file chooser, a drop or the clipboard, checks it, and makes it the
/// pending image of the main screen. Reading and checking happen off the main thread; the state
/// changes on it. Of several images on their way the one given last is pending in the end, however
/// long each takes. With image analysis switched off nothing is taken; what is on its way when the
/// switch falls, or when the composer is emptied for a conversation, is given up.
class ImageIntake : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("MyApp makes the image intake")

    /// The preview of the pending image, small and quick to draw; empty when nothing is pending.
    Q_PROPERTY(QByteArray pendingPreview READ pendingPreview NOTIFY pendingPreviewChanged)

public:
    /// `contentView` is borrowed and outlives this object.
    explicit ImageIntake(ContentView *contentView, QObject *parent = nullptr);

    QByteArray pendingPreview() const { return m_prepared.preview; }

    /// What makePreviewData() makes of `bytes`. For the pending image it is at hand already.
    std::optional<QByteArray> preview(const QByteArray &bytes) const;

    /// Ends a visit to the file chooser: the first of `urls` is taken.
    Q_INVOKABLE void handleImportedFile(const QList<QUrl> &urls);
    void handleImportedFile(const ImportError &error);

    /// True while drops are taken: with image analysis on, and between replies.
    bool takesDrops() const;

    /// True when there is an image among the items.
    static bool bringImage(const ItemProviders &providers);

    /// Takes the first image among the items and returns whether there is one to take; how it
    /// turns out shows later.
    bool handleDrop(const ItemProviders &providers);

    /// Checks `bytes` and makes them the pending image, or says in Spanish why not.
    void acceptImage(const QByteArray &bytes, const QString &name,
                     const std::optional<QString> &typeIdentifier);

    /// Takes the image on the clipboard like a drop. False when there is none to take, or when
    /// what was copied is text, whatever picture of it comes along.
    Q_INVOKABLE bool pasteImage();

    /// Calls `action` with every image given so far in its place: at once when none is on its way,
    /// else when the last of them is pending. Never when one is refused or given up, for whoever
    /// wanted it done may have wanted it done with that image; and only the latest of several.
    void whenTaken(std::function<void()> action);
    Q_INVOKABLE void whenTaken(const QJSValue &action);

Q_SIGNALS:
    void pendingPreviewChanged();
    void takesDropsChanged();

private:
    struct PreparedImage
    {
        QByteArray bytes;
        QByteArray preview;
    };

    /// An image on its way in.
    struct Arrival
    {
        /// What m_generation was when it was given.
        int generation;
        /// Its place among all that were given.
        int number;
    };

    Arrival begin();
    /// `finish`, which does nothing once the arrival was given up.
    template <typename Finish>
    auto unlessGivenUp(Arrival arrival, Finish finish);
    void handleDroppedData(Arrival arrival, const LoadedItem &item, const ItemProvider &provider,
                           const QString &typeIdentifier);
    void check(Arrival arrival, const QByteArray &bytes, const QString &name,
               const std::optional<QString> &typeIdentifier);
    void refuse(const QString &reason);
    void end();
    void giveUp();
    void setPrepared(PreparedImage image);

    ContentView *m_contentView;
    PreparedImage m_prepared;
    /// Counts the moments at which everything on its way was given up.
    int m_generation = 0;
    /// How many images were given, and which of them became the pending image last.
    int m_given = 0;
    int m_lastTaken = 0;
    int m_onTheirWay = 0;
    std::function<void()> m_whenTaken;
};
