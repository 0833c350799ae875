import QtQuick
import Aulora.Theme

/// One of the appearances to choose from.
PlainButton {
    id: option

    required property string label
    required property string icon
    required property bool selected

    implicitHeight: 68
    Accessible.role: Accessible.RadioButton
    Accessible.name: label
    Accessible.checkable: true
    Accessible.checked: selected

    background: ContinuousRectangle {
        radius: 12
        color: option.selected ? Theme.accentAt(0.09) : Theme.primaryAt(0.025)
    }

    contentItem: Item {
        Column {
            objectName: "label"
            anchors.centerIn: parent
            spacing: 8

            Symbol {
                anchors.horizontalCenter: parent.horizontalCenter
                name: option.icon
                size: 13
                color: option.selected ? Theme.accent : Theme.primary
            }

            Label {
                objectName: "text"
                anchors.horizontalCenter: parent.horizontalCenter
                text: option.label
                points: 11
                weight: option.selected ? Font.DemiBold : Font.Normal
                color: option.selected ? Theme.accent : Theme.primary
            }
        }
    }
}
