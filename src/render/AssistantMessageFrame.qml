pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Render
import Aulora.Theme

/// What surrounds a reply: the monogram, the name above it and, in its place while it is empty, the
/// sign that it is being written.
Item {
    id: frame

    required property real avatarSize
    required property real textX
    required property real textY
    required property real textScale
    required property bool isTyping
    required property string author
    required property string typingText

    ContinuousRectangle {
        objectName: "avatar"
        width: frame.avatarSize
        height: frame.avatarSize
        radius: 9
        color: Theme.accentSoft

        Label {
            anchors.centerIn: parent
            text: "A"
            points: 14
            weight: Font.Bold
            color: Theme.accent
            Accessible.ignored: true
        }
    }

    Label {
        objectName: "header"
        x: frame.textX
        text: frame.author
        points: 11 * frame.textScale
        weight: Font.DemiBold
        color: Theme.accent
        Accessible.ignored: true
    }

    LazyItem {
        x: frame.textX
        y: frame.textY
        active: frame.isTyping

        Row {
            objectName: "typingRow"
            spacing: 5

            Spinner {
                anchors.verticalCenter: parent.verticalCenter
                size: 12
            }

            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: frame.typingText
                points: 10 * frame.textScale
                color: Theme.secondary
                Accessible.ignored: true
            }
        }
    }
}
