pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Render
import Aulora.Theme

/// The preview of an attached image, fitted into 300 by 220 points; pressing it asks for the image.
/// Bytes that are no image take no place.
PlainButton {
    id: thumbnail

    required property var bytes
    required property bool nearViewport

    implicitWidth: picture.implicitWidth
    implicitHeight: picture.implicitHeight
    visible: implicitWidth > 0
    focusRadius: picture.radius
    text: "Ver imagen adjunta"

    PreviewPicture {
        id: picture

        anchors.fill: parent
        radius: 13
        bytes: thumbnail.bytes
        maximumSize: Qt.size(300, 220)
        wanted: thumbnail.nearViewport
    }
}
