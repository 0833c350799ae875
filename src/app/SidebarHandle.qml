import QtQuick
import Aulora.Theme
import Aulora.Ui

/// The line between sidebar and detail column; dragging it changes the sidebar's width. It takes no
/// width in the layout: the line lies on the detail column's leading edge.
Item {
    id: handle

    required property real minimumWidth
    required property real maximumWidth

    signal sidebarWidthChosen(real width)

    readonly property int grabWidth: 9

    Divider {
        objectName: "line"
        width: 1
        height: parent.height - strip.height
    }

    FooterStrip {
        id: strip

        anchors.bottom: parent.bottom
        width: 1
    }

    MouseArea {
        objectName: "grip"
        x: -Math.floor(handle.grabWidth / 2)
        width: handle.grabWidth
        height: parent.height
        cursorShape: Qt.SplitHCursor
        preventStealing: true
        onPositionChanged: event => {
            const pointer = mapToItem(handle.parent, event.x, event.y);
            handle.sidebarWidthChosen(Math.max(handle.minimumWidth,
                                               Math.min(pointer.x, handle.maximumWidth)));
        }
    }
}
