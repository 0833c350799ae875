import QtQuick
import Aulora.Theme

/// The way into a clinical case, as wide as the home screen.
PlainButton {
    id: card

    readonly property string title: "Casos Clínicos"
    readonly property string description: "Integrá signos, síntomas, laboratorio y fisiopatología."

    padding: 15
    focusRadius: 16
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    text: title
    Accessible.description: description

    background: ContinuousRectangle {
        radius: card.focusRadius
        color: Theme.panelBackground
        borderWidth: 1
        borderColor: Theme.hairline
    }

    contentItem: Row {
        spacing: 15

        IconTile {
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
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - 47 - 16 - 2 * parent.spacing
            spacing: 4

            Label {
                width: parent.width
                text: card.title
                points: 15
                weight: Font.DemiBold
                elide: Text.ElideRight
                Accessible.ignored: true
            }

            Label {
                width: parent.width
                text: card.description
                points: 10.5
                color: Theme.secondary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }

        Item {
            anchors.verticalCenter: parent.verticalCenter
            width: 16
            height: 16

            Symbol {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                name: "arrow.right"
                size: 13
            }
        }
    }
}
