pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// A folder or an image file among others: a picture of it above its name.
PlainListItem {
    id: item

    required property string name
    required property bool isFolder
    required property url file

    /// Asks for it to be opened or taken.
    signal activated

    text: name
    padding: 8
    focusRadius: 9
    // Return takes what is selected; only a press of Space selects.
    Keys.forwardTo: []
    Accessible.description: isFolder ? "Carpeta" : "Imagen"
    onDoubleClicked: activated()

    background: ContinuousRectangle {
        radius: item.focusRadius
        color: item.highlighted ? Theme.primaryAt(0.11) : "transparent"
    }

    contentItem: Column {
        spacing: 6

        FilePicture {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 104
            height: 78
            isFolder: item.isFolder
            file: item.file
        }

        Label {
            objectName: "name"
            width: parent.width
            text: item.name
            points: 11
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
