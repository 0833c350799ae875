import QtQuick
import Aulora.Theme

/// The way into a clinical case, as wide as the home screen.
PlainButton {
    id: card

    readonly property string title: "Casos Clínicos"
    readonly property string description: "Integrá signos, síntomas, laboratorio y fisiopatología."

    padding: 15
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    Accessible.name: title
    Accessible.description: description

    background: ContinuousRectangle {
        radius: 16
        color: Theme.panelBackground
        borderWidth: 1
        borderColor: Theme.hairline
    }

    contentItem: Item {
        implicitHeight: Math.max(tile.height, texts.height)

        IconTile {
            id: tile

            objectName: "tile"
            anchors.verticalCenter: parent.verticalCenter
            size: 47
            radius: 12
            color: Theme.accentSoft
            icon: "waveform.path.ecg.rectangle"
            iconSize: 19
            iconColor: Theme.accent
        }

        Column {
            id: texts

            anchors.left: tile.right
            anchors.right: arrow.left
            anchors.leftMargin: 15
            anchors.rightMargin: 15
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4

            Label {
                objectName: "title"
                width: parent.width
                text: card.title
                points: 15
                weight: Font.DemiBold
                elide: Text.ElideRight
            }

            Label {
                objectName: "description"
                width: parent.width
                text: card.description
                points: 10.5
                color: Theme.secondary
                elide: Text.ElideRight
            }
        }

        Symbol {
            id: arrow

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            name: "arrow.right"
            size: 13
        }
    }
}
