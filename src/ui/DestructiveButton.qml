import QtQuick
import Aulora.Theme

/// A push button for what cannot be undone.
PlainButton {
    id: button

    implicitWidth: label.implicitWidth + leftPadding + rightPadding
    implicitHeight: label.implicitHeight + topPadding + bottomPadding
    leftPadding: 12
    rightPadding: 12
    topPadding: 5
    bottomPadding: 5
    Accessible.name: text

    background: ContinuousRectangle {
        radius: 7
        color: Theme.primaryAt(0.055)
    }

    contentItem: Item {
        Label {
            id: label

            anchors.centerIn: parent
            text: button.text
            points: 13
            color: Theme.red
        }
    }
}
