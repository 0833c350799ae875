pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// Invites the drop of an image while one hovers over the screen.
Item {
    id: overlay

    required property bool presented

    readonly property int fadeDuration: 160

    opacity: presented ? 1 : 0
    visible: opacity > 0

    Behavior on opacity {
        NumberAnimation {
            duration: overlay.fadeDuration
            easing.type: Easing.OutCubic
        }
    }

    ContinuousRectangle {
        objectName: "frame"
        anchors.fill: parent
        anchors.margins: 24
        radius: 22
        color: Theme.accentAt(0.055)
        borderColor: Theme.accent
        borderWidth: 2
        dashPattern: [9, 7]
    }

    ContinuousRectangle {
        objectName: "panel"
        anchors.centerIn: parent
        width: stack.implicitWidth + 60
        height: stack.implicitHeight + 60
        radius: 18
        // Opaque: what is below is not blurred, and would be hard to tell from the text.
        color: Theme.dark ? Theme.windowBackground : Theme.panelBackground
        borderColor: Theme.hairline
        borderWidth: 1

        Column {
            id: stack

            anchors.centerIn: parent
            spacing: 13

            ContinuousRectangle {
                objectName: "icon"
                anchors.horizontalCenter: parent.horizontalCenter
                width: 64
                height: 64
                radius: 18
                color: Theme.accentSoft

                Symbol {
                    anchors.centerIn: parent
                    name: "photo.badge.plus"
                    size: 27
                    weight: Font.Medium
                    color: Theme.accent
                }
            }

            Label {
                objectName: "title"
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Soltá la imagen para analizarla"
                points: 17
                weight: Font.DemiBold
            }

            Label {
                objectName: "line"
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Aulora IA puede analizar imágenes médicas con finalidad educativa."
                points: 11.5
                color: Theme.secondary
            }
        }
    }
}
