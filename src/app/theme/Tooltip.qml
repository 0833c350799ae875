pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Theme

/// Says what its parent does. Make it visible while the pointer is on the parent; it shows a moment
/// later.
T.ToolTip {
    id: tooltip

    delay: 600
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? parent.height + 4 : 0
    margins: 4
    padding: 5
    leftPadding: 8
    rightPadding: 8
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    contentItem: Label {
        text: tooltip.text
        points: 11
    }
    background: ContinuousRectangle {
        radius: 5
        color: Theme.windowBackground
        borderWidth: 1
        borderColor: Theme.separator
    }
}
