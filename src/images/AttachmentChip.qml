pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Images
import Aulora.Theme

/// The image waiting to be sent: its thumbnail, its name, and a button that removes it.
Item {
    id: chip

    /// The image, or a smaller picture of it.
    required property var imageBytes
    required property string imageName

    signal removeRequested

    readonly property int padding: 8
    readonly property int maximumNameWidth: 260

    implicitWidth: row.implicitWidth + 2 * padding
    implicitHeight: row.implicitHeight + 2 * padding

    ContinuousRectangle {
        anchors.fill: parent
        radius: 15
        color: Theme.panelBackground
        borderColor: Theme.primaryAt(0.09)
        borderWidth: 1
    }

    Row {
        id: row

        x: chip.padding
        y: chip.padding
        spacing: 11

        BytesPicture {
            objectName: "thumbnail"
            width: 50
            height: 50
            visible: isDecoded
            radius: 9
            fillMode: BytesPicture.Crop
            bytes: chip.imageBytes
        }

        Column {
            id: lines

            anchors.verticalCenter: parent.verticalCenter
            spacing: 3

            Label {
                objectName: "caption"
                text: "Imagen adjunta"
                points: 11
                weight: Font.DemiBold
            }

            Label {
                objectName: "name"
                width: Math.min(implicitWidth, chip.maximumNameWidth)
                // On one line: a line feed is allowed in the name of a file.
                text: chip.imageName.replace(/[\u0000-\u001f\u007f-\u009f\u2028\u2029]/g, " ")
                points: 10
                color: Theme.secondary
                elide: Text.ElideMiddle
                maximumLineCount: 1
            }
        }

        PlainButton {
            objectName: "remove"
            anchors.verticalCenter: parent.verticalCenter
            text: "Quitar imagen"
            padding: 5
            focusRadius: 12
            contentItem: Symbol {
                name: "xmark.circle.fill"
                size: 15
                color: Theme.secondary
            }
            onClicked: chip.removeRequested()
        }
    }
}
