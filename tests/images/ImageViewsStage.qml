pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Images
import Aulora.Theme

// The image views as the window places them, over something that shows what they cover.
Rectangle {
    id: stage

    property string appearance: "light"
    property var pendingBytes: ""
    property string pendingName: ""
    property bool dropPresented: false
    property bool viewerPresented: false
    property var enlargedBytes: ""
    property int removals: 0
    property int closings: 0

    width: 1120
    height: 820
    color: Theme.textBackground

    onAppearanceChanged: Theme.appearanceRawValue = appearance

    FocusScope {
        objectName: "composer"
        anchors.fill: parent
        focus: true
    }

    AttachmentChip {
        objectName: "chip"
        x: 30
        y: 700
        imageBytes: stage.pendingBytes
        imageName: stage.pendingName
        onRemoveRequested: ++stage.removals
    }

    DropOverlay {
        objectName: "overlay"
        anchors.fill: parent
        presented: stage.dropPresented
    }

    ImageViewer {
        objectName: "viewer"
        presented: stage.viewerPresented
        imageBytes: stage.enlargedBytes
        onCloseRequested: {
            ++stage.closings;
            stage.viewerPresented = false;
        }
    }
}
