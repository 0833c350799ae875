pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// A button with a title on a filled shape. The role "default" is filled with the accent colour,
/// "destructive" is written in red.
PlainButton {
    id: button

    property string role: ""

    readonly property bool prominent: role === "default"

    leftPadding: 14
    rightPadding: 14
    topPadding: 6
    bottomPadding: 6
    focusRadius: 7

    background: ContinuousRectangle {
        radius: button.focusRadius
        color: button.prominent ? Theme.accent : Theme.primaryAt(0.08)
    }
    contentItem: Label {
        text: button.text
        points: 13
        weight: button.prominent ? Font.Medium : Font.Normal
        color: {
            if (button.prominent)
                return "white";
            return button.role === "destructive" ? Theme.red : Theme.primary;
        }
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
