import QtQuick
import Aulora.Theme

/// A study subject on the home screen; it takes the accent colour while the pointer is over it.
PlainButton {
    id: card

    required property string title
    required property string subtitle
    property bool isHovering: hovered

    implicitHeight: Math.max(104, contentItem.implicitHeight + topPadding + bottomPadding)
    padding: 14
    focusRadius: 15
    hoverEnabled: true
    text: title
    Accessible.description: subtitle

    background: ContinuousRectangle {
        radius: card.focusRadius
        color: card.isHovering ? Theme.accentAt(0.035) : Theme.panelBackground
        borderWidth: 1
        borderColor: card.isHovering ? Theme.accentAt(0.24) : Theme.hairline

        Behavior on color {
            HoverAnimation {}
        }

        Behavior on borderColor {
            HoverAnimation {}
        }
    }

    contentItem: Column {
        spacing: 13

        Item {
            width: parent.width
            height: 37

            IconTile {
                objectName: "tile"
                size: 37
                radius: 10
                color: card.isHovering ? Theme.accentSoft : Theme.primaryAt(0.045)
                icon: card.icon.name
                iconSize: 15
                iconColor: card.isHovering ? Theme.accent : Theme.primaryAt(0.78)

                Behavior on color {
                    HoverAnimation {}
                }

                Behavior on iconColor {
                    HoverAnimation {}
                }
            }

            Symbol {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                name: "arrow.up.right"
                size: 9
                weight: Font.Medium
                color: Theme.secondary
            }
        }

        Column {
            width: parent.width
            spacing: 3

            Label {
                width: parent.width
                text: card.title
                points: 13.5
                weight: Font.DemiBold
                elide: Text.ElideRight
                Accessible.ignored: true
            }

            Label {
                width: parent.width
                text: card.subtitle
                points: 10
                color: Theme.secondary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
}
