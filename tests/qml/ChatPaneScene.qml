pragma ComponentBehavior: Bound

import QtQuick
import Aulora.State
import Aulora.Theme
import Aulora.Ui

/// A chat pane as the window holds it, with a block of known height for the study home.
Rectangle {
    id: scene

    required property MessageListModel messages
    property bool isLoading: false
    property bool replyHasStarted: false
    property real textScale: 1
    property bool showImagePreviews: true
    property string appearance: "light"

    signal imageTapped(bytes: var)

    color: Theme.textBackground

    Binding {
        target: Theme
        property: "appearanceRawValue"
        value: scene.appearance
    }

    ChatPane {
        anchors.fill: parent
        messages: scene.messages
        isLoading: scene.isLoading
        replyHasStarted: scene.replyHasStarted
        textScale: scene.textScale
        showImagePreviews: scene.showImagePreviews
        studyHome: Item {
            objectName: "studyHome"
            implicitHeight: 300
        }
        onImageTapped: bytes => scene.imageTapped(bytes)
    }
}
