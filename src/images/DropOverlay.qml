pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// Invites the drop of an image while one hovers over the screen.
Item {
    id: overlay

    required property bool presented
    /// A sibling that lies behind the panel and is seen through it.
    property Item backdrop: null

    /// What shines through has to be blurred, or it would be read with the text.
    readonly property bool isTranslucent: backdrop !== null && GraphicsInfo.api !== GraphicsInfo.Software

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

    // What lies behind, drawn smaller, and that drawn as a few pixels, which blur when they are drawn
    // large again: in two steps, since in one too much would be left out between them.
    ShaderEffectSource {
        id: smaller

        width: panel.width
        height: panel.height
        visible: false
        sourceItem: overlay.visible && overlay.isTranslucent ? overlay.backdrop : null
        sourceRect: overlay.backdrop ? Qt.rect(panel.x - overlay.backdrop.x, panel.y - overlay.backdrop.y,
                                               panel.width, panel.height) : Qt.rect(0, 0, 0, 0)
        textureSize.width: Math.ceil(panel.width / 2)
        textureSize.height: Math.ceil(panel.height / 2)
        mipmap: true
    }

    ShaderEffectSource {
        id: coarse

        visible: false
        sourceItem: smaller.sourceItem ? smaller : null
        textureSize.width: Math.ceil(panel.width / 16)
        textureSize.height: Math.ceil(panel.height / 16)
    }

    ContinuousRectangle {
        anchors.fill: panel
        visible: overlay.isTranslucent
        radius: panel.radius
        color: Theme.textBackground

        ContinuousTexture {
            anchors.fill: parent
            radius: panel.radius
            source: coarse
        }
    }

    ContinuousRectangle {
        id: panel

        readonly property color material: Theme.dark ? Theme.windowBackground : Theme.panelBackground

        objectName: "panel"
        anchors.centerIn: parent
        width: stack.implicitWidth + 60
        height: stack.implicitHeight + 60
        radius: 18
        color: overlay.isTranslucent ? Qt.alpha(material, 0.75) : material
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
