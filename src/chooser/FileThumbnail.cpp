#include "FileThumbnail.h"

#include "BackgroundWork.h"
#include "ImageDecoder.h"
#include "ImageLimits.h"
#include "LocalFile.h"

#include <QPointer>

namespace {

/// Its longest side in pixels: sharp at twice the size it is shown in.
constexpr int thumbnailSide = 256;

/// The thumbnails that are still to be read, in the order in which they were wanted. A few at a
/// time: each holds a whole file, and reads from a mount that no longer answers never end, while
/// others than thumbnails need the threads that read.
class ThumbnailQueue : public QObject
{
public:
    void add(FileThumbnail *thumbnail)
    {
        m_waiting.append(thumbnail);
        startNext();
    }

    void remove(FileThumbnail *thumbnail) { m_waiting.removeOne(thumbnail); }

private:
    static constexpr int mostAtOnce = 2;

    void startNext()
    {
        while (m_running < mostAtOnce && !m_waiting.isEmpty()) {
            ++m_running;
            FileThumbnail *thumbnail = m_waiting.takeFirst();
            read(thumbnail, thumbnail->file());
        }
    }

    void read(const QPointer<FileThumbnail> &thumbnail, const QUrl &file)
    {
        runThenFinish(
            loadingPool(), this,
            [file] { return readLocalFile(file, maximumImageBytes + 1).value_or(QByteArray()); },
            [this, thumbnail, file](const QByteArray &bytes) {
                if (thumbnail && !bytes.isEmpty())
                    decode(thumbnail, file, bytes);
                else
                    end();
            });
    }

    void decode(const QPointer<FileThumbnail> &thumbnail, const QUrl &file, const QByteArray &bytes)
    {
        runThenFinish(
            decodingPool(), this, [bytes] { return decodeImage(bytes, thumbnailSide); },
            [this, thumbnail, file](const std::optional<QImage> &image) {
                if (thumbnail && thumbnail->file() == file && image)
                    thumbnail->show(*image);
                end();
            });
    }

    void end()
    {
        --m_running;
        startNext();
    }

    QList<FileThumbnail *> m_waiting;
    int m_running = 0;
};

ThumbnailQueue *queue()
{
    static auto *const instance = new ThumbnailQueue;
    return instance;
}

} // namespace

FileThumbnail::FileThumbnail(QQuickItem *parent)
    : ContinuousPicture(parent)
{ }

FileThumbnail::~FileThumbnail()
{
    queue()->remove(this);
}

void FileThumbnail::setFile(const QUrl &file)
{
    if (m_file == file)
        return;
    queue()->remove(this);
    m_file = file;
    show({});
    if (!m_file.isEmpty())
        queue()->add(this);
    Q_EMIT fileChanged();
}

void FileThumbnail::show(const QImage &image)
{
    setImplicitSize(image.width(), image.height());
    setImage(image);
}
