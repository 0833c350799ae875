import QtQuick
import Aulora.Theme

/// Says whether an exchange with the assistant is under way.
ContinuousRectangle {
    id: chip

    required property bool isLoading

    implicitWidth: content.width + 2 * 10
    implicitHeight: content.height + 2 * 6
    radius: height / 2
    color: Theme.primaryAt(0.035)

    Row {
        id: content

        anchors.centerIn: parent
        spacing: 7

        ContinuousRectangle {
            objectName: "dot"
            anchors.verticalCenter: parent.verticalCenter
            width: 7
            height: 7
            radius: 3.5
            color: chip.isLoading ? Theme.orange : Theme.accent
        }

        Label {
            objectName: "label"
            text: chip.isLoading ? "Procesando" : "En línea"
            points: 10.5
            weight: Font.Medium
            color: Theme.secondary
        }
    }
}
