pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Chooser
import Aulora.Theme

/// What a folder or an image file looks like: its thumbnail, whole, or a symbol where there is none.
Item {
    id: picture

    required property bool isFolder
    required property url file

    Symbol {
        objectName: "symbol"
        anchors.centerIn: parent
        visible: !thumbnail.isDecoded
        name: picture.isFolder ? "folder.fill" : "photo"
        size: picture.isFolder ? 50 : 34
        color: picture.isFolder ? Theme.accentAt(0.8) : Theme.primaryAt(0.28)
    }

    FileThumbnail {
        id: thumbnail

        /// Never enlarged.
        readonly property real factor: isDecoded ? Math.min(1, picture.width / implicitWidth, picture.height / implicitHeight) : 0

        objectName: "thumbnail"
        anchors.centerIn: parent
        width: implicitWidth * factor
        height: implicitHeight * factor
        radius: 5
        file: picture.isFolder ? "" : picture.file
    }
}
