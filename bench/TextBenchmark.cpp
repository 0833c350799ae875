#include "Frames.h"
#include "Stopwatch.h"
#include "TextSource.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStringListModel>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

// Ways to put the rows of many messages on the screen, over the same text, in a list of the same
// shape: opening conversations and streaming into one, from the change of the data to the frame
// that shows it, on the software renderer. All figures are processor time, which other programs do
// not stretch. Rows that Qt lays out are shown as plain text, ours as what their Markdown says.

/// A message as rows, and as one text.
class SampleMessage : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QStringListModel *rows READ rows CONSTANT)
    Q_PROPERTY(QString text READ text NOTIFY textChanged)

public:
    explicit SampleMessage(const QStringList &rows)
        : m_rows(rows)
        , m_text(rows.join(u'\n'))
    { }

    QStringListModel *rows() { return &m_rows; }
    QString text() const { return m_text; }

    void append(const QString &row)
    {
        const int place = m_rows.rowCount();
        m_rows.insertRow(place);
        m_rows.setData(m_rows.index(place), row);
        m_text += row + u'\n';
        Q_EMIT textChanged();
        Q_EMIT appended(row);
    }

Q_SIGNALS:
    void textChanged();
    void appended(const QString &row);

private:
    QStringListModel m_rows;
    QString m_text;
};

namespace {
struct Way
{
    const char *name;
    const char *list;
    const char *message; ///< what shows one, its delegate
};

constexpr auto stack = R"(
    Flickable {
        id: list
        anchors.fill: parent
        contentHeight: column.height
        onContentHeightChanged: contentY = Math.max(0, contentHeight - height)
        Column {
            id: column
            width: list.width
            spacing: 23
            Repeater { model: root.messages; delegate: root.message }
        }
        ViewportTracker { id: viewportTracker; flickable: list; content: column }
    }
)";

constexpr auto lazyList = R"(
    ListView {
        anchors.fill: parent
        spacing: 23
        model: root.messages
        delegate: root.message
        onContentHeightChanged: positionViewAtEnd()
    }
)";

constexpr auto textEditRows = R"(
    Column {
        required property var modelData
        width: 640
        spacing: 7
        Repeater {
            model: modelData.rows
            TextEdit {
                required property string display
                width: 640
                text: display
                textFormat: TextEdit.PlainText
                wrapMode: TextEdit.Wrap
                font: root.font
                readOnly: true
                selectByMouse: true
            }
        }
    }
)";

constexpr auto textRows = R"(
    Column {
        required property var modelData
        width: 640
        spacing: 7
        Repeater {
            model: modelData.rows
            Text {
                required property string display
                width: 640
                text: display
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                font: root.font
            }
        }
    }
)";

constexpr auto document = R"(
    TextEdit {
        id: edit
        required property var modelData
        width: 640
        textFormat: TextEdit.PlainText
        wrapMode: TextEdit.Wrap
        font: root.font
        readOnly: true
        selectByMouse: true
        Component.onCompleted: {
            text = modelData.text;
            modelData.appended.connect(row => edit.append(row));
        }
    }
)";

constexpr auto ownRows = R"(
    TrackedItem {
        id: item
        required property var modelData
        tracker: viewportTracker
        width: 640
        height: reply.implicitHeight
        MarkdownMessageView {
            id: reply
            width: 640
            height: implicitHeight
            wrapWidth: 640
            trackedItem: item
            text: item.modelData.text
        }
    }
)";

constexpr std::array ways{
    Way{"TextEdit a row", stack, textEditRows}, Way{"Text a row", stack, textRows},
    Way{"one document a message", stack, document}, Way{"Text a row, ListView", lazyList, textRows},
    Way{"ours", stack, ownRows}};

/// A list of messages, shown in one of the ways.
class Scene
{
public:
    explicit Scene(const Way &way)
    {
        m_engine.addImportPath(u":/qt/qml"_s);
        QQmlComponent component(&m_engine);
        const QString scene = uR"(
            import QtQuick
            import Aulora.Render
            import Aulora.Text
            import Aulora.Theme
            Item {
                id: root
                property var messages: []
                readonly property font font: Theme.font(14.5, Font.Normal, 0)
                width: 763; height: 600
                property Component message: Component { %1 }
                %2
            })"_s.arg(QString::fromLatin1(way.message), QString::fromLatin1(way.list));
        component.setData(scene.toUtf8(), {});
        m_root.reset(qobject_cast<QQuickItem *>(component.create()));
        if (!m_root)
            qFatal("%s", qUtf8Printable(component.errorString()));
        m_window.resize(763, 600);
        m_root->setParentItem(m_window.contentItem());
        m_window.show();
        settle(m_window);
    }

    Duration timeToOpen(TextSource &source, int count)
    {
        std::vector<std::unique_ptr<SampleMessage>> messages;
        QList<QObject *> shown;
        for (int i = 0; i < count; ++i) {
            messages.push_back(std::make_unique<SampleMessage>(source.rows(15)));
            shown.append(messages.back().get());
        }
        const Stopwatch stopwatch;
        show(shown);
        waitForFrame(m_window);
        const Duration time = stopwatch.read();
        settle(m_window);
        show({});
        settle(m_window);
        return time;
    }

    /// The time of each frame that shows one line more, from the shortest to the longest.
    QList<double> timesToStream(TextSource &source, int lines)
    {
        SampleMessage message({});
        show({&message});
        settle(m_window);
        QList<double> frames;
        for (int line = 0; line < lines; ++line) {
            const QString row = source.row();
            const Stopwatch stopwatch;
            message.append(row);
            waitForFrame(m_window);
            frames.append(stopwatch.read().worked);
        }
        settle(m_window);
        show({});
        settle(m_window);
        std::ranges::sort(frames);
        return frames;
    }

private:
    void show(const QList<QObject *> &messages)
    {
        m_root->setProperty("messages", QVariant::fromValue(messages));
    }

    QQmlEngine m_engine;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_root;
};
} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    constexpr std::array sizes{20, 200, 2000};
    constexpr int lines = 2000;

    for (const Way &way : ways) {
        TextSource source;
        Scene scene(way);
        for (const int size : sizes) {
            QList<double> times;
            for (int run = 0; run < 3; ++run)
                times.append(scene.timeToOpen(source, size).worked);
            std::ranges::sort(times);
            std::printf("%s: opening %d messages of 15 rows: %.1f ms\n", way.name, size,
                        times.at(1));
            std::fflush(stdout);
        }
        const QList<double> frames = scene.timesToStream(source, lines);
        std::printf("%s: streaming %d lines, frame median %.1f ms, p95 %.1f ms\n", way.name, lines,
                    frames.at(lines / 2), frames.at(lines * 95 / 100));
        std::fflush(stdout);
    }
    return 0;
}

#include "TextBenchmark.moc"
