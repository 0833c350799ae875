#pragma once

#include "ItemProvider.h"

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

class ContentView;

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

    /// Calls `action` once, with every image given so far pending, refused or given up: at once
    /// when none is on its way. Images given while it waits come after it. A second action that
    /// comes meanwhile is dropped.
    void whenSettled(std::function<void()> action);

    /// Takes nothing of what is on its way. What waits for it is done now.
    void giveUp();

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

    /// What waits until the images up to a number are settled.
    struct Waiting
    {
        int lastNumber;
        std::function<void()> action;
        /// What makes those pending that were given later, by their numbers.
        QMap<int, std::function<void()>> takeLater;
    };

    Arrival begin();
    /// `finish`, which does nothing once the arrival was given up.
    template <typename Finish>
    auto unlessGivenUp(Arrival arrival, Finish finish);
    void handleDroppedData(Arrival arrival, const LoadedItem &item, const ItemProvider &provider,
                           const QString &typeIdentifier);
    void check(Arrival arrival, const QByteArray &bytes, const QString &name,
               const std::optional<QString> &typeIdentifier);
    void take(Arrival arrival, const PreparedImage &image, const QString &name,
              const std::optional<QString> &typeIdentifier);
    void refuse(Arrival arrival, const QString &reason);
    void end(Arrival arrival);
    void stopWaiting();
    void setPrepared(PreparedImage image);

    ContentView *m_contentView;
    PreparedImage m_prepared;
    /// Counts the moments at which everything on its way was given up.
    int m_generation = 0;
    /// How many images were given, and which of them became the pending image last.
    int m_given = 0;
    int m_lastTaken = 0;
    /// The numbers of those that are neither pending nor refused.
    QSet<int> m_onTheirWay;
    std::optional<Waiting> m_waiting;
};
