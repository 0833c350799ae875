// Another program to drag from: a window, all of which starts a drag of what it is told to carry.
//
// Usage: drag-source MIME FILE
//
// Says how the drag fares, a word a line: begun, welcome and unwelcome as the window under the
// pointer answers, and at last taken or refused.
// Carries the bytes of FILE as MIME. As text/uri-list, FILE itself is carried.
#include <QDrag>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QRasterWindow>
#include <QUrl>

#include <cstdio>

using namespace Qt::StringLiterals;

class DragSource : public QRasterWindow
{
    Q_OBJECT

public:
    DragSource(QString mimeType, QString file)
        : m_mimeType(std::move(mimeType))
        , m_file(std::move(file))
    {
        setTitle(u"Drag source"_s);
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter(this).fillRect(QRect(QPoint(), size()), Qt::darkBlue);
    }

    void mouseMoveEvent(QMouseEvent *event) override
    {
        if (!event->buttons().testFlag(Qt::LeftButton))
            return;
        // Qt deletes it once the target has had its data.
        auto *drag = new QDrag(this);
        drag->setMimeData(carriedData());
        connect(drag, &QDrag::actionChanged, this, [](Qt::DropAction action) {
            say(action == Qt::CopyAction ? "welcome" : "unwelcome");
        });
        say("begun");
        say(drag->exec(Qt::CopyAction) == Qt::CopyAction ? "taken" : "refused");
    }

private:
    static void say(const char *word)
    {
        std::puts(word);
        std::fflush(stdout);
    }

    QMimeData *carriedData() const
    {
        auto *data = new QMimeData;
        QFile file(m_file);
        if (m_mimeType == "text/uri-list"_L1)
            data->setUrls({QUrl::fromLocalFile(m_file)});
        else if (file.open(QIODevice::ReadOnly))
            data->setData(m_mimeType, file.readAll());
        return data;
    }

    QString m_mimeType;
    QString m_file;
};

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    DragSource source(arguments.value(1), arguments.value(2));
    source.setGeometry(20, 40, 200, 150);
    source.show();
    return QGuiApplication::exec();
}

#include "main.moc"
