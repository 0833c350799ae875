pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Theme

/// Says what a button does, a moment after the pointer came to rest there, even while the button does
/// nothing. It is made when it is first wanted.
Item {
    id: tooltip

    required property T.AbstractButton button
    /// Where there is no good place below.
    property bool isAbove: false

    property T.ToolTip popup: null

    anchors.fill: button

    HoverHandler {
        id: pointer

        onHoveredChanged: {
            if (hovered && !tooltip.popup)
                tooltip.popup = component.createObject(tooltip);
        }
    }

    // Whoever presses knows what it does.
    Connections {
        target: tooltip.button

        function onPressed() {
            tooltip.popup?.close();
        }
    }

    Component {
        id: component

        T.ToolTip {
            id: popup

            delay: 600
            visible: pointer.hovered
            text: tooltip.button.text
            x: Math.round((tooltip.width - width) / 2)
            y: tooltip.isAbove ? -height - 4 : tooltip.height + 4
            margins: 4
            padding: 5
            leftPadding: 8
            rightPadding: 8
            implicitWidth: implicitContentWidth + leftPadding + rightPadding
            implicitHeight: implicitContentHeight + topPadding + bottomPadding
            closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

            contentItem: Label {
                text: popup.text
                points: 11
            }
            background: ContinuousRectangle {
                radius: 5
                color: Theme.windowBackground
                borderWidth: 1
                borderColor: Theme.separator
            }
        }
    }
}
