#pragma once

#include "ItemProvider.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <optional>

class ContentView;

/// Why the file chooser could not give a file, in words for people.
struct ImportError
{
    QString localizedDescription;
};

/// Takes one image in, from the file chooser, a drop or the clipboard, checks it, and makes it the
/// pending image of the main screen. Reading and checking happen off the main thread; the state
/// changes on it. With image analysis switched off nothing is taken, also when the switch falls
/// while an image is being checked.
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
    ~ImageIntake() override;

    QByteArray pendingPreview() const { return m_prepared.preview; }

    /// What makePreviewData() makes of `bytes`. For the pending image it is at hand already.
    std::optional<QByteArray> preview(const QByteArray &bytes) const;

    /// Ends a visit to the file chooser: the first of `urls` is taken.
    Q_INVOKABLE void handleImportedFile(const QList<QUrl> &urls);
    void handleImportedFile(const ImportError &error);

    /// True when a drop of these items would be taken now.
    bool wouldTake(const ItemProviders &providers) const;

    /// Takes the first image among the items and returns whether there is one to take; how it
    /// turns out shows later.
    bool handleDrop(const ItemProviders &providers);

    /// What became of loading `provider` as `typeIdentifier`.
    void handleDroppedData(const LoadedItem &item, const ItemProvider &provider,
                           const QString &typeIdentifier);

    /// Checks `bytes` and makes them the pending image, or says in Spanish why not.
    void acceptImage(const QByteArray &bytes, const QString &name,
                     const std::optional<QString> &typeIdentifier);

    /// Takes the image on the clipboard like a drop. False when there is none to take, or when
    /// what was copied is text, whatever picture of it comes along.
    Q_INVOKABLE bool pasteImage();

Q_SIGNALS:
    void pendingPreviewChanged();

private:
    struct PreparedImage
    {
        QByteArray bytes;
        QByteArray preview;
    };

    void setPrepared(PreparedImage image);
    /// `finish`, which does nothing once the work was abandoned.
    template <typename Finish>
    auto unlessAbandoned(Finish finish);

    ContentView *m_contentView;
    PreparedImage m_prepared;
    /// Counts the moments at which work under way became void.
    int m_generation = 0;
};
