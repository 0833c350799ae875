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
/// changes on it. Of several images imported at once the one given last is pending in the end,
/// however long each takes. With image analysis switched off nothing is taken; an import under way
/// when the switch is turned off, or when the composer is emptied for a conversation, is cancelled.
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

    /// What makePreviewData() makes of `bytes`; for the pending image it is kept, and returned at
    /// once.
    std::optional<QByteArray> preview(const QByteArray &bytes) const;

    /// The file chooser was closed with `urls`, of which the first is taken.
    Q_INVOKABLE void handleImportedFile(const QList<QUrl> &urls);
    void handleImportedFile(const ImportError &error);

    /// True while drops are taken: with image analysis on, and between replies.
    bool takesDrops() const;

    /// True when there is an image among the items.
    static bool containsImage(const ItemProviders &providers);

    /// Begins to import the first image among the items; false when none is taken. Whether the
    /// import succeeds shows later.
    bool handleDrop(const ItemProviders &providers);

    /// Checks `bytes` and makes them the pending image, or says in Spanish why not.
    void acceptImage(const QByteArray &bytes, const QString &name,
                     const std::optional<QString> &typeIdentifier);

    /// Takes the image on the clipboard like a drop. False when there is none, or when text was
    /// copied, even if a picture of the text comes with it.
    Q_INVOKABLE bool pasteImage();

    /// Calls `action` once every image given so far is pending, refused or cancelled: at once when
    /// none is being imported. Images given while it waits become pending after it. A second action
    /// that comes meanwhile is dropped.
    void whenSettled(std::function<void()> action);

    /// Cancels all imports. The action that waits for them is called now.
    void cancelJobs();

Q_SIGNALS:
    void pendingPreviewChanged();
    void takesDropsChanged();

private:
    struct PreparedImage
    {
        QByteArray bytes;
        QByteArray preview;
    };

    /// The import of one image, from when it is given until it is pending, refused or cancelled.
    struct ImportJob
    {
        /// What m_generation was when it began.
        int generation;
        /// Counted from 1, in the order in which images were given.
        int number;
    };

    /// An action that waits until the jobs up to a number have ended.
    struct Waiting
    {
        int lastNumber;
        std::function<void()> action;
        /// What makes those pending that were given later, by their numbers.
        QMap<int, std::function<void()>> takeLater;
    };

    ImportJob beginJob();
    /// `finish`, which does nothing once the job was cancelled.
    template <typename Finish>
    auto unlessCancelled(ImportJob job, Finish finish);
    void handleDroppedData(ImportJob job, const LoadedItem &item, const ItemProvider &provider,
                           const QString &typeIdentifier);
    void check(ImportJob job, const QByteArray &bytes, const QString &name,
               const std::optional<QString> &typeIdentifier);
    void take(ImportJob job, const PreparedImage &image, const QString &name,
              const std::optional<QString> &typeIdentifier);
    void refuse(ImportJob job, const QString &reason);
    void endJob(ImportJob job);
    void stopWaiting();
    void setPrepared(PreparedImage image);

    ContentView *m_contentView;
    PreparedImage m_prepared;
    /// How often all jobs were cancelled.
    int m_generation = 0;
    /// Numbers of the job begun last, and of the last whose image became the pending one.
    int m_lastJob = 0;
    int m_lastTakenJob = 0;
    /// The numbers of the jobs that have not ended.
    QSet<int> m_runningJobs;
    std::optional<Waiting> m_waiting;
};
