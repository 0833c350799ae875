pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Theme

/// A layer over the whole window that holds the keyboard until it is gone and then gives it back.
/// The owner says whether it is presented; when the person dismisses it, it asks by `dismissed`.
T.Dialog {
    id: sheet

    required property bool presented

    signal dismissed

    readonly property int fadeDuration: 160

    readonly property FocusReturn focusReturn: FocusReturn {
        popup: sheet
    }

    parent: T.Overlay.overlay
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? Math.round((parent.height - height) / 2) : 0
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    modal: true
    focus: true
    visible: presented
    closePolicy: T.Popup.CloseOnEscape

    onAboutToHide: {
        if (presented)
            dismissed();
    }

    background: ContinuousRectangle {
        radius: 12
        color: Theme.windowBackground
        borderWidth: 1
        borderColor: Theme.separator

        SoftShadow {
            objectName: "shadow"
            anchors.fill: parent
            z: -1
            radius: parent.radius
            spread: 36
            drop: 12
            color: Qt.alpha("black", Theme.dark ? 0.65 : 0.38)
        }
    }

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: sheet.fadeDuration; easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: sheet.fadeDuration; easing.type: Easing.OutCubic }
    }

    T.Overlay.modal: Rectangle {
        color: Qt.alpha("black", Theme.dark ? 0.45 : 0.25)

        Behavior on opacity {
            NumberAnimation { duration: sheet.fadeDuration; easing.type: Easing.OutCubic }
        }
    }
}
