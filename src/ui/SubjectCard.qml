import QtQuick
import Aulora.Theme

/// A study subject on the home screen; it warms to the accent while the pointer is over it.
PlainButton {
    id: card

    required property string title
    required property string subtitle
    required property string icon
    property bool isHovering: hoverHandler.hovered

    readonly property int hoverDuration: 160

    implicitHeight: Math.max(104, contentItem.implicitHeight + topPadding + bottomPadding)
    padding: 14
    Accessible.name: title
    Accessible.description: subtitle

    HoverHandler {
        id: hoverHandler
    }

    background: ContinuousRectangle {
        radius: 15
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

    contentItem: Item {
        implicitHeight: tile.height + 13 + texts.height

        // The content is centred when the card is taller than it.
        Item {
            width: parent.width
            height: parent.implicitHeight
            anchors.verticalCenter: parent.verticalCenter

            IconTile {
                id: tile

                objectName: "tile"
                size: 37
                radius: 10
                color: card.isHovering ? Theme.accentSoft : Theme.primaryAt(0.045)
                icon: card.icon
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
                anchors.verticalCenter: tile.verticalCenter
                name: "arrow.up.right"
                size: 9
                weight: Font.Medium
                color: Theme.secondary
            }

            Column {
                id: texts

                anchors.bottom: parent.bottom
                width: parent.width
                spacing: 3

                Label {
                    objectName: "title"
                    width: parent.width
                    text: card.title
                    points: 13.5
                    weight: Font.DemiBold
                    elide: Text.ElideRight
                }

                Label {
                    objectName: "subtitle"
                    width: parent.width
                    text: card.subtitle
                    points: 10
                    color: Theme.secondary
                    elide: Text.ElideRight
                }
            }
        }
    }

    component HoverAnimation: ColorAnimation {
        duration: card.hoverDuration
        easing.type: Easing.OutQuad
    }
}
