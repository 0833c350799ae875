pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// A folder at hand.
PlainListItem {
    id: place

    required property string symbol

    leftPadding: 10
    rightPadding: 10
    implicitHeight: 32
    focusRadius: 7

    background: ContinuousRectangle {
        radius: place.focusRadius
        color: place.highlighted ? Theme.primaryAt(0.09) : "transparent"
    }

    contentItem: Row {
        spacing: 9

        Item {
            anchors.verticalCenter: parent.verticalCenter
            width: 16
            height: 16

            Symbol {
                anchors.centerIn: parent
                name: place.symbol
                size: 13
                color: Theme.secondary
            }
        }

        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: place.text
            points: 12.5
            Accessible.ignored: true
        }
    }
}
