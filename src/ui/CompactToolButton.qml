import QtQuick
import Aulora.Theme

/// A study tool on the home screen: a symbol and a word on one line.
PlainButton {
    id: button

    required property string title

    implicitHeight: 36
    focusRadius: 10
    leftPadding: 11
    rightPadding: 11
    text: title

    background: ContinuousRectangle {
        radius: button.focusRadius
        color: Theme.primaryAt(0.03)
    }

    contentItem: Item {
        Row {
            objectName: "label"
            anchors.centerIn: parent
            spacing: 7

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                name: button.icon.name
                size: 10.5
                weight: Font.Medium
            }

            Label {
                objectName: "title"
                anchors.verticalCenter: parent.verticalCenter
                text: button.title
                points: 10.5
                weight: Font.Medium
                Accessible.ignored: true
            }
        }
    }
}
