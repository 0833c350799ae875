pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Images
import Aulora.Theme

/// An image over the whole window, on a dark backdrop. It holds the keyboard while it is open and
/// gives it back; its button and Escape ask to close it.
T.Popup {
    id: viewer

    required property bool presented
    required property var imageBytes

    signal closeRequested

    readonly property FocusReturn focusReturn: FocusReturn {
        popup: viewer
    }

    parent: T.Overlay.overlay
    width: parent ? parent.width : 0
    height: parent ? parent.height : 0
    modal: true
    dim: false
    focus: true
    visible: presented
    closePolicy: T.Popup.CloseOnEscape

    onAboutToHide: {
        if (presented)
            closeRequested();
    }

    background: Rectangle {
        objectName: "backdrop"
        color: Qt.rgba(0, 0, 0, 0.94)
    }

    contentItem: Item {
        Accessible.role: Accessible.Dialog
        Accessible.name: "Imagen adjunta"

        FittedPicture {
            objectName: "picture"
            anchors.fill: parent
            anchors.margins: 32
            bytes: viewer.imageBytes
        }

        PlainButton {
            objectName: "close"
            anchors.top: parent.top
            anchors.right: parent.right
            anchors.margins: 22
            text: "Cerrar imagen"
            focus: true
            focusRadius: 14
            contentItem: Symbol {
                name: "xmark.circle.fill"
                size: 24
                weight: Font.Medium
                color: Qt.rgba(1, 1, 1, 0.88)
            }
            onClicked: viewer.closeRequested()
        }
    }
}
