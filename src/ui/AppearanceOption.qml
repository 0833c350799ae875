import QtQuick
import Aulora.Theme

/// One of the appearances to choose from.
PlainRadioButton {
    id: option

    required property bool selected

    implicitHeight: 68
    focusRadius: 12
    checked: selected

    background: ContinuousRectangle {
        radius: option.focusRadius
        color: option.selected ? Theme.accentAt(0.09) : Theme.primaryAt(0.025)
    }

    contentItem: Item {
        Column {
            objectName: "label"
            anchors.centerIn: parent
            spacing: 8

            Symbol {
                anchors.horizontalCenter: parent.horizontalCenter
                name: option.icon.name
                size: 13
                color: option.selected ? Theme.accent : Theme.primary
            }

            Label {
                objectName: "text"
                anchors.horizontalCenter: parent.horizontalCenter
                text: option.text
                points: 11
                weight: option.selected ? Font.DemiBold : Font.Normal
                color: option.selected ? Theme.accent : Theme.primary
                Accessible.ignored: true
            }
        }
    }
}
