pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Render
import Aulora.Theme

// The assistant's side of a conversation: monogram, name, and the reply or the sign that it is
// being written. The reply lies directly on the background of the chat.
Item {
    id: message

    required property string text
    required property real textScale
    required property bool nearViewport

    readonly property bool isTyping: text === ""
    readonly property real bodyTop: header.height + 8

    implicitHeight: Math.max(avatar.height, bodyTop + (isTyping ? typingRow.height : reply.implicitHeight))

    Accessible.role: Accessible.Paragraph
    Accessible.name: isTyping ? qsTr("Escribiendo…") : reply.plainText
    Accessible.description: header.text

    LazyItem {
        id: avatar

        width: 31
        height: 31
        active: message.nearViewport

        ContinuousRectangle {
            anchors.fill: parent
            radius: 9
            color: Theme.accentSoft

            Label {
                anchors.centerIn: parent
                text: qsTr("A")
                points: 14
                weight: Font.Bold
                color: Theme.accent
                Accessible.ignored: true
            }
        }
    }

    Item {
        id: column

        x: avatar.width + 12
        // The row's spacing keeps its distance from the trailing edge as well.
        width: Math.max(0, Math.min(680, message.width - x - 12))
        height: parent.height

        Label {
            id: header

            visible: message.nearViewport
            text: qsTr("Aulora IA")
            points: 11 * message.textScale
            weight: Font.DemiBold
            color: Theme.accent
            Accessible.ignored: true
        }

        MarkdownMessageView {
            id: reply

            y: message.bodyTop
            width: column.width
            height: implicitHeight
            visible: !message.isTyping
            wrapWidth: column.width
            text: message.text
            textScale: message.textScale
            color: Theme.primary
            dotColor: Theme.accent
            selectionColor: Theme.dark ? Theme.accent : Theme.accentAt(0.25)
        }

        LazyItem {
            id: typingRow

            y: message.bodyTop
            active: message.isTyping

            Row {
                spacing: 5

                Spinner {
                    anchors.verticalCenter: parent.verticalCenter
                    size: 12
                }

                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Escribiendo…")
                    points: 10 * message.textScale
                    color: Theme.secondary
                    Accessible.ignored: true
                }
            }
        }
    }
}
