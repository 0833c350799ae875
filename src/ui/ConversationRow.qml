import QtQuick
import Aulora.Theme

/// One conversation in the sidebar's list.
PlainListItem {
    id: row

    required property string title
    required property int messageCount
    required property bool selected

    readonly property string countText: messageCount + " mensajes"

    /// A title made by this program is shorter; one that was stored by other means may be of any
    /// length, and laying out all of it would hold up the list.
    readonly property int longestShownTitle: 400

    text: title
    highlighted: selected
    // A title of several lines makes the row taller, with some air above and below.
    implicitHeight: Math.max(43, contentItem.implicitHeight + 2 * 6)
    focusRadius: 9
    leftPadding: 8
    rightPadding: 8
    Accessible.description: countText

    background: ContinuousRectangle {
        radius: row.focusRadius
        color: row.selected ? Theme.primaryAt(0.055) : "transparent"
    }

    contentItem: Row {
        spacing: 10

        IconTile {
            objectName: "tile"
            anchors.verticalCenter: parent.verticalCenter
            size: 27
            radius: 7
            color: row.selected ? Theme.accentSoft : "transparent"
            icon: "bubble.left"
            iconSize: 11
            iconColor: row.selected ? Theme.accent : Theme.secondary
        }

        Column {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - 27 - parent.spacing
            spacing: 2

            Label {
                objectName: "title"
                width: parent.width
                text: row.title.slice(0, row.longestShownTitle)
                points: 12.5
                weight: row.selected ? Font.Medium : Font.Normal
                wrapMode: Text.Wrap
                maximumLineCount: 6
                elide: Text.ElideRight
                Accessible.ignored: true
            }

            Label {
                text: row.countText
                points: 9
                color: Theme.secondary
                Accessible.ignored: true
            }
        }
    }
}
